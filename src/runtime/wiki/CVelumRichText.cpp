#include "runtime/wiki/CVelumRichText.h"

#include "core/CVelumChecked.h"
#include "core/CVelumValue.h"

#include <QScopedValueRollback>
#include <algorithm>

void CVelumRichText::SetFont(const Ref<CVelumFont>& aFont) {
  iFont = aFont;
  if (!iFont) return;
  if (!iFont->FaceName().isEmpty()) iFontName = iFont->FaceName();
  if (iFont->Size() != ENoShort)
    iFontSize =
        CVelumChecked::Narrow<qint16>(CVelumValue::RoundToInt(2 * static_cast<double>(iFont->PointSize())));
}

void CVelumRichText::BeginText() {
  iText = u"{\\rtf1\\ansi\\ansicpg1252\\deff0\\deflang2055{\\fonttbl {\\f0\\fswiss\\fprq2\\fcharset0 "_s +
          iFontName + u";}}\r\n"_s;
  iColorPos = iText.size();
  iNumColors = 0;
  iNumCurColors = 0;
  iBold = iItalic = iUnderline = 0;
  if (iFont) BeginFont();
}

void CVelumRichText::BeginFont() {
  if (iFont->Flags() & EFntBold) BeginBold();
  if (iFont->Flags() & EFntItalic) BeginItalic();
  if (iFont->Flags() & EFntUnderline) BeginUnderline();
  if (iFont->ForeColor() != ENoInt) BeginColor(iFont->ForeColor());
}

void CVelumRichText::EndText() {
  iText += u'}';
  QString table = u"{\\colortbl ;"_s;
  for (int i = 0; i < iNumColors; ++i) {
    const TColor& color = iColors[static_cast<size_t>(i)];
    table += u"\\red%1\\green%2\\blue%3;"_s.arg(color.iRed).arg(color.iGreen).arg(color.iBlue);
  }
  iText.insert(iColorPos, table + u"}\r\n"_s);
}

void CVelumRichText::BeginPara() {
  iText += u"\\uc1\\pard\\fi-0\\li0\\tx0\\f0\\fs"_s + QString::number(iFontSize) + u' ';
}

void CVelumRichText::EndPara() {
  iText += u"\\par "_s;
}

void CVelumRichText::AddSmallPara() {
  const auto half = static_cast<qint16>(CVelumValue::RoundToInt(iFontSize / 2.0));
  const QScopedValueRollback size(iFontSize, half);
  BeginPara();
  EndPara();
}

void CVelumRichText::AddStr(const QString& aStr) {
  for (const QChar c : aStr) {
    const uint code = c.unicode();
    if (c == u'\\')
      iText += u"\\\\"_s;
    else if (code < 128)
      iText += c;
    else if (code < 256)
      iText += u"\\'"_s + QString::number(code, 16).toUpper();
    else
      iText += u"{\\u"_s + QString::number(code) + u'}';
  }
}

void CVelumRichText::BeginColor(qint32 aColor) {
  const TColor color{static_cast<qint16>(aColor % 256), static_cast<qint16>(aColor / 256 % 256),
                     static_cast<qint16>(aColor / 65536)};
  const qint16 index = ColorIndex(color);
  AddColorCode(index);
  CVelumChecked::CheckIndex<int>(iNumCurColors, EMaxColors);
  iCurColors[static_cast<size_t>(iNumCurColors++)] = index;
}

qint16 CVelumRichText::ColorIndex(const TColor& aColor) {
  const auto end = iColors.begin() + iNumColors;
  const auto found = std::find(iColors.begin(), end, aColor);
  if (found == end) {
    CVelumChecked::CheckIndex<int>(iNumColors, EMaxColors);
    *found = aColor;
    ++iNumColors;
  }
  return static_cast<qint16>(found - iColors.begin());
}

void CVelumRichText::AddColorCode(qint16 aIndex) {
  iText += u"\\cf"_s + QString::number(aIndex + 1) + u' ';
}

void CVelumRichText::EndColor() {
  CVelumError::AssertObj(iNumCurColors > 0, this, u"EndColor"_s, u"iNumCurColors>0"_s);
  iText += u"\\cf0 "_s;
  if (iNumCurColors == 0) return;
  --iNumCurColors;
  if (iNumCurColors > 0) AddColorCode(iCurColors[static_cast<size_t>(iNumCurColors - 1)]);
}

void CVelumRichText::BeginStyle(qint16& aCount, const QString& aCode) {
  if (aCount == 0) iText += aCode;
  aCount = CVelumChecked::Add<qint16>(aCount, 1);
}

void CVelumRichText::EndStyle(qint16& aCount, const QString& aProc, const QString& aText,
                              const QString& aCode) {
  CVelumError::AssertObj(aCount > 0, this, aProc, aText);
  aCount = CVelumChecked::Sub<qint16>(aCount, 1);
  if (aCount == 0) iText += aCode;
}
