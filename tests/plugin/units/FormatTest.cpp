#include "Common/Format.h"
#include "kit/OtherLocale.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <gmock/gmock.h>
#include <limits>

using orvo::formatText;

namespace {

template <class... A>
std::string printed(const char* format, A... arguments) {
    char text[2048];
    const int length = std::snprintf(text, sizeof text, format, arguments...);
    return std::string(text, length);
}

const double reals[] = {0.0,
                        -0.0,
                        0.5,
                        -1.5,
                        0.0000005,
                        0.00000049999,
                        2.5,
                        1e15,
                        123456789.987654321,
                        std::numeric_limits<double>::max(),
                        std::numeric_limits<double>::denorm_min(),
                        std::numeric_limits<double>::infinity(),
                        -std::numeric_limits<double>::infinity(),
                        std::nan(""),
                        static_cast<double>(0.95f)};

} // namespace

// Catches any number that differs from what C's printf writes: rounding, signs, spellings, widths.
TEST(Format, RealsAreThoseOfPrintf) {
    for (const char* format : {"%f", "%.0f", "%.3f", "%12.2f|", "%-12.2f|", "%+f", "% f", "%012.3f", "%e", "%.2E", "%g",
                               "%.10g", "%G", "%lf"})
        for (const double value : reals) EXPECT_EQ(formatText(format, value), printed(format, value)) << format;
    // One spelling for what is no number, whichever sign its bits have.
    EXPECT_EQ(formatText("%f % G %+f", -std::nan(""), -std::nan(""), -std::nan("")), "nan  NAN +nan");
}

// Catches sign, base and padding faults, and a lost width of the argument's own type.
TEST(Format, IntegersAreThoseOfPrintf) {
    for (const char* format :
         {"%d", "%5d|", "%-5d|", "%05d", "%+d", "% d", "%.3d", "%8.3d", "%u", "%x", "%08X", "%o", "%.0d"})
        for (const int value : {0, 1, -1, 42, -12345, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
            EXPECT_EQ(formatText(format, value), printed(format, value)) << format;
    EXPECT_EQ(formatText("%llu", std::numeric_limits<unsigned long long>::max()), "18446744073709551615");
    EXPECT_EQ(formatText("%d %d", true, false), "1 0");
    EXPECT_EQ(formatText("%c%3c|", 'a', 'b'), "a  b|");
}

TEST(Format, Texts) {
    EXPECT_EQ(formatText("%s<%5s|%-5s|%.2s>", "a", std::string("b"), "c", "defg"), "a<    b|c    |de>");
    EXPECT_EQ(formatText("[%s]", static_cast<const char*>(nullptr)), "[(null)]");
}

// Driver logs are given as formats: a conversion must neither read what is not there nor vanish.
TEST(Format, ConversionsWithoutArgumentStandAsTheyAre) {
    EXPECT_EQ(formatText("100%% of %s, %5.2f, %n and %"), "100% of %s, %5.2f, %n and %");
    EXPECT_EQ(formatText("%d %s", "text", 1), "%d %s");
    EXPECT_EQ(formatText("%d %d", 1), "1 %d");
    EXPECT_EQ(formatText("%99999999999d", 1).size(), 20480u);
}

// Catches "0,5" in files written while the host runs in a locale with a decimal comma.
TEST(Format, IgnoresTheLocale) {
    const orvo::test::OtherLocale comma;
    if (!comma.found()) GTEST_SKIP() << "no locale with a decimal comma on this machine";
    const std::string text = formatText("%f %g %e %'d", 0.5, 1234.5, 0.5, 1234567);
    ASSERT_EQ(printed("%.1f", 0.5), "0,5") << "the locale is not what the test needs";
    EXPECT_THAT(text, testing::StartsWith("0.500000 1234.5 5.000000e-01 "));
}
