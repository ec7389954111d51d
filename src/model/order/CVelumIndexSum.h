// Tells quickly whether an index holds what the cards give.
#pragma once

#include <QStringView>

// A sum over pairs of a key and a card's id, the same in whatever order they are added. Sums of the same
// pairs are equal, and those of others are not, but for a chance that is next to none: they have 64 bits, and
// hang on a random number that is another one in each run.
class CVelumIndexSum {
public:
  void Add(QStringView aKey, qint32 aId);
  [[nodiscard]] bool operator==(const CVelumIndexSum&) const = default;

private:
  quint64 iSum = 0;
  qint64 iCount = 0;
};
