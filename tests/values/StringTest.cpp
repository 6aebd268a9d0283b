#include "kit/OtherLocale.h"

#include <maya/MString.h>
#include <maya/MStringArray.h>

#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string>

namespace {

std::string text(const MString& s) { return {s.asChar(), s.length()}; }

struct SubstringCase {
    int start, end;
    const char* bytes;  // of "abcdef"
    const char* points; // of "aäb€c😀"
    friend void PrintTo(const SubstringCase& c, std::ostream* out) { *out << c.start << " to " << c.end; }
};

class Substring : public testing::TestWithParam<SubstringCase> {};

// Fault: an exclusive end, a crash outside the text, or code points cut in the middle.
TEST_P(Substring, IsInclusiveAndHeldToTheText) {
    const auto& c = GetParam();
    EXPECT_EQ(text(MString("abcdef").substring(c.start, c.end)), c.bytes);
    EXPECT_EQ(text(MString("aäb€c😀").substringW(c.start, c.end)), c.points);
    EXPECT_EQ(text(MString().substring(c.start, c.end)), "");
}

INSTANTIATE_TEST_SUITE_P(Ranges, Substring,
                         testing::Values(SubstringCase{0, 0, "a", "a"}, SubstringCase{1, 3, "bcd", "äb€"},
                                         SubstringCase{-5, 1, "ab", "aä"}, SubstringCase{4, 100, "ef", "c😀"},
                                         SubstringCase{3, 2, "", ""}, SubstringCase{6, 9, "", ""},
                                         SubstringCase{INT_MIN, INT_MAX, "abcdef", "aäb€c😀"},
                                         SubstringCase{INT_MAX, INT_MIN, "", ""}));

// Fault: bytes counted as characters, or positions of the wrong kind.
TEST(String, CountsBytesAndCodePoints) {
    const MString s("aäb€c😀a");
    EXPECT_EQ(s.length(), 13u); // 1 + 2 + 1 + 3 + 1 + 4 + 1
    EXPECT_EQ(s.numChars(), 7u);
    EXPECT_EQ(s.index('b'), 3);
    EXPECT_EQ(s.indexW('b'), 2);
    EXPECT_EQ(s.rindex('a'), 12);
    EXPECT_EQ(s.rindexW('a'), 6);
    EXPECT_EQ(s.indexW(L'€'), 3);
    EXPECT_EQ(s.indexW(MString("€c")), 3);
    EXPECT_EQ(s.rindexW(MString("zz")), -1);
    EXPECT_EQ(s.index('z'), -1);
    EXPECT_EQ(std::wstring(s.asWChar()), L"aäb€c😀a");
    EXPECT_EQ(MString(L"aäb€c😀a"), s);
    EXPECT_EQ(MString("\xFFz").numChars(), 2u); // not UTF-8
}

// Fault: bytes that are no UTF-8 (overlong, half of a pair, beyond the last code point, cut off) taken for characters;
// an end of a range of lengths that belongs to its neighbour.
TEST(String, WideTextsAreWellFormedOrBytes) {
    for (const char* odd : {"\xC0\x80", "\xC1\xBF", "\xE0\x9F\xBF", "\xF0\x8F\xBF\xBF", "\xED\xA0\x80",
                            "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xE2\x82", "\x80", "\xC3("})
        EXPECT_EQ(MString(odd).numChars(), MString(odd).length()) << testing::PrintToString(odd);
    const std::pair<const wchar_t*, const char*> ends[] = {{L"\x7F", "\x7F"},
                                                           {L"\x80", "\xC2\x80"},
                                                           {L"\x7FF", "\xDF\xBF"},
                                                           {L"\x800", "\xE0\xA0\x80"},
                                                           {L"\xFFFF", "\xEF\xBF\xBF"},
                                                           {L"\x10000", "\xF0\x90\x80\x80"},
                                                           {L"\x10FFFF", "\xF4\x8F\xBF\xBF"}};
    for (const auto& [wide, bytes] : ends) {
        EXPECT_EQ(text(MString(wide)), bytes);
        EXPECT_EQ(std::wstring(MString(bytes).asWChar()), wide) << testing::PrintToString(bytes);
    }
    EXPECT_EQ(text(MString(L"sky\x2601 and more", 4)), "sky\xE2\x98\x81") << "as long as is said, not as the text is";
}

struct SplitCase {
    const char* text;
    std::vector<std::string> parts;
    friend void PrintTo(const SplitCase& c, std::ostream* out) { *out << testing::PrintToString(std::string(c.text)); }
};

class Split : public testing::TestWithParam<SplitCase> {};

// Fault: empty parts, or a lost last part.
TEST_P(Split, DropsEmptyParts) {
    MStringArray bytes, wide;
    bytes.append("old");
    EXPECT_TRUE(MString(GetParam().text).split('|', bytes));
    EXPECT_TRUE(MString(GetParam().text).split(L'|', wide));
    ASSERT_EQ(bytes.length(), GetParam().parts.size());
    ASSERT_EQ(wide.length(), GetParam().parts.size());
    for (unsigned int i = 0; i < bytes.length(); ++i) {
        EXPECT_EQ(text(bytes[i]), GetParam().parts[i]);
        EXPECT_EQ(wide[i], bytes[i]);
    }
}

INSTANTIATE_TEST_SUITE_P(Texts, Split,
                         testing::Values(SplitCase{"", {}}, SplitCase{"|||", {}}, SplitCase{"a", {"a"}},
                                         SplitCase{"|a||ä|", {"a", "ä"}}, SplitCase{"a|b c", {"a", "b c"}}));

struct NumberCase {
    const char* text;
    bool isInt, isDouble;
    int asInt;
    double asDouble;
    friend void PrintTo(const NumberCase& c, std::ostream* out) { *out << testing::PrintToString(std::string(c.text)); }
};

class NumberText : public testing::TestWithParam<NumberCase> {};

// Fault: text with more than a number accepted, overflow wrapped around, or a number half read.
TEST_P(NumberText, Reads) {
    const MString s(GetParam().text);
    EXPECT_EQ(s.isInt(), GetParam().isInt);
    EXPECT_EQ(s.isDouble(), GetParam().isDouble);
    EXPECT_EQ(s.asInt(), GetParam().asInt);
    EXPECT_DOUBLE_EQ(s.asDouble(), GetParam().asDouble);
}

INSTANTIATE_TEST_SUITE_P(Texts, NumberText,
                         testing::Values(NumberCase{"12", true, true, 12, 12}, NumberCase{" -7 ", true, true, -7, -7},
                                         NumberCase{"+3", true, true, 3, 3}, NumberCase{"+-3", false, false, 0, 0},
                                         NumberCase{"1.5e2", false, true, 1, 150},
                                         NumberCase{".5", false, true, 0, 0.5},
                                         NumberCase{"-.25x", false, false, 0, -0.25},
                                         NumberCase{"12abc", false, false, 12, 12}, NumberCase{"", false, false, 0, 0},
                                         NumberCase{"  ", false, false, 0, 0}, NumberCase{"nan", false, false, 0, 0},
                                         NumberCase{"inf", false, false, 0, 0}, NumberCase{"0,5", false, false, 0, 0},
                                         NumberCase{"99999999999", false, true, INT_MAX, 99999999999.0},
                                         NumberCase{"-99999999999999999999", false, true, INT_MIN, -1e20},
                                         NumberCase{"1e-400", false, true, 1, 0.0}));

// Fault: a range other than the type's.
TEST(String, NumberRanges) {
    EXPECT_TRUE(MString("32767").isShort());
    EXPECT_FALSE(MString("32768").isShort());
    EXPECT_EQ(MString("32768").asShort(), SHRT_MAX);
    EXPECT_TRUE(MString("4294967295").isUnsigned());
    EXPECT_FALSE(MString("-1").isUnsigned());
    EXPECT_TRUE(MString("3e38").isFloat());
    EXPECT_FALSE(MString("4e38").isFloat());
    EXPECT_FALSE(MString("1e400").isDouble());
    EXPECT_FLOAT_EQ(MString("0.25f").asFloat(), 0.25f);
}

std::string writtenNumbers() {
    MString s("a");
    s += 0.5;
    s += " ";
    s = s + 1234567;
    s += "|";
    s += 0.1f;
    s += "|";
    s += -3;
    s += "|";
    s += 4000000000u;
    s += "|";
    s += 1.0 / 3.0;
    s += "|";
    s += 1e20;
    MString fixed;
    fixed.set(-2.345678, 2);
    std::ostringstream os;
    os << s << '|' << fixed;
    return os.str();
}

const char* const expectedNumbers = "a0.5 1234567|0.1|-3|4000000000|0.3333333333|1e+20|-2.35";

// Fault: digits lost or added, "1.23457e+06" for a frame number.
TEST(String, WritesNumbers) {
    EXPECT_EQ(writtenNumbers(), expectedNumbers);
    MString s("x");
    EXPECT_EQ(s.set(1.0, -1), MStatus::kInvalidParameter);
    EXPECT_EQ(s.set("abc", -1), MStatus::kInvalidParameter);
    EXPECT_EQ(text(s), "x");
    EXPECT_TRUE(s.set("abc", 2));
    EXPECT_EQ(text(s), "ab");
}

// Fault: "0,5" written, or "0.5" read as 0, in a process with a comma locale.
TEST(String, NumbersDoNotDependOnTheLocale) {
    const orvo::test::OtherLocale comma;
    if (!comma.found()) GTEST_SKIP() << "no locale with a decimal comma on this machine";
    EXPECT_EQ(writtenNumbers(), expectedNumbers);
    EXPECT_DOUBLE_EQ(MString("0.5").asDouble(), 0.5);
    EXPECT_FALSE(MString("0,5").isDouble());
}

// Fault: replaced text replaced again, an endless loop, or arguments in the wrong places.
TEST(String, SubstitutesAndFormats) {
    MString s("aXbXc");
    EXPECT_TRUE(s.substitute("X", "XX"));
    EXPECT_EQ(text(s), "aXXbXXc");
    EXPECT_TRUE(s.substituteFirst("XX", ""));
    EXPECT_EQ(text(s), "abXXc");
    EXPECT_EQ(s.substitute("", "y"), MStatus::kInvalidParameter);

    EXPECT_TRUE(s.format("^2s and ^1s, ^x ^", "one", "^1s"));
    EXPECT_EQ(text(s), "^1s and one, ^x ^");
    EXPECT_EQ(s.format("^1s ^3s ^99999999999999999999s", "one"), MStatus::kInvalidParameter);
    EXPECT_EQ(text(s), "one ^3s ^99999999999999999999s");
    const char* words[]{"a", "b"};
    EXPECT_TRUE(s.format(s = "^2s^1s", MStringArray(words, 2)));
    EXPECT_EQ(text(s), "ba");
}

// Fault: variables or the home folder not replaced, or text after them lost.
TEST(String, ExpandsPaths) {
    setenv("ORVO_TEST_FOLDER", "/data", 1);
    setenv("HOME", "/home/someone", 1);
    EXPECT_EQ(text(MString("~/x/$ORVO_TEST_FOLDER").expandEnvironmentVariablesAndTilde()), "/home/someone/x//data");
    EXPECT_EQ(text(MString("${ORVO_TEST_FOLDER}2/$ ${").expandEnvironmentVariablesAndTilde()), "/data2/$ ${");
    EXPECT_EQ(text(MString("$ORVO_TEST_FOLDER/a/../b").expandFilePath()), "/data/b");
    EXPECT_EQ(text(MString("b").expandFilePath()), (std::filesystem::current_path() / "b").string());
}

// Fault: a null pointer, the text itself as source, or letters outside ASCII changed.
TEST(String, EdgesOfAssignment) {
    const char* nothing = nullptr;
    MString s(nothing);
    s += nothing;
    EXPECT_EQ(s, nothing);
    s = "abc";
    s = s.asChar() + 1;
    EXPECT_EQ(text(s), "bc");
    s += s;
    EXPECT_EQ(text("x" + s), "xbcbc");
    EXPECT_EQ(text(MString("äBc").toUpperCase()), "äBC");
    EXPECT_EQ(text(MString("ÄBc").toLowerCase()), "Äbc");
    EXPECT_EQ(text(MString("abc", 2)), "ab");
    EXPECT_EQ(text(MString("abc", -2)), "");
}

} // namespace
