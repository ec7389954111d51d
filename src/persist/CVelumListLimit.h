// Computed card lists that are too long for a file.
#pragma once

#include "model/CVelumStack.h"

#include <QList>

// A file holds texts of up to 15,000 characters, but the list of cards that a field computes can grow beyond.
// It is stored up to its last whole line that fits, with that line's end: no complete list ends so, which
// tells a reader that there is more. The list is whole again once it has been computed anew.
class CVelumListCut {
public:
  // Shortens all computed lists of aStack that are too long, for as long as this object lives.
  explicit CVelumListCut(CVelumStack& aStack);
  ~CVelumListCut();
  CVelumListCut(const CVelumListCut&) = delete;
  CVelumListCut& operator=(const CVelumListCut&) = delete;

  // aList up to its last line end within EMaxStoredText characters; a line end alone when the first line is
  // longer.
  [[nodiscard]] static QString CutText(const QString& aList);
  // After a load: has the cut lists of aStack computed anew when they are next read.
  static void MarkCutLists(CVelumStack& aStack);

private:
  void CutDefault(CVelumControl& aControl);
  void CutValue(CVelumCard& aCard, qint32 aControlId);

  struct TDefault {
    Ref<CVelumControl> iControl;
    QString iText;
    bool iChanged;
  };
  struct TValue {
    Ref<CVelumCard> iCard;
    qint32 iControlId;
    QString iText;
    bool iChanged;
  };
  QList<TDefault> iDefaults;
  QList<TValue> iValues;
};
