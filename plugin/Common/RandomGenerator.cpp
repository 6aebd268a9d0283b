#include "RandomGenerator.h"

namespace orvo {
namespace {

constexpr int wordCount = 624, middle = 397;
constexpr std::array<std::uint32_t, 2> twist{0, 0x9908B0DF};

std::uint32_t twisted(std::uint32_t upper, std::uint32_t lower, std::uint32_t ahead) {
    const std::uint32_t y = (upper & 0x80000000u) | (lower & 0x7FFFFFFFu);
    return ahead ^ (y >> 1) ^ twist[y & 1];
}

} // namespace

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
    int i = 0;
    for (; i < wordCount - middle; ++i) words_[i] = twisted(words_[i], words_[i + 1], words_[i + middle]);
    for (; i < wordCount - 1; ++i) words_[i] = twisted(words_[i], words_[i + 1], words_[i + middle - wordCount]);
    words_[i] = twisted(words_[i], words_[0], words_[middle - 1]);
    index_ = 0;
}

std::uint32_t RandomGenerator::RandomUInt32() {
    if (index_ >= wordCount) regenerate();
    std::uint32_t y = words_[index_++];
    y ^= y >> 11;
    y ^= (y << 7) & 0x9D2C5680u;
    y ^= (y << 15) & 0xEFC60000u;
    return y ^ (y >> 18);
}

double RandomGenerator::RandomDouble53() {
    const double a = RandomUInt32() >> 5, b = RandomUInt32() >> 6;
    return (a * 67108864.0 + b) * 0x1p-53;
}

} // namespace orvo
