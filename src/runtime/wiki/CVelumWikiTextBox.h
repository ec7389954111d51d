// The wiki text of one field: source in, RTF and links out.
#pragma once

#include "core/text/CVelumScanner.h"
#include "model/fields/CVelumCompanions.h"
#include "runtime/wiki/CVelumRichText.h"

#include <QList>

// A link of a wiki text. Positions count as a rich text box counts them: UTF-16 units, and two for the end of
// a paragraph.
struct TWikiLink {
  qint16 iStart; // of its text in the shown text
  qint16 iLen;   // of its text
  QString iTarget;
  QString iText;
};

// The markup: ** bold, // italic and __ underline on and off, [[target]] and [[target|text]] links, two
// backslashes a new paragraph, an empty line a new paragraph with a gap and all styles off; a single line end
// is a blank. There is no bad markup: a link that does not end goes on to the end of the text.
class CVelumWikiTextBox final : public CVelumWikiTextBoxBase {
public:
  // Links of one text; one more is host error 9.
  static constexpr qsizetype EMaxLinks = 1001;

  CVelumWikiTextBox() = default;

  [[nodiscard]] QString ObjDescr() const override { return u"CVelumWikiTextBox"_s; }
  void SetFont(const Ref<CVelumFont>& aFont) override { iRich->SetFont(aFont); }
  // Host error 6 for more than 32,766 characters.
  void SetStr(const QString& aStr) override;
  [[nodiscard]] QString TextStr() const override { return iWhole ? iRich->TextStr() : QString(); }
  // A link of one or two characters counts as one longer, so that it can be hit.
  [[nodiscard]] bool GetLink(int aPos, QString& aTarget) const override;
  [[nodiscard]] const QList<TWikiLink>& Links() const { return iLinks; }

private:
  void AddSym();
  void AddLink();
  void AddBreak();
  void AddParagraph();
  void NextSym() { iScanner->GetWikiSym(iSym, iSymStr); }

  QList<TWikiLink> iLinks;
  QString iStr; // the source
  Ref<CVelumScanner> iScanner = MakeRef<CVelumScanner>();
  Ref<CVelumRichText> iRich = MakeRef<CVelumRichText>();
  bool iBoldOn = false;
  bool iItalicOn = false;
  bool iUnderlineOn = false;
  bool iWhole = false; // the RTF is complete
  qint32 iSym = ESymEol;
  QString iSymStr;
  qsizetype iPos = 0; // of what comes next in the shown text
};
