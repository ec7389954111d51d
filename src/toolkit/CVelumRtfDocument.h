// Puts what was read from RTF into a document, and counts in it.
#pragma once

#include "toolkit/CVelumRtf.h"

#include <QColor>
#include <functional>

class QTextDocument;

namespace CVelumRtfDocument {

// Replaces the content of aDocument; its undo history goes. The size in which the text begins is shown as
// aPoints, so that it stands beside other texts as one of them, and other sizes in proportion; 0: as they
// are. aColorOf gives the colour to paint for one of the text's own, or an invalid one for that of the
// widget.
void Show(QTextDocument& aDocument, const TRtfText& aText, double aPoints,
          const std::function<QColor(qint32)>& aColorOf);

// Positions as rich text boxes count them: UTF-16 units, and two for the end of a paragraph. aPos is a place
// in the document, which counts one for the end of a paragraph and none for what aHidden names.
[[nodiscard]] int ToCount(const QTextDocument& aDocument, int aPos, const QList<int>& aHidden = {});
// The other way round, without hidden units; a place inside the end of a paragraph is the one before it.
[[nodiscard]] int FromCount(const QTextDocument& aDocument, int aCount);

} // namespace CVelumRtfDocument
