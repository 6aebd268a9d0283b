#include "MelFixture.h"

#include <random>

using host::mel::Error;

namespace {

constexpr const char* kSample = R"mel(
// A sample with most of the grammar.
global string $names[] = {"a", "b"};
global proc int sample(string $list[], float $f) {
    global string $names[];
    matrix $m[2][2] = <<1, 2; 3, 4>>;
    vector $v = <<$f, .5, 1e-3>>;
    int $n = 0;
    for ($item in $list) { if ($item == "b") continue; else $n += size($item); }
    for (int $i = 0; $i < 3; $i++) while ($n > 100) { $n--; break; }
    do { $n++; } while ($n < 4 && !0 || false);
    switch ($n) { case 1: case 4: $n = 7; break; default: return -1; }
    string $t = `substitute "x+" ("axx" + `toupper "q"`) "-"`; /* note */
    $m[1][0] = $v.x * 2 % 3 ? 1 : 2;
    return (int)($n + $m[1][0] + size($t));
}
int $result = sample({"one", "b"}, 2.0);
size "word" ; catch(`error -sl true "no \" \\ more"`);
)mel";

/// Runs hostile text: it may fail by an Error, by nothing else.
void runFreely(const std::string& text) {
    MelFixture mel;
    try {
        mel.interpreter.execute(text);
    } catch (const Error&) {}
}

std::string repeated(const std::string& text, int times) {
    std::string out;
    for (int i = 0; i < times; ++i) out += text;
    return out;
}

} // namespace

TEST(Robustness, EveryPrefixAndSuffixParsesOrFailsCleanly) {
    const std::string sample = kSample;
    MelFixture mel;
    mel.interpreter.execute(sample);
    ASSERT_EQ(mel.interpreter.globalVariable("result")->toInt(), 11); // 7 + 1 + size("a-Q")
    for (std::size_t i = 0; i <= sample.size(); ++i) {
        runFreely(sample.substr(0, i));
        runFreely(sample.substr(i));
    }
}

TEST(Robustness, DamagedTextParsesOrFailsCleanly) {
    std::mt19937 random(7);
    const std::string characters = "(){}[]<>;:,.`\"\\$+-*/%^=!&|?#@~'ax0 \n\0\xff";
    for (int i = 0; i < 3000; ++i) {
        std::string text = kSample;
        for (int k = 0; k < 3; ++k) text[random() % text.size()] = characters[random() % characters.size()];
        runFreely("proc neverRun() {" + text.substr(text.find('{', 100)) + "}"); // it might never end
    }
}

struct Nesting {
    const char *open, *close;
    friend void PrintTo(const Nesting& n, std::ostream* out) { *out << n.open << " " << n.close; }
};
class NestingTest : public testing::TestWithParam<Nesting> {};

TEST_P(NestingTest, DeepTextIsAnErrorNotACrash) {
    constexpr int deep = 100000;
    MelFixture mel;
    const auto [open, close] = GetParam();
    EXPECT_THROW(mel.interpreter.execute(repeated(open, deep) + "1" + repeated(close, deep) + ";"), Error);
    const std::string some = repeated(open, 30) + "1" + repeated(close, 30) + ";";
    EXPECT_NO_THROW(mel.interpreter.execute(some)) << some;
}

static const Nesting kNestings[] = {
    {"(", ")"},       {"- ", ""},      {"!", ""},     {"{", ";}"},           {"if (1) ", ""},
    {"$x = ", ""},    {"1 ? ", ": 0"}, {"abs(", ")"}, {"abs(`abs (", ")`)"}, {"while (0) ", ""},
    {"size({", "})"}, {"(int)", ""},
};
INSTANTIATE_TEST_SUITE_P(Nestings, NestingTest, testing::ValuesIn(kNestings));

TEST(Robustness, LongFlatTextIsNoDeepText) {
    MelFixture mel;
    EXPECT_EQ(mel.interpreter.execute("int $n = 0; $n = 1" + repeated(" + 1", 100000) + ";").toInt(), 100001);
    EXPECT_EQ(mel.run("int $i = 5000; if ($i == 0) print 0;" +
                      [] {
                          std::string out;
                          for (int i = 1; i <= 5000; ++i)
                              out += " else if ($i == " + std::to_string(i) + ") print " + std::to_string(i) + ";";
                          return out;
                      }()),
              "5000");
    EXPECT_EQ(mel.interpreter.execute("size \"" + std::string(1 << 20, 'x') + "\"").toInt(), 1 << 20);
    EXPECT_EQ(mel.run("int $" + std::string(100000, 'v') + " = 3; print " + std::string(300, '0') + "7;"), "7");
    EXPECT_THROW(mel.interpreter.execute("print $" + std::string(100000, 'u') + ";"), Error);
}

TEST(Robustness, EndlessRecursionIsAnErrorAndDeepRecursionWorks) {
    MelFixture mel;
    for (const char* script :
         {"proc r() { r; } r;", "proc int q(int $n) { return 1 + (((q($n + 1)))); } q(0);",
          "global proc e() { eval \"e\"; } e;",
          "proc int p(int $n) { int $a[]; if (1) { for (;;) "
          "{ switch (1) { case 1: return p($n) ? (1 + p(`size $a`)) : 2; } } } return 0; } p(1);"}) {
        try {
            mel.interpreter.execute(script);
            FAIL() << script;
        } catch (const Error& e) {
            EXPECT_NE(std::string(e.what()).find("Stack overflow"), std::string::npos) << e.what();
        }
    }
    EXPECT_EQ(mel.run("proc int down(int $n) { if ($n <= 0) return 0; return 1 + down($n - 1); } print (down(900));"),
              "900");
}

TEST(Robustness, APatternCannotHang) {
    MelFixture mel;
    const std::string text(20000, 'a');
    EXPECT_EQ(mel.run("print (size(match(\"(a*)*b\", \"" + text.substr(0, 2000) + "\")));"), "0");
    EXPECT_EQ(mel.run("print (size(match(\".*\", \"" + text + "\")));"), "20000");
    EXPECT_THROW(mel.run("match(\"" + repeated("(", 5000) + "\", \"a\");"), Error);
}

TEST(Robustness, EndlessGrowthIsAnError) {
    MelFixture mel;
    EXPECT_THROW(mel.run("string $s = \"0123456789abcdef\"; while (1) $s += $s;"), Error);
}

// Faults: patterns, separators or parts of a text whose time grows with the square of the text (hours for this one).
TEST(Robustness, TextOfAMebibyteTakesNoTime) {
    MelFixture mel;
    EXPECT_EQ(mel.run(R"mel(
string $s = "a", $half;
while (size($s) < 1048576) { $half = $s; $s = $s + $s; }
print (size(match("[a-z]*b", $s)) + " " + size(match("a+$", $s)) + " " + size(substitute("(a|b)*[^a]|aa", $s, "")));
print (" " + gmatch($s, "*a*b") + " " + isValidString($s, "a*") + " " + size(substituteAllString($s, $half + "b", "")));
string $parts[];
print (" " + tokenize($s + "," + $s, $half + ",", $parts));
print (" " + tokenize($s + "," + $s, $half + ",x" + $s, $parts));
)mel"),
              "0 1048576 1048574 0 1 1048576 0 0");
}
