#include "toolkit/CVelumRtfDocument.h"

#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <algorithm>

namespace {

// Makes the formats of a text, the last one again without work.
class CFormats {
public:
  CFormats(const TRtfText& aText, double aPoints, const std::function<QColor(qint32)>& aColorOf)
      : iText(aText), iScale(ScaleOf(aText, aPoints)), iColorOf(aColorOf) {}

  const QTextCharFormat& Of(const TRtfLook& aLook) {
    if (iMade && aLook == iLook) return iFormat;
    iMade = true;
    iLook = aLook;
    iFormat = QTextCharFormat();
    iFormat.setFontPointSize(aLook.iHalfPoints / 2.0 * iScale);
    iFormat.setFontWeight(aLook.iBold ? QFont::Bold : QFont::Normal);
    iFormat.setFontItalic(aLook.iItalic);
    iFormat.setFontUnderline(aLook.iUnderline);
    const QString family = iText.iFonts.value(aLook.iFont);
    if (!family.isEmpty()) iFormat.setFontFamilies({family});
    const QColor color = iColorOf(iText.iColors.value(aLook.iColor, ENoInt));
    if (color.isValid()) iFormat.setForeground(color);
    return iFormat;
  }

private:
  static double ScaleOf(const TRtfText& aText, double aPoints) {
    const int own = aText.iParas.isEmpty() ? 0 : aText.iParas.first().iLook.iHalfPoints;
    return own > 0 && aPoints > 0 ? 2 * aPoints / own : 1.0;
  }

  const TRtfText& iText;
  double iScale;
  const std::function<QColor(qint32)>& iColorOf;
  TRtfLook iLook;
  QTextCharFormat iFormat;
  bool iMade = false;
};

} // namespace

void CVelumRtfDocument::Show(QTextDocument& aDocument, const TRtfText& aText, double aPoints,
                             const std::function<QColor(qint32)>& aColorOf) {
  CFormats formats(aText, aPoints, aColorOf);
  aDocument.setUndoRedoEnabled(false);
  aDocument.clear();
  QTextCursor cursor(&aDocument);
  cursor.beginEditBlock();
  bool first = true;
  for (const TRtfPara& para : aText.iParas) {
    if (first)
      cursor.setBlockCharFormat(formats.Of(para.iLook));
    else
      cursor.insertBlock(QTextBlockFormat(), formats.Of(para.iLook));
    first = false;
    for (const TRtfRun& run : para.iRuns) cursor.insertText(run.iText, formats.Of(run.iLook));
  }
  cursor.endEditBlock();
  aDocument.setUndoRedoEnabled(true);
}

int CVelumRtfDocument::ToCount(const QTextDocument& aDocument, int aPos, const QList<int>& aHidden) {
  const auto hidden = std::upper_bound(aHidden.begin(), aHidden.end(), aPos) - aHidden.begin();
  return aPos + std::max(0, aDocument.findBlock(aPos).blockNumber()) + static_cast<int>(hidden);
}

int CVelumRtfDocument::FromCount(const QTextDocument& aDocument, int aCount) {
  QTextBlock block = aDocument.firstBlock();
  while (block.next().isValid() && aCount >= block.next().position() + block.next().blockNumber())
    block = block.next();
  const int inside = aCount - block.position() - block.blockNumber();
  return block.position() + std::clamp(inside, 0, block.length() - 1);
}
