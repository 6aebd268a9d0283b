#include "Common/ScanNumber.h"
#include "CloudFiles.h"

#include <cmath>
#include <limits>

using namespace orvo;

// Catches a number that differs from what C's own scanner reads, in value or in what is left behind it: signs, blanks,
// exponents, denormals, halves between two floats, too many digits, overflow that is taken for underflow.
TEST(ScanNumber, ReadsRealsAsCDoes) {
    for (const std::string text : {"0",
                                   "-0",
                                   "1.5",
                                   "+1.5",
                                   " \t\n\r\v\f2",
                                   "2abc",
                                   "2 3",
                                   ".5",
                                   "5.",
                                   "-.5e1x",
                                   "1e3",
                                   "1E+3",
                                   "1e-3",
                                   "1e38",
                                   "3.4028235e38",
                                   "3.4028236e38",
                                   "1e39",
                                   "-1e39",
                                   "1e400",
                                   "-1e400",
                                   "1e-45",
                                   "7e-46",
                                   "1e-46",
                                   "1e-50",
                                   "-1e-50",
                                   "1e-400",
                                   "1e99999999999999999999",
                                   "1e-99999999999999999999",
                                   "0e99999999999999999999",
                                   "0x1F",
                                   "-0X1.8p2",
                                   "0.100000001490116119384765625",
                                   "0.1000000052154064178466796875",
                                   "16777217",
                                   "0.000000000000000000000001e24",
                                   "123456789012345678901234567890",
                                   "inf",
                                   "-INF",
                                   "infinity",
                                   "nan",
                                   "1,5",
                                   "1.2.3",
                                   "007"}) {
        std::string_view rest = text;
        char* end = nullptr;
        const float expected = std::strtof(text.c_str(), &end);
        const auto value = scanReal<float>(rest);
        ASSERT_TRUE(value) << text;
        EXPECT_TRUE(*value == expected || (std::isnan(*value) && std::isnan(expected))) << text << " is not " << *value;
        EXPECT_EQ(std::signbit(*value), std::signbit(expected)) << text;
        EXPECT_EQ(rest, end) << text;

        rest = text;
        const double wide = std::strtod(text.c_str(), &end);
        EXPECT_TRUE(std::isnan(wide) || scanReal<double>(rest) == wide) << text;
    }
    const std::string tiny = "0." + std::string(400, '0') + "1", huge = "1" + std::string(400, '0');
    for (const std::string& text : {tiny, huge, huge + "e-400", tiny + "e401", huge + ".5e-700"}) {
        std::string_view rest = text;
        EXPECT_EQ(scanReal<double>(rest), std::strtod(text.c_str(), nullptr)) << text;
        rest = text;
        EXPECT_EQ(scanReal<float>(rest), std::strtof(text.c_str(), nullptr)) << text;
    }
}

// Catches an invented number, and a text that is moved on without one.
TEST(ScanNumber, FindsNoNumberWhereThereIsNone) {
    for (const std::string text : {"", " ", "-", "+", "--1", "+-1", "- 1", "e5", ".", "x", "\"", ",5"}) {
        std::string_view rest = text;
        EXPECT_FALSE(scanReal<float>(rest)) << text;
        EXPECT_EQ(rest, text);
        EXPECT_FALSE(scanInteger(rest)) << text;
        EXPECT_EQ(rest, text);
    }
}

TEST(ScanNumber, ReadsIntegers) {
    for (const auto& [text, expected] : std::initializer_list<std::pair<const char*, std::int64_t>>{
             {"0", 0},
             {" -7x", -7},
             {"+12.9", 12},
             {"-2147483648", -2147483648LL},
             {"4294967295", 4294967295LL},
             {"9223372036854775807", std::numeric_limits<std::int64_t>::max()},
             {"+99999999999999999999999", std::numeric_limits<std::int64_t>::max()},
             {"-9223372036854775809", std::numeric_limits<std::int64_t>::min()}}) {
        std::string_view rest = text;
        EXPECT_EQ(scanInteger(rest), expected) << text;
    }
}

// Catches a reader that asks the locale for its decimal point.
TEST(ScanNumber, IgnoresTheLocale) {
    const orvo::test::OtherLocale comma;
    if (!comma.found()) GTEST_SKIP() << "no locale with a decimal comma on this machine";
    ASSERT_EQ(std::strtod("1.5", nullptr), 1.0) << "the locale is not what the test needs";
    std::string_view rest = "1.5 2,5";
    EXPECT_EQ(scanReal<float>(rest), 1.5f);
    EXPECT_EQ(scanReal<double>(rest), 2.0);
}
