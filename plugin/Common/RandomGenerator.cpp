#include "RandomGenerator.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Common/RandomGenerator.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include <algorithm>

HWY_BEFORE_NAMESPACE();
namespace orvo::HWY_NAMESPACE {
namespace {

/// The recurrence's next word. Arithmetic in place of a table of {0, 0x9908B0DF} lets compilers do several at once.
HWY_INLINE HWY_ATTR std::uint32_t twisted(std::uint32_t upper, std::uint32_t lower, std::uint32_t ahead) {
    const std::uint32_t y = (upper & 0x80000000u) | (lower & 0x7FFFFFFFu);
    return ahead ^ (y >> 1) ^ ((0u - (y & 1u)) & 0x9908B0DFu);
}

HWY_INLINE HWY_ATTR std::uint32_t tempered(std::uint32_t y) {
    y ^= y >> 11;
    y ^= (y << 7) & 0x9D2C5680u;
    y ^= (y << 15) & 0xEFC60000u;
    return y ^ (y >> 18);
}

} // namespace

/// The next block of words in place of the last, and its outputs: plain loops, which the compiler turns into vectors of
/// the widest unit.
HWY_ATTR void nextBlock(std::uint32_t* HWY_RESTRICT words, std::uint32_t* HWY_RESTRICT outputs) {
    constexpr int wordCount = 624, middle = 397;
    int i = 0;
    for (; i < wordCount - middle; ++i) words[i] = twisted(words[i], words[i + 1], words[i + middle]);
    for (; i < wordCount - 1; ++i) words[i] = twisted(words[i], words[i + 1], words[i + middle - wordCount]);
    words[i] = twisted(words[i], words[0], words[middle - 1]);
    for (i = 0; i < wordCount; ++i) outputs[i] = tempered(words[i]);
}

} // namespace orvo::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace orvo {

HWY_EXPORT(nextBlock);

RandomGenerator& RandomGenerator::shared() {
    static RandomGenerator generator;
    return generator;
}

void RandomGenerator::SeedRandom(std::uint32_t seed) {
    words_[0] = seed;
    for (std::uint32_t i = 1; i < wordCount; ++i) words_[i] = 1812433253u * (words_[i - 1] ^ (words_[i - 1] >> 30)) + i;
    index_ = wordCount;
}

void RandomGenerator::regenerate() {
    HWY_DYNAMIC_DISPATCH(nextBlock)(words_.data(), tempered_.data() + maxAhead);
    index_ = 0;
}

void RandomGenerator::regenerateBehind() {
    const std::int32_t left = wordCount - index_;
    std::copy_n(tempered_.end() - left, left, tempered_.begin() + maxAhead - left);
    regenerate();
    index_ = -left;
}

void RandomGenerator::skip(std::uint64_t count) {
    while (count > static_cast<std::uint64_t>(wordCount - index_)) {
        count -= static_cast<std::uint64_t>(wordCount - index_);
        regenerate();
    }
    index_ += static_cast<std::int32_t>(count);
}

double RandomGenerator::RandomDouble53() {
    const double a = RandomUInt32() >> 5, b = RandomUInt32() >> 6;
    return (a * 67108864.0 + b) * 0x1p-53;
}

} // namespace orvo
#endif
