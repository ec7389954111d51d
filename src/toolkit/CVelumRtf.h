// A reader of the Rich Text Format that this program writes.
#pragma once

#include "core/CVelumConst.h"

#include <QHash>
#include <QList>
#include <QString>

// How a piece of text looks.
struct TRtfLook {
  bool iBold = false;
  bool iItalic = false;
  bool iUnderline = false;
  int iColor = 0; // index into the colours; 0 and what lies outside is the box's own
  int iFont = 0;  // number of a font
  int iHalfPoints = 24;
  bool operator==(const TRtfLook&) const = default;
};

struct TRtfRun {
  QString iText;
  TRtfLook iLook;
};

struct TRtfPara {
  QList<TRtfRun> iRuns;
  TRtfLook iLook; // of its beginning; gives an empty one its height
};

struct TRtfText {
  QList<TRtfPara> iParas; // at least one
  QHash<int, QString> iFonts;
  QList<qint32> iColors; // 0xBBGGRR, ENoInt for the first one
  // Places in the shown text (paragraph ends counted as one unit) at which the source had a unit that is
  // counted but not shown: a brace. In ascending order, once for each.
  QList<int> iHidden;
};

namespace CVelumRtf {

// Never fails: unknown control words are skipped, and what is no RTF at all is shown as it stands. A brace
// that the text itself holds is not seen, as the format has it, but ends nothing: the text behind it is
// shown. A bare line end inside a paragraph is a blank. Parts of colours are taken modulo 256.
[[nodiscard]] TRtfText Read(const QString& aRtf);

} // namespace CVelumRtf
