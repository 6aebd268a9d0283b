#include "MelFixture.h"

// The expected texts are worked out by hand from the language's rules.

class LanguageTest : public testing::TestWithParam<PrintCase> {};

TEST_P(LanguageTest, PrintsWhatTheLanguageSays) {
    MelFixture mel;
    try {
        EXPECT_EQ(mel.run(GetParam().script), GetParam().expected);
    } catch (const host::mel::Error& e) {
        FAIL() << e.described();
    }
}

static const PrintCase kOperators[] = {
    {"print (2 + 3 * 4 - 10 / 4);", "12"},
    {"print (-7 / 2 + \" \" + -7 % 3 + \" \" + 7.5 % 2);", "-3 -1 1.5"},
    {"print (7 / 2.0);", "3.5"},
    {"print ((1 < 2) + (2 <= 2) + (3 > 4) + (1 != 1) + (\"a\" == \"a\"));", "3"},
    {"print (1 || 0 && 0);", "1"}, // && binds tighter
    {"print (!0 + !5);", "1"},
    {"print (1 + 2 == 3 && 2 < 3);", "1"},
    {"print (1 ? 2 ? \"a\" : \"b\" : \"c\");", "a"},
    {"print (0 ? 1 : 0 ? 2 : 3);", "3"},
    {"int $i = 5; $i += 3; $i -= 1; $i *= 6; $i /= 4; $i %= 7; print $i;", "3"}, // 8 7 42 10 3
    {"int $i = 5; print ($i++ + \" \" + ++$i + \" \" + $i-- + \" \" + --$i);", "5 7 7 5"},
    {"int $a, $b; $a = $b = 4; print ($a + $b);", "8"},
    {"print (2147483647 + 1);", "-2147483648"},
    {"int $m = -2147483647 - 1; print (($m / -1) + \" \" + ($m % -1));", "-2147483648 0"},
    {"print (1 + 2 + \"x\" + 1 + 2);", "3x12"},
    {"print (\"abc\" < \"abd\");", "1"},
    {"proc int say(int $v) { print \"!\"; return $v; } int $r = say(0) && say(1); $r = say(1) || say(1); print $r;",
     "!!1"}, // short circuit
    {"print (<<1,2,3>> * <<4,5,6>>);", "32"},
    {"print (<<1,0,0>> ^ <<0,1,0>>);", "0 0 1"},
    {"print (2 * <<1,2,3>> + 1);", "3 5 7"},
    {"vector $v = <<1,0,0>>; $v ^= <<0,1,0>>; print $v.z; print ($v == <<0,0,1>>);", "11"},
    {"matrix $a[2][2] = <<1,2;3,4>>; matrix $b[2][2] = <<0,1;1,0>>; matrix $c[2][2] = $a * $b; print $c;",
     "2 1\n4 3\n"},
};
INSTANTIATE_TEST_SUITE_P(Operators, LanguageTest, testing::ValuesIn(kOperators));

static const PrintCase kValues[] = {
    {"print (0x1F + \" \" + 1. + \" \" + .5 + \" \" + 1.5e-5 + \" \" + 2E3);", "31 1 0.5 1.5e-05 2000"},
    {"print (1.0 / 3);", "0.3333333333"},
    {"print (1234567890123.0);", "1.23456789e+12"},
    {"int $i = 3.9; int $j = -3.9; float $f = \"2.5cm\"; int $k = \"12\"; print ($i + \" \" + $j + \" \" + $f + \" \" "
     "+ $k);",
     "3 -3 2.5 12"},
    {"int $i = 1e20; print $i;", "2147483647"},
    {"string $s = 4.50; print $s;", "4.5"},
    {"vector $v = 2; print $v; float $l = <<0,3,4>>; print (\" \" + $l);", "2 2 2 5"},
    {"float $t[] = {1, 2, 3}; vector $v = $t; print $v.y;", "2"},
    {"$x = 1; $x = 2.7; print $x; $y = 0.5; $y = 2; print ($y / 4);", "20.5"}, // the first assignment fixes the type
    {"int $a[]; $a[3] = 7; print (size($a) + \" \" + $a[0] + \" \" + $a[9]);", "4 0 0"},
    {"string $s[3]; print (size($s)); $s[1] = \"m\"; print $s;", "3\nm\n\n"},
    {"print {1, 2.5};", "1\n2.5\n"},
    {"print {1, \"b\"};", "1\nb\n"},
    {"string $n[] = {}; print (size($n)); $n[size($n)] = \"q\"; print $n;", "0q\n"},
    {"vector $p[]; $p[1] = <<1,2,3>>; vector $q = $p[1]; print $q.z; print (size($p));", "32"},
    {"vector $v = <<1,2,3>>; $v.y = 9; print $v;", "1 9 3"},
    {"matrix $m[2][3]; $m[1][2] = 5; print ($m[1][2] + $m[0][0]);", "5"},
    {"int $a[] = {1,2,3}; $a[1] += 40; $a[2]++; print ($a[1] + $a[2]);", "46"},
    {"int $n = 0; int $a[] = {0, 0}; $a[$n++] += 5; print ($n + \" \" + $a[0]);", "1 5"}, // the index counts once
    {"print (int(3.7) + (int)\"4\" + float(\"0.5\") + string(1));", "7.51"},
    {"print (true + on + yes - off - no - false);", "3"},
    {"print \"a\\tb\\\\ \\\"q\\\"\\n\";", "a\tb\\ \"q\"\n"},
    {"print (\"one \\\ntwo\");", "one two"},
};
INSTANTIATE_TEST_SUITE_P(Values, LanguageTest, testing::ValuesIn(kValues));

static const PrintCase kStatements[] = {
    {"int $i; for ($i = 0; $i < 5; $i++) { if ($i == 1) continue; if ($i == 3) break; print $i; }", "02"},
    {"for (int $i = 0, $j = 9; $i < 2; $i++, $j--) print ($i + $j);", "99"},
    {"int $i = 3; while ($i) { print $i--; }", "321"},
    {"int $i = 3; do { print $i; } while (--$i > 5);", "3"},
    {"for (;;) { print \"once\"; break; }", "once"},
    {"for ($s in {\"a\", \"b\"}) print ($s + \";\");", "a;b;"},
    {"int $a[] = {1,2}; for ($x in $a) { $a[size($a)] = $x; } print (size($a));",
     "4"}, // the list is taken at the start
    {"if (0) print 1; else if (0) print 2; else print 3;", "3"},
    {"proc string s(int $v) { switch ($v) { case 1: case 2: return \"low\"; default: return \"other\"; case 9: return "
     "\"nine\"; } return \"\"; } print (s(2) + s(5) + s(9));",
     "lowothernine"},
    {"switch (2) { case 1: print \"a\"; case 2: print \"b\"; case 3: print \"c\"; break; case 4: print \"d\"; }", "bc"},
    {"switch (\"x\") { default: print \"d\"; case \"y\": print \"y\"; }", "dy"},
    {"for ($i = 0; $i < 3; $i++) switch ($i) { case 1: continue; default: print $i; break; }", "02"},
    {"int $x = 1; { int $x = 2; print $x; } print $x;", "21"},
    {"for ($i = 0; $i < 2; $i++) { int $fresh[]; $fresh[size($fresh)] = 1; print (size($fresh)); }", "11"},
    {"1 + 2; ; $z = 4; $z; print $z // no more\n; /* a\n b */ print 5", "45"},
    {"print 1; return; print 2;", "1"},
};
INSTANTIATE_TEST_SUITE_P(Statements, LanguageTest, testing::ValuesIn(kStatements));

static const PrintCase kProcedures[] = {
    {"print (twice(4)); global proc int twice(int $x) { return $x * 2; }", "8"}, // called before its definition
    {"proc int f(int $n) { return $n < 2 ? $n : f($n - 1) + f($n - 2); } print (f(15));", "610"},
    {"proc fill(string $a[]) { $a[size($a)] = \"n\"; } string $l[]; fill($l); fill $l; print (size($l));", "2"},
    {"proc inner(int $a[]) { $a[0] = 8; } proc outer(int $b[]) { inner($b); } int $v[] = {1}; outer($v); print $v;",
     "8\n"},
    {"proc set(int $x) { $x = 9; } int $y = 1; set($y); print $y;", "1"},
    {"int $g = 1; proc bump() { global int $g; $g++; } bump; bump(); print $g;", "3"},
    {"int $g = 1; proc hide() { int $g = 50; } hide; print $g;", "1"},
    {"proc string[] two() { return {\"a\", \"b\"}; } string $r[] = two(); print `size $r`; print (size(two()));", "22"},
    {"proc int cut(float $x) { return $x; } print (cut(2.9));", "2"},
    {"proc vector up() { return <<0,1,0>>; } vector $u = up(); print $u.y;", "1"},
    {"proc float none() { } print (none());", "0"},
    {"proc a(string $x, int $y) { print ($x + $y); } a \"n\" 4; a(\"m\", 5); a (\"k\", 6);", "n4m5k6"},
};
INSTANTIATE_TEST_SUITE_P(Procedures, LanguageTest, testing::ValuesIn(kProcedures));

static const PrintCase kCommandSyntax[] = {
    {"string $s = `substitute \"b\" (\"ab\" + `toupper (\"c\" + `tolower \"D\"`)`) \"x\"`; print $s;", "axCD"},
    {"print (size(`stringToStringArray \"a b c\" \" \"`) + `size \"four\"`);", "7"},
    {"if (`exists print` && !`exists no_such_thing`) print \"yes\";", "yes"},
    {"eval(\"int $q = 3\"); eval (\"print \" + 4); eval \"print\" 5;", "45"},
    {"print (eval(\"1 + 2;\") + 1);", "4"},
    {"evalEcho \"print 7\";", "print 7\n7"},
    {"print (catch(`error \"boom\"`) + catchQuiet(1 / 0) + catch(print(\"\")));", "2"},
};
INSTANTIATE_TEST_SUITE_P(CommandSyntax, LanguageTest, testing::ValuesIn(kCommandSyntax));

/// Prints the words a command is given, each with its type's first letter (capital for an array).
class WordTest : public testing::TestWithParam<PrintCase> {};

TEST_P(WordTest, ReachTheCommandWithTheirTypes) {
    MelFixture mel;
    std::string seen;
    mel.interpreter.registerCommand("show", [&](host::mel::Call& call) {
        for (const auto& v : call.arguments) {
            seen += "-ifsvmIFSV"[static_cast<int>(v.type())];
            seen += ":" + v.toString() + " ";
        }
        return host::mel::Value();
    });
    mel.interpreter.execute(GetParam().script);
    EXPECT_EQ(seen, GetParam().expected);
}

static const PrintCase kWords[] = {
    {"show -type \"double3\" foo.t 1 -2 .5 -.5 1e-3;", "s:-type s:double3 s:foo.t i:1 i:-2 f:0.5 f:-0.5 f:0.001 "},
    {"show |a|b :ns:x foo.t[0:3] .vt[0:7] * pre*fix f[*] ... a->b;",
     "s:|a|b s::ns:x s:foo.t[0:3] s:.vt[0:7] s:* s:pre*fix s:f[*] s:... s:a->b "},
    {"show 3dObject 1:10 10cm 0x10;", "s:3dObject s:1:10 s:10cm i:16 "},
    {"int $a[] = {4, 5}; int $i = 1; show $a[0] $a[$i] $a -$i;", "i:4 i:5 I:4 i:-1 "},
    {"string $n = \"ball\"; show ($n + \".tx\") 3;", "s:ball.tx i:3 "},
    {"string $n = \"ball\"; show($n + \".tx\") -1;", "s:ball.tx i:-1 "},
    {"string $n = \"ball\"; show ($n) -flag;", "s:ball s:-flag "},
    {"show {1,2} <<1,2,3>> <<1,2;3,4>> `size \"abc\"` on off;", "I:1 v:1 2 3 m:1 2 3 4 i:3 i:1 i:0 "},
    {"show -x 1 // first\n  -y /* two */ 2\n;", "s:-x i:1 s:-y i:2 "},
    {"show(\"a\", 1, {\"x\"});", "s:a i:1 S:x "},
    {"show size(\"abc\") word;", "i:3 s:word "},
    {"show 4294967296 0xFFFFFFFF;", "f:4294967296 i:-1 "},
};
INSTANTIATE_TEST_SUITE_P(Words, WordTest, testing::ValuesIn(kWords));

TEST(StatementValue, IsThatOfTheLastStatement) {
    MelFixture mel;
    EXPECT_EQ(mel.interpreter.execute("1; 2 + 3").toInt(), 5);
    EXPECT_EQ(mel.interpreter.execute("$x = 7;").toInt(), 7);
    EXPECT_EQ(mel.interpreter.execute("toupper \"a\";").toString(), "A");
    EXPECT_TRUE(mel.interpreter.execute("5; if (1) 6;").isNone());
    EXPECT_TRUE(mel.interpreter.execute("").isNone());
}

TEST(GlobalVariables, OutliveTheTextAndAreSharedWithTheHost) {
    MelFixture mel;
    mel.interpreter.execute("int $kept = 4; { int $gone = 5; }");
    EXPECT_EQ(mel.interpreter.globalVariable("kept")->toInt(), 4);
    EXPECT_FALSE(mel.interpreter.globalVariable("gone").has_value());
    mel.interpreter.setGlobalVariable("kept", 9.8);
    EXPECT_EQ(mel.run("int $kept; print $kept;"), "9"); // declared again: keeps type and value
    mel.interpreter.setArguments({"a", "b c"});
    EXPECT_EQ(mel.run("print $argv[1];"), "b c");
}
