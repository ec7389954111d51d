// Writes Rich Text Format.
#pragma once

#include "model/CVelumFont.h"

#include <array>

// One text from BeginText to EndText. Bold, italic and underline are counted: only the outermost pair writes
// something. The colour table stands ahead of the text but is known only at its end, where it is inserted.
class CVelumRichText final : public CVelumObject {
public:
  // Colours of one text, and how deep they nest; one more is host error 9.
  static constexpr int EMaxColors = 21;

  CVelumRichText() = default;

  [[nodiscard]] QString ObjDescr() const override { return u"CVelumRichText"_s; }
  // The RTF, whole after EndText.
  [[nodiscard]] const QString& TextStr() const { return iText; }
  // The font of the texts from now on; what it leaves unset stays as it is. Nothing: no flags, no colour.
  void SetFont(const Ref<CVelumFont>& aFont);

  // Starts a new text with nothing on but what the font states.
  void BeginText();
  void EndText();
  void BeginPara();
  void EndPara();
  // An empty paragraph of half the height.
  void AddSmallPara();
  // Braces stand as they are, and so alter the structure of the RTF.
  void AddStr(const QString& aStr);
  // aColor is red + 256 * green + 65536 * blue; the parts of a negative one are negative or 0.
  void BeginColor(qint32 aColor);
  // Asserts "iNumCurColors>0".
  void EndColor();
  // Each End asserts that its Begin came before.
  void BeginBold() { BeginStyle(iBold, u"\\b1 "_s); }
  void EndBold() { EndStyle(iBold, u"EndBold"_s, u"iBold>0"_s, u"\\b0 "_s); }
  void BeginItalic() { BeginStyle(iItalic, u"\\i1 "_s); }
  void EndItalic() { EndStyle(iItalic, u"EndItalic"_s, u"iItalic>0"_s, u"\\i0 "_s); }
  void BeginUnderline() { BeginStyle(iUnderline, u"\\ul1 "_s); }
  void EndUnderline() { EndStyle(iUnderline, u"EndUnderline"_s, u"iUnderline>0"_s, u"\\ul0 "_s); }

private:
  struct TColor {
    qint16 iRed;
    qint16 iGreen;
    qint16 iBlue;
    bool operator==(const TColor&) const = default;
  };

  void BeginStyle(qint16& aCount, const QString& aCode);
  void EndStyle(qint16& aCount, const QString& aProc, const QString& aText, const QString& aCode);
  void BeginFont();
  void AddColorCode(qint16 aIndex);
  [[nodiscard]] qint16 ColorIndex(const TColor& aColor);

  QString iText;
  std::array<TColor, EMaxColors> iColors{};
  qint16 iNumColors = 0;
  qsizetype iColorPos = 0; // where the colour table goes
  QString iFontName = u"Arial"_s;
  qint16 iFontSize = 20; // half points
  Ref<CVelumFont> iFont;
  qint16 iBold = 0;
  qint16 iItalic = 0;
  qint16 iUnderline = 0;
  std::array<qint16, EMaxColors> iCurColors{}; // indexes into iColors, the innermost last
  qint16 iNumCurColors = 0;
};
