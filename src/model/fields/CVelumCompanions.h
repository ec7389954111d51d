// What a control carries at run time while a window shows it: a list box and a wiki text box. The model
// only knows their operations; the rooms above make and bind them.
#pragma once

#include "model/CVelumFont.h"

#include <QList>
#include <QObject>

// Types of a list box.
enum ELis : int {
  ELisSingle = 0, // a list with columns
  ELisCombo = 1,  // the list of a combo box
};

// Wrapper of a list or of a combo's list. Lines and their objects are kept here whether or not a widget
// shows them.
class CVelumListBoxBase : public CVelumObject {
public:
  // ELis...
  [[nodiscard]] virtual int LisType() const = 0;
  // Flag 4: the font is applied to the widget's own font rather than only kept.
  virtual void SetFlag4(bool aOn) = 0;
  // Nothing stands for the default font.
  virtual void SetFont(const Ref<CVelumFont>& aFont) { static_cast<void>(aFont); }
  virtual void Clear() = 0;
  virtual void AddLine(const QString& aLine, const Ref<CVelumObject>& aObj) = 0;
  [[nodiscard]] virtual int NumLines() const = 0;
  // Asserts "Get Line index".
  [[nodiscard]] virtual QString Line(int aIndex) const = 0;
  // Widths in twips. Columns are for lists alone; their parts of a line are parted by tabs.
  virtual void DefineColumns(const QList<QString>& aTitles, const QList<float>& aWidths) = 0;
  // One column of the whole width.
  virtual void Define1Column(const QString& aTitle) = 0;
  // Brings the lines to the widget, if there is one.
  virtual void Show() = 0;
  // aBase is the toolkit control that shows the list, or null.
  virtual void SetBaseObj(QObject* aBase) = 0;
};

// Turns wiki text into what a rich text box shows, and knows where its links are.
class CVelumWikiTextBoxBase : public CVelumObject {
public:
  // Takes the wiki text. When that fails, the box is left empty.
  virtual void SetStr(const QString& aStr) = 0;
  // The font of the next SetStr; aFont may be nothing.
  virtual void SetFont(const Ref<CVelumFont>& aFont) = 0;
  // The text as RTF.
  [[nodiscard]] virtual QString TextStr() const = 0;
  // The target of the link at a position of the shown text, counted as a rich text box counts; false when
  // there is none.
  [[nodiscard]] virtual bool GetLink(int aPos, QString& aTarget) const = 0;
};

// Makes the companions. Without one installed, or one of these two overridden, a list box is a plain store of
// lines, and there is no wiki text box.
class CVelumCompanionFactory {
public:
  virtual ~CVelumCompanionFactory() = default;
  virtual Ref<CVelumListBoxBase> NewListBox(int aLisType);
  virtual Ref<CVelumWikiTextBoxBase> NewWikiTextBox();
};

namespace CVelumCompanions {
[[nodiscard]] Ref<CVelumListBoxBase> NewListBox(int aLisType);
[[nodiscard]] Ref<CVelumWikiTextBoxBase> NewWikiTextBox();
// The caller keeps what it installs alive; null puts the default back. Companions made before stay.
void SetFactory(CVelumCompanionFactory* aFactory);
} // namespace CVelumCompanions
