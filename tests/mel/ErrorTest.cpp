#include "MelFixture.h"

#include <gmock/gmock.h>

using testing::HasSubstr;

struct ErrorCase {
    const char* script;
    const char* message; ///< a part of it
    int line;
};

void PrintTo(const ErrorCase& c, std::ostream* out) { *out << c.script; }

class ErrorTest : public testing::TestWithParam<ErrorCase> {};

TEST_P(ErrorTest, TellsWhatAndWhere) {
    MelFixture mel;
    try {
        mel.interpreter.execute(GetParam().script, "some/script.mel");
        FAIL() << "no error";
    } catch (const host::mel::Error& e) {
        EXPECT_THAT(e.what(), HasSubstr(GetParam().message));
        EXPECT_EQ(e.line(), GetParam().line);
        EXPECT_EQ(e.file(), "some/script.mel");
    }
    EXPECT_EQ(mel.printed, ""); // a syntax error keeps the whole text from running
}

static const ErrorCase kSyntax[] = {
    {"print \"ran\";\nint $x = ;", "Syntax error: unexpected \";\"", 2},
    {"print \"ran\";\nprint \"a\" + \"b\";", "Syntax error: unexpected \"+\"", 2},
    {"print \"ran\";\n\nif (1) {\n print 1;\n", "\"{\" is never closed", 3},
    {"print \"ran\";\nprint \"abc;\n", "unterminated string", 2},
    {"print \"ran\";\n/* never\n closed", "unterminated comment", 2},
    {"print \"ran\";\nprint (1 + 2;\n", "unexpected \";\"", 2},
    {"print \"ran\";\nstring $s = `size \"a\";\n\n", "\"`\" is never closed", 2},
    {"print \"ran\";\nprint $nowhere;", "\"$nowhere\" is an undeclared variable.", 2},
    {"print \"ran\";\nint $g;\nproc f() {\n  $g = $g + 1;\n}", "\"$g\" is an undeclared variable.", 4},
    {"print \"ran\";\n{ int $in; }\nprint $in;", "\"$in\" is an undeclared variable.", 3},
    {"print \"ran\";\nint $x;\nstring $x;", "Invalid redeclaration of variable \"$x\" as a different type.", 3},
    {"print \"ran\";\nbreak;", "break outside", 2},
    {"print \"ran\";\nproc f() {\n return 3; }", "cannot return a value", 3},
    {"print \"ran\"; }", "unexpected \"}\"", 1},
    {"print \"ran\";\nfoo = 3;", "unexpected \"=\"", 2},
    {"print \"ran\"; 3 = 4;", "only a variable can be assigned", 1},
    {"print \"ran\"; int $x = foo;", "unexpected \"foo\"", 1},
    {"print \"ran\"; if (1) { print 1 }", "unexpected \"}\"", 1},
    {"print \"ran\"; matrix $m[2];", "Syntax error", 1},
    {"print \"ran\"; select foo[$i];", "unexpected \"[\"", 1},
    {"print \"ran\"; print #;", "unexpected \"#\"", 1},
};
INSTANTIATE_TEST_SUITE_P(Syntax, ErrorTest, testing::ValuesIn(kSyntax));

static const ErrorCase kRunning[] = {
    {"\n\nfoo 1 2;", "Cannot find procedure \"foo\".", 3},
    {"int $x = 1 +\n bar(2);", "Cannot find procedure \"bar\".", 2},
    {"int $z = 0;\nint $x = 1 / $z;", "Cannot divide by zero.", 2},
    {"float $z;\n$z = 1.5 / $z;", "Cannot divide by zero.", 2},
    {"int $z;\n$z = 4 % $z;", "division by zero", 2},
    {"proc f(int $a) {}\nf(1, 2);", "Wrong number of arguments on call to f", 2},
    {"proc f(int $a) {}\nf;", "Wrong number of arguments on call to f", 2},
    {"sin(1, 2);", "Wrong number of arguments on call to sin.", 1},
    {"string $a[] = {\"x\"};\nstring $s = $a;", "Cannot convert data of type string[] to type string.", 2},
    {"proc nothing() {}\nint $x = nothing();", "type void", 2},
    {"string $a[] = {\"x\"};\nif ($a) print 1;", "Cannot use data of type string[] in a scalar operation.", 2},
    {"proc inner() {\n  error \"deep\";\n}\n\ninner;", "deep", 2},
    {"int $a[];\n$a[-1] = 3;", "negative", 2},
    {"int $a[];\n$a[2000000000] = 3;", "too large", 2},
    {"matrix $m[2][2];\n$m[2][0] = 1;", "out of range", 2},
    {"int $i = 3;\nprint ($i.x);", "components", 2},
    {"string $s = \"a\";\n$s = $s * 2;", "Invalid operands: string and int.", 2},
    {"eval \"1 +\";", "unexpected end of the text", 1},
    {"\neval \"\\n\\n nosuch;\";", "Cannot find procedure \"nosuch\".", 2},
    {"acos(2);", "out of range", 1},
    {"format -s \"a\" \"^2s\";", "no argument for ^2s", 1},
    {"match \"[a\" \"b\";", "unpaired \"[\"", 1},
    {"fprint 77 \"x\";", "no open file", 1},
    {"system \"ls\";", "system: scripts cannot start other programs here.", 1},
    {"help nosuch;", "No command is named 'nosuch'.", 1},
    {"source \"no/such/file.mel\";", "Cannot find file \"no/such/file.mel\"", 1},
    {"tokenize \"a b\" \" \" \"c\";", "string array", 1},
};
INSTANTIATE_TEST_SUITE_P(Running, ErrorTest, testing::ValuesIn(kRunning));

TEST(Catch, ShowsTheErrorUnlessQuietAndGoesOn) {
    MelFixture mel;
    EXPECT_EQ(mel.run("catch(`error \"loud\"`);\ncatchQuiet(`error \"quiet\"`); warning \"w\"; print \"on\";"), "on");
    EXPECT_THAT(mel.errors, HasSubstr("loud"));
    EXPECT_THAT(mel.errors, testing::Not(HasSubstr("quiet")));
    EXPECT_EQ(mel.warnings, "w\n");
}

TEST(Catch, AFailedTextLeavesTheInterpreterUsable) {
    MelFixture mel;
    EXPECT_THROW(mel.interpreter.execute("int $kept = 2; proc int f() { return 6; } error \"x\";"), host::mel::Error);
    EXPECT_EQ(mel.run("print (f() + $kept);"), "8");
}

TEST(CommandFailure, OtherExceptionsBecomeErrorsWithAPlace) {
    MelFixture mel;
    mel.interpreter.registerCommand("bad",
                                    [](host::mel::Call&) -> host::mel::Value { throw std::out_of_range("oops"); });
    mel.interpreter.registerCommand("told", [](host::mel::Call&) -> host::mel::Value {
        host::mel::Error e("reported");
        e.silent = true;
        throw e;
    });
    try {
        mel.interpreter.execute("\nbad;");
        FAIL();
    } catch (const host::mel::Error& e) {
        EXPECT_STREQ(e.what(), "oops");
        EXPECT_EQ(e.line(), 2);
    }
    try {
        mel.interpreter.execute("told;");
        FAIL();
    } catch (const host::mel::Error& e) {
        EXPECT_TRUE(e.silent);
    } // else it would be shown twice
}
