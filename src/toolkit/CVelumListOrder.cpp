#include "toolkit/CVelumListOrder.h"

#include "core/CVelumCollation.h"

#include <QtEndian>
#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

// What a line is sorted by, cut to what nearly always decides.
struct TSorted {
  int iRank = 0; // numbers, texts, empty texts
  int iLine = 0;
  double iNum = 0;
  quint64 iHead = 0;  // the first bytes of the text's sort key
  qsizetype iKey = 0; // where all of it stands
};

enum ERank : int { ENumber, EText, EEmpty };

ERank RankOf(const TVelumLineKey& aKey) {
  // What is no number compares with none.
  if (aKey.iIsNum) return std::isnan(aKey.iNum) ? EEmpty : ENumber;
  return aKey.iText.isEmpty() ? EEmpty : EText;
}

class CSorter {
public:
  CSorter(const CVelumLineSource& aSource, int aNumLines, int aColumn) {
    iLines.reserve(static_cast<size_t>(aNumLines));
    for (int i = 0; i < aNumLines; ++i) Add(i, aSource.SortKey(i, aColumn));
  }

  std::vector<int> Run(bool aDescending) {
    // Sorted once more by the line, equal ones keep their order.
    const auto before = [&](const TSorted& aA, const TSorted& aB) {
      const int order = aDescending ? Compare(aB, aA) : Compare(aA, aB);
      return order != 0 ? order < 0 : aA.iLine < aB.iLine;
    };
    std::sort(iLines.begin(), iLines.end(), before);
    std::vector<int> lines;
    lines.reserve(iLines.size());
    for (const TSorted& line : iLines) lines.push_back(line.iLine);
    return lines;
  }

private:
  void Add(int aLine, const TVelumLineKey& aKey) {
    TSorted line{RankOf(aKey), aLine, aKey.iNum, 0, iKeys.size()};
    if (line.iRank == EText) {
      CVelumCollation::AppendSortKey(iKeys, aKey.iText);
      char head[sizeof(quint64)] = {};
      std::memcpy(head, iKeys.constData() + line.iKey,
                  std::min<size_t>(sizeof head, static_cast<size_t>(iKeys.size() - line.iKey)));
      line.iHead = qFromBigEndian<quint64>(head);
    }
    iLines.push_back(line);
  }

  [[nodiscard]] int Compare(const TSorted& aA, const TSorted& aB) const {
    if (aA.iRank != aB.iRank) return aA.iRank - aB.iRank;
    if (aA.iRank == ENumber) return (aA.iNum > aB.iNum) - (aA.iNum < aB.iNum);
    if (aA.iHead != aB.iHead) return aA.iHead < aB.iHead ? -1 : 1;
    if (aA.iRank == EEmpty) return 0;
    return std::strcmp(iKeys.constData() + aA.iKey, iKeys.constData() + aB.iKey);
  }

  std::vector<TSorted> iLines;
  QByteArray iKeys; // all sort keys, each with a 0 at its end
};

} // namespace

std::vector<int> CVelumListOrder::Sorted(const CVelumLineSource& aSource, int aNumLines, int aColumn,
                                         bool aDescending) {
  return CSorter(aSource, aNumLines, aColumn).Run(aDescending);
}
