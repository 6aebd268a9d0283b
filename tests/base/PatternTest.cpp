#include "base/Pattern.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>
#include <string>

using host::Pattern;
using host::PatternError;

namespace {

struct PatternCase {
    const char* pattern;
    const char* text;
    int begin; ///< -1: no match
    int length;
};

void PrintTo(const PatternCase& c, std::ostream* out) { *out << c.pattern << " in " << c.text; }

class PatternTest : public testing::TestWithParam<PatternCase> {};

} // namespace

// Faults: not the leftmost match or not the longest, wrong precedence of | and repetition, anchors that hold anywhere,
// sets with ], - or ^ in odd places, an escape that is not taken for the character.
TEST_P(PatternTest, FindsTheLeftmostLongestMatch) {
    const auto& [pattern, text, begin, length] = GetParam();
    const auto found = Pattern(pattern).find(text);
    ASSERT_EQ(found.has_value(), begin >= 0);
    if (!found) return;
    EXPECT_EQ(static_cast<int>(found->first), begin);
    EXPECT_EQ(static_cast<int>(found->second), length);
}

INSTANTIATE_TEST_SUITE_P(Alternatives, PatternTest,
                         testing::Values(PatternCase{"a|ab|abc", "xabcd", 1, 3}, PatternCase{"ab|cd*", "cddab", 0, 3},
                                         PatternCase{"x(a|b)+y", "xabbay", 0, 6}, PatternCase{"(|b)c", "abc", 1, 2},
                                         PatternCase{"^b|c", "abc", 2, 1}, PatternCase{"(a|b|c)$", "abc", 2, 1},
                                         PatternCase{"sky|fog", "clouds", -1, 0}));

INSTANTIATE_TEST_SUITE_P(Repetition, PatternTest,
                         testing::Values(PatternCase{"x*", "aaxx", 0, 0}, PatternCase{"x+", "aaxx", 2, 2},
                                         PatternCase{"ax?b", "axxb ab", 5, 2}, PatternCase{"(ab)*c", "ababac", 5, 1},
                                         PatternCase{"(ab)*c", "xababc", 1, 5}, PatternCase{"a+b+", "aabbab", 0, 4},
                                         PatternCase{"a**", "aaa", 0, 3}, PatternCase{"((a*)+)*b", "aaab", 0, 4},
                                         PatternCase{".+", "a\nb", 0, 3}));

INSTANTIATE_TEST_SUITE_P(Anchors, PatternTest,
                         testing::Values(PatternCase{"^", "abc", 0, 0}, PatternCase{"$", "abc", 3, 0},
                                         PatternCase{"^$", "", 0, 0}, PatternCase{"^$", "a", -1, 0},
                                         PatternCase{"b^", "ab", -1, 0}, PatternCase{"a$b", "a$b", -1, 0},
                                         PatternCase{"^a*$", "aab", -1, 0}, PatternCase{"(^a)+", "aa", 0, 1}));

INSTANTIATE_TEST_SUITE_P(Sets, PatternTest,
                         testing::Values(PatternCase{"[a-c]+", "xxabcd", 2, 3}, PatternCase{"[^a-c]+", "abxyc", 2, 2},
                                         PatternCase{"[]a]+", "x]a]", 1, 3}, PatternCase{"[^]a]+", "]abc]", 2, 2},
                                         PatternCase{"[a-]+", "b-a-", 1, 3}, PatternCase{"[-a]+", "b-a-", 1, 3},
                                         PatternCase{"[.*+]+", "ab.+*", 2, 3}, PatternCase{"[a^]+", "b^a", 1, 2},
                                         PatternCase{"[0-9A-F]+", "g1Fh", 1, 2}, PatternCase{"[z-a]", "amz", -1, 0},
                                         PatternCase{"[\\]+", "a\\b", 1, 1},
                                         PatternCase{"[\x80-\xff]+", "a\xc3\xa9", 1, 2}));

INSTANTIATE_TEST_SUITE_P(Escapes, PatternTest,
                         testing::Values(PatternCase{"\\.", "a.b", 1, 1}, PatternCase{"\\(a\\)", "(a)", 0, 3},
                                         PatternCase{"a\\|b", "a|b", 0, 3}, PatternCase{"\\\\", "a\\", 1, 1},
                                         PatternCase{"\\[x", "[x", 0, 2}, PatternCase{"\\$\\^", "$^", 0, 2},
                                         PatternCase{"a\\*", "aa*", 1, 2}));

// Faults: what another dialect of patterns means by these reaches the text.
INSTANTIATE_TEST_SUITE_P(Dialect, PatternTest,
                         testing::Values(PatternCase{"*a", "aa*a", 2, 2}, PatternCase{"a{2}", "aaa{2}", 2, 4},
                                         PatternCase{"\\d+", "12dd", 2, 2}, PatternCase{"a+?", "aab", 0, 2},
                                         PatternCase{"a?+b", "aab", 0, 3}, PatternCase{"(?b)", "a?b", 1, 2},
                                         PatternCase{"[[:a]+", "x:[a", 1, 3}, PatternCase{"^*a", "ba", 1, 1},
                                         PatternCase{"a^", "a\n", -1, 0}, PatternCase{"a$", "a\nb", -1, 0}));

// Faults: a broken pattern that reads past its end, or is taken for one that matches nothing.
TEST(PatternError, NamesWhatDoesNotPair) {
    for (const char* pattern : {"[", "[^", "[a-", "[]", "a[b", "(", "a(b", "(a|", "((a)", ")", "a)b", "(a))"})
        EXPECT_THROW(Pattern{pattern}, PatternError) << pattern;
    try {
        Pattern{std::string(1000, 'a') + "["};
        FAIL();
    } catch (const PatternError& e) {
        EXPECT_THAT(e.what(), testing::HasSubstr("unpaired \"[\""));
        EXPECT_LT(std::string(e.what()).size(), 400u) << "a message, not the whole pattern";
    }
    EXPECT_THROW(Pattern{std::string(1 << 20, 'a')}, PatternError);
}

// Faults: a file name pattern that matches a part only, a star that takes too much or too little and never comes back,
// a set that matches more than one character.
TEST(PatternGlob, MatchesTheWholeText) {
    struct Case {
        const char* pattern;
        const char* text;
        bool matches;
    };
    for (const auto& [pattern, text, matches] : {Case{"*.ma", "a.ma", true},
                                                 {"*.ma", "a.mat", false},
                                                 {"*.ma", ".ma", true},
                                                 {"?.ma", ".ma", false},
                                                 {"a*b*c", "aXbYbZc", true},
                                                 {"a*b*c", "aXcYb", false},
                                                 {"*aab", "aaaab", true},
                                                 {"", "", true},
                                                 {"", "a", false},
                                                 {"*", "", true},
                                                 {"**", "abc", true},
                                                 {"[a-c]?[!]", "bx!", true},
                                                 {"[^a]*", "abc", false},
                                                 {"[^a]*", "bc", true},
                                                 {"[ab]", "ab", false},
                                                 {"a.c", "abc", false},
                                                 {"a+", "aa", false},
                                                 {"A*", "abc", false}})
        EXPECT_EQ(host::matchesFileName(pattern, text), matches) << pattern << " on " << text;
    EXPECT_THROW(host::matchesFileName("[a", "a"), PatternError);
    EXPECT_TRUE(host::matchesName("a[1]*", "a[1]b")) << "nodes and attributes have no sets of characters";
}

// Fault: time that grows with the square of the text, 16 hours for this one.
TEST(PatternSpeed, FindsInAMebibyte) {
    const std::string text(1 << 20, 'a');
    EXPECT_FALSE(Pattern("[a-z]*b").find(text));
    EXPECT_FALSE(Pattern("(a|aa)+$x").find(text));
    EXPECT_EQ(Pattern("a(b*a)*$").find(text)->second, text.size());
    EXPECT_FALSE(host::matchesFileName("*a*[ab]?b", text));
}
