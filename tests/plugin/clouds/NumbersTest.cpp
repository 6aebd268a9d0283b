#include "Common/Checksums.h"
#include "Common/Matrix44.h"
#include "Common/RandomGenerator.h"

#include <gtest/gtest.h>

using namespace orvo;

// The reference sequence: first outputs as in the generator's published tables, and the value that the C++ standard
// states for std::mt19937. Catches a wrong split point, mask or shift.
TEST(RandomGenerator, IsMT19937) {
    RandomGenerator random;
    EXPECT_EQ(random.RandomUInt32(), 3499211612u);
    EXPECT_EQ(random.RandomUInt32(), 581869302u);
    EXPECT_EQ(random.RandomUInt32(), 3890346734u);
    RandomGenerator seeded(1);
    seeded.SeedRandom(5489);
    for (int i = 1; i < 10000; ++i) seeded.RandomUInt32();
    EXPECT_EQ(seeded.RandomUInt32(), 4123659995u);
    RandomGenerator one(1);
    EXPECT_EQ(one.RandomUInt32(), 1791095845u);
    EXPECT_EQ(one.RandomUInt32(), 4282876139u);
    EXPECT_EQ(&RandomGenerator::shared(), &RandomGenerator::shared());
}

TEST(RandomGenerator, SkipsAndShowsWhatItWouldGive) {
    for (const unsigned before : {0u, 1u, 623u, 624u})
        for (const unsigned count : {0u, 1u, 2u, 623u, 624u, 625u, 1247u, 1248u, 5000u}) {
            RandomGenerator drawn(9), skipped(9);
            for (unsigned i = 0; i < before; ++i) drawn.RandomUInt32(), skipped.RandomUInt32();
            for (unsigned i = 0; i < count; ++i) drawn.RandomUInt32();
            skipped.skip(count);
            SCOPED_TRACE(testing::Message() << before << " drawn, " << count << " skipped");
            EXPECT_EQ(skipped.RandomUInt32(), drawn.RandomUInt32());
            // Those ahead, too, some of them beyond the end of a block, whether taken or skipped afterwards.
            for (const unsigned taken : {20u, 0u, 32u}) {
                const std::uint32_t* ahead = skipped.ahead<32>();
                RandomGenerator other = drawn;
                for (int i = 0; i < 32; ++i) ASSERT_EQ(ahead[i], other.RandomUInt32()) << i << " ahead";
                for (unsigned i = 0; i < taken; ++i) ASSERT_EQ(skipped.RandomUInt32(), drawn.RandomUInt32());
                skipped.skip(600);
                for (int i = 0; i < 600; ++i) drawn.RandomUInt32();
            }
        }
}

// Outputs of seed 5489 by hand: 3499211612 rounds to the single 3499211520; as 53 bits, 109350362 x 2^26 + 9091707
// (581869302 >> 6) over 2^53.
TEST(RandomGenerator, MakesFloatsAndDoubles) {
    RandomGenerator random;
    EXPECT_EQ(random.RandomFloat(), 3499211520.0f / 4294967296.0f);
    random.SeedRandom(5489);
    EXPECT_EQ(random.RandomDouble53(), (109350362.0 * 67108864.0 + 9091707.0) / 9007199254740992.0);
    // Catches a generator whose range was mended: outputs from 4294967168 on round up to 2^32.
    bool reachesOne = false;
    for (std::uint32_t i = 0; i < 100'000'000 && !reachesOne; ++i) {
        const float value = random.RandomFloat();
        ASSERT_LE(value, 1.0f);
        reachesOne = value == 1.0f;
    }
    EXPECT_TRUE(reachesOne) << "one output in 33 million should be 1";
}

// Check values of the CRC catalogue. Catches wrong tables, initial values, reflections and complements.
TEST(Checksums, MatchTheCatalogue) {
    EXPECT_EQ(Crc32("123456789"), 0xCBF43926u);
    EXPECT_EQ(Crc32("123456789\0tail", 9), 0xCBF43926u);
    EXPECT_EQ(Crc32(""), 0u);
    EXPECT_EQ(Crc32(static_cast<const char*>(nullptr)), 0u);
    EXPECT_EQ(Crc32("The quick brown fox jumps over the lazy dog"), 0x414FA339u);
    EXPECT_EQ(Crc16("123456789", 9), 0xE5CCu);
    EXPECT_EQ(Crc16("", 0), 0x1D0Fu);
}

// A matrix whose inverse is known by hand: scale by 2, 4, 8 with a move. Catches a transposed adjugate.
TEST(Matrix44, IsInvertedAboveTheTolerance) {
    const Matrix44 m{{{0, 2, 0, 0}, {4, 0, 0, 0}, {0, 0, 8, 0}, {6, 10, 16, 1}}};
    const Matrix44 expected{{{0, 0.25, 0, 0}, {0.5, 0, 0, 0}, {0, 0, 0.125, 0}, {-5, -1.5, -2, 1}}};
    bool invertible = false;
    EXPECT_EQ(MatrixInverse(m, 1e-10, &invertible), expected);
    EXPECT_TRUE(invertible);
    EXPECT_EQ(MatrixDeterminant(m), -64.0);
    EXPECT_EQ(MatrixTransformPoint(m, {1, 2, 3}), (Vector3{14, 12, 40}));
    EXPECT_EQ(MatrixTransformPoint(expected, {14, 12, 40}), (Vector3{1, 2, 3}));
    // At the tolerance a matrix counts as singular, on both sides of 0.
    for (const double tolerance : {64.0, 1e9}) {
        EXPECT_EQ(MatrixInverse(m, tolerance, &invertible), Matrix44{});
        EXPECT_FALSE(invertible);
    }
    EXPECT_EQ(MatrixInverse(m, 63.9), expected);
    Matrix44 tiny;
    tiny.m[0][0] = 1e-300;
    EXPECT_DOUBLE_EQ(MatrixInverse(tiny, 0.0, &invertible).m[0][0], 1e300);
    EXPECT_TRUE(invertible);
    tiny.m[0][0] = 0.0;
    EXPECT_EQ(MatrixInverse(tiny, 0.0, &invertible), Matrix44{});
    EXPECT_FALSE(invertible);
    tiny.m[0][0] = std::nan("");
    EXPECT_EQ(MatrixInverse(tiny, 1e-10, &invertible), Matrix44{});
    EXPECT_FALSE(invertible);
}

TEST(Matrix44, HasTheFullSetOfHelpers) {
    const Matrix44 m{{{1, 2, 3, 4}, {5, 6, 7, 8}, {9, 10, 11, 12}, {13, 14, 15, 17}}};
    EXPECT_EQ(MatrixTranspose(m).m[3][1], 8.0);
    EXPECT_EQ(MatrixScale(m, -2.0).m[3][3], -34.0);
    EXPECT_EQ(MatrixMultiply(translationMatrix({1, 1, 1}), m).m[3][0], 28.0);
    Matrix44 other = m;
    EXPECT_TRUE(MatrixEqual(m, other));
    other.m[3][3] = std::nextafter(17.0, 18.0);
    EXPECT_TRUE(MatrixNotEqual(m, other));
}
