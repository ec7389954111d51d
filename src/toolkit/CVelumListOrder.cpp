#include "toolkit/CVelumListOrder.h"

#include "core/text/CVelumCollation.h"

#include <QtEndian>
#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

enum ERank : int { ENumber, EText, EEmpty };

ERank RankOf(const TVelumLineKey& aKey) {
  // What is no number compares with none.
  if (aKey.iIsNum) return std::isnan(aKey.iNum) ? EEmpty : ENumber;
  return aKey.iText.isEmpty() ? EEmpty : EText;
}

// A number that compares as aNum does: negative ones by their magnitude, the other way round, and first.
quint64 OrderOf(double aNum) {
  constexpr quint64 ESign = quint64{1} << 63;
  const double num = aNum + 0.0; // of the two zeros the positive one
  quint64 bits = 0;
  std::memcpy(&bits, &num, sizeof bits);
  return bits & ESign ? ~bits : bits | ESign;
}

// Small, for they are moved about: what nearly always decides, and the line.
struct TSorted {
  quint64 iHead; // the number, or the first bytes of the text's sort key
  int iRank;
  int iLine;
};

class CSorter {
public:
  CSorter(const CVelumLineSource& aSource, int aNumLines, int aColumn) {
    iLines.reserve(static_cast<size_t>(aNumLines));
    iKeyAt.reserve(static_cast<size_t>(aNumLines));
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
    const ERank rank = RankOf(aKey);
    iKeyAt.push_back(iKeys.size());
    if (rank == EText) CVelumCollation::AppendSortKey(iKeys, aKey.iText);
    const quint64 head = rank == ENumber ? OrderOf(aKey.iNum) : HeadFrom(iKeyAt.back());
    iLines.push_back({head, rank, aLine});
  }

  // The first bytes of the key that was added last.
  [[nodiscard]] quint64 HeadFrom(qsizetype aKey) const {
    char head[sizeof(quint64)] = {};
    std::copy_n(iKeys.constData() + aKey, std::min<qsizetype>(sizeof head, iKeys.size() - aKey), head);
    return qFromBigEndian<quint64>(head);
  }

  [[nodiscard]] int Compare(const TSorted& aA, const TSorted& aB) const {
    if (aA.iRank != aB.iRank) return aA.iRank - aB.iRank;
    if (aA.iHead != aB.iHead) return aA.iHead < aB.iHead ? -1 : 1;
    return aA.iRank == EText ? std::strcmp(KeyOf(aA), KeyOf(aB)) : 0;
  }

  [[nodiscard]] const char* KeyOf(const TSorted& aLine) const {
    return iKeys.constData() + iKeyAt[static_cast<size_t>(aLine.iLine)];
  }

  std::vector<TSorted> iLines;
  QByteArray iKeys;              // all sort keys, each with a 0 at its end
  std::vector<qsizetype> iKeyAt; // where that of a line begins
};

} // namespace

std::vector<int> CVelumListOrder::Sorted(const CVelumLineSource& aSource, int aNumLines, int aColumn,
                                         bool aDescending) {
  return CSorter(aSource, aNumLines, aColumn).Run(aDescending);
}
