// What a fuzz target is made of. A target never returns from an input that does harm: it crashes, hangs, or
// aborts by itself.
#pragma once

#include <QByteArray>
#include <cstdint>
#include <random>

// Runs one input. Any bytes are allowed. Returns 0.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize);

namespace FuzzTarget {

// An input that gets further than plain noise would; the same for the same state of aRandom.
[[nodiscard]] QByteArray MakeInput(std::mt19937& aRandom);

// Fewer than aMost of aPieces in a row; instead of one in aOneIn stands any byte.
template <class T, std::size_t N>
[[nodiscard]] QByteArray Pieces(const T (&aPieces)[N], unsigned aMost, unsigned aOneIn,
                                std::mt19937& aRandom) {
  QByteArray bytes;
  for (auto left = aRandom() % aMost; left > 0; --left) {
    if (aRandom() % aOneIn == 0)
      bytes += static_cast<char>(aRandom());
    else
      bytes += aPieces[aRandom() % N];
  }
  return bytes;
}

} // namespace FuzzTarget
