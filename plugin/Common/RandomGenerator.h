#pragma once

#include <array>
#include <cstdint>

namespace orvo {

/// The Mersenne Twister MT19937 of Matsumoto and Nishimura (1998). The same seed gives the same numbers on every
/// machine. Not for use by two threads at once: a worker has a generator of its own.
class RandomGenerator {
public:
    RandomGenerator() { SeedRandom(5489); }
    explicit RandomGenerator(std::uint32_t seed) { SeedRandom(seed); }

    /// The generator that the main thread shares: made at the first use, kept as long as the plug-in.
    static RandomGenerator& shared();

    void SeedRandom(std::uint32_t seed);
    /// All 32-bit values, evenly.
    std::uint32_t RandomUInt32() {
        if (index_ >= wordCount) regenerate();
        return tempered_.data()[maxAhead + index_++];
    }
    /// In [0, 1]: values close to 2^32 round up to exactly 1.
    float RandomFloat() { return static_cast<float>(RandomUInt32()) * 0x1p-32f; }
    /// In [0, 1) with 53 random bits, of two draws.
    double RandomDouble53();
    /// As many calls of RandomUInt32 without their values.
    void skip(std::uint64_t count);
    /// The values of the next calls of RandomUInt32, which are still to be made or skipped.
    template <int count>
    const std::uint32_t* ahead() {
        static_assert(count <= maxAhead);
        if (wordCount - index_ < count) regenerateBehind();
        return tempered_.data() + maxAhead + index_;
    }

private:
    static constexpr int wordCount = 624, maxAhead = 40;

    void regenerate();
    /// Regenerates while the last outputs, fewer than maxAhead, are still to be taken.
    void regenerateBehind();

    std::array<std::uint32_t, wordCount> words_;
    std::array<std::uint32_t, maxAhead + wordCount> tempered_; ///< the block's outputs; before them, some of the last's
    std::int32_t index_ = 0; ///< of the next output in the block; below 0 for those before it
};

} // namespace orvo
