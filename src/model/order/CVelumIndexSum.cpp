#include "model/order/CVelumIndexSum.h"

#include <QRandomGenerator>
#include <cstring>

namespace {

struct TSeed {
  quint64 iFirst = QRandomGenerator::system()->generate64();
  quint64 iSecond = QRandomGenerator::system()->generate64();
};

// Both halves of the product of two numbers, one laid over the other.
quint64 Mixed(quint64 aA, quint64 aB) {
  __extension__ using TWide = unsigned __int128;
  const TWide product = static_cast<TWide>(aA) * aB;
  return static_cast<quint64>(product) ^ static_cast<quint64>(product >> 64);
}

quint64 Word(const char* aFrom, qsizetype aLen) {
  quint64 word = 0;
  std::memcpy(&word, aFrom, static_cast<size_t>(qBound(qsizetype{0}, aLen, qsizetype{8})));
  return word;
}

} // namespace

// A load of a large stack comes here four times for each card. The hash functions of Qt work with wide
// registers, which holds up what stands around them so much that the load takes a fifth longer.
void CVelumIndexSum::Add(QStringView aKey, qint32 aId) {
  static const TSeed seed;
  const char* bytes = reinterpret_cast<const char*>(aKey.utf16());
  quint64 hash =
      seed.iSecond ^ static_cast<quint64>(aKey.size()) ^ (quint64{static_cast<quint32>(aId)} << 32);
  for (qsizetype rest = 2 * aKey.size(); rest > 0; rest -= 16, bytes += 16)
    hash = Mixed(Word(bytes, rest) ^ seed.iFirst, Word(bytes + 8, rest - 8) ^ hash);
  iSum += Mixed(hash ^ seed.iFirst, hash ^ seed.iSecond);
  ++iCount;
}
