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

} // namespace FuzzTarget
