#include "MelFixture.h"

#include <gmock/gmock.h>

using host::mel::Error;

/// Edge cases of the functions on texts and arrays, and of numbers as texts; expectations by hand.
class TextAndArrayTest : public testing::TestWithParam<PrintCase> {};

TEST_P(TextAndArrayTest, PrintsWhatTheDocumentationSays) {
    MelFixture mel;
    try {
        EXPECT_EQ(mel.run(GetParam().script), GetParam().expected);
    } catch (const Error& e) {
        FAIL() << e.described();
    }
}

// Faults: replacing within what was put in (never ends), every match in place of the first, a replacement read as a
// pattern, parts left over from an earlier call, empty parts counted, a fixed set of separators.
static const PrintCase kTexts[] = {
    {"print (substituteAllString(\"aaa\", \"a\", \"aa\") + substituteAllString(\"abc\", \"\", \"x\"));", "aaaaaaabc"},
    {"print (substituteAllString(\"a.b\", \".\", \"\") + substituteAllString(\"\", \"a\", \"b\") + \"|\");", "ab|"},
    {"print (substitute(\"b\", \"abcb\", \"\") + substitute(\"x\", \"abc\", \"y\"));", "acbabc"},
    {"print (substitute(\"^\", \"abc\", \"> \") + substitute(\"$\", \"abc\", \"!\"));", "> abcabc!"},
    {"print (substitute(\"b+\", \"abbc\", \"\\\\1.*[\"));", "a\\1.*[c"},
    {"print (match(\"[^:]*$\", \"ns:a:ball\") + \",\" + match(\"x\", \"abc\") + \",\" + match(\"a*\", \"baa\"));",
     "ball,,"},
    {"print (match(\"^.*/\", \"/a/b/c.ma\") + match(\"\\\\.[^.]*$\", \"c.tar.gz\"));", "/a/b/.gz"},
    {"print (gmatch(\"sky01\", \"sky[0-9][0-9]\") + gmatch(\"sky1\", \"sky??\") + gmatch(\"sky1\", \"[^s]*\"));", "1"},
    {"string $b[] = {\"old\", \"old\", \"old\"}; print (tokenize(\"a,b;c\", \";,\", $b)); print $b;", "3a\nb\nc\n"},
    {"string $b[] = {\"old\"}; print (tokenize(\"\", \",\", $b)); print (size($b)); print (tokenize(\",,,\", \",\", "
     "$b)); print (size($b));",
     "0000"},
    {"string $b[]; print (tokenize(\"a b\\tc\\nd\", $b)); print (tokenize(\"abc\", \"\", $b)); print $b;", "41abc\n"},
    {"string $b[]; tokenize($b[0] = \"x y\", $b); print (size($b) + $b[1]);", "2y"},
    {"print (size(stringToStringArray(\",a,,b,\", \",\")) + size(stringToStringArray(\"\", \",\")));", "2"},
    {"string $e[]; print (\"[\" + stringArrayToString($e, \",\") + stringArrayToString({\"a\"}, \", \") + \"]\");",
     "[a]"},
    {"print (format(\"-stringArg\", \"^2s\", \"-s\", \"b\", \"^1s^2s^2s\"));", "^2sbb"}, // arguments are not patterns
    {"print (`format -s 1.50 -s 7 \"^1s ^s ^2 ^2s^\"`);", "1.5 ^s ^2 7^"},
    {"print (`format -s 1 -s 2 -s 3 -s 4 -s 5 -s 6 -s 7 -s 8 -s 9 -s ten \"^10s ^1s0s\"`);", "ten 10s"},
    {"print (startString(\"abc\", 0) + endString(\"abc\", 0) + startString(\"abc\", -1) + startString(\"ab\", 9));",
     "ab"},
    {"print (startsWith(\"ab\", \"abc\") + endsWith(\"\", \"a\") + startsWith(\"a\", \"\") + endsWith(\"ab\", "
     "\"a\"));",
     "1"},
    {"print (strip(\"\") + strip(\" \\t\\n\") + strip(\"a b\") + \"|\");", "a b|"},
    {"print (toupper(\"gr\xc3\xbc\xc3\x9f\") + capitalizeString(\"\") + capitalizeString(\"1a\"));",
     "GR\xc3\xbc\xc3\x9f"
     "1a"}, // bytes beyond ASCII stay
    {"print (isValidObjectName(\"\") + isValidObjectName(\"a b\") + isValidObjectName(\"a:b\") + "
     "isValidObjectName(\"_a\"));",
     "1"},
    {"print (isValidString(\"a1\", \"[a-z]\") + isValidString(\"\", \"[a-z]*\"));", "1"},
    {"string $t = \"q\\\"\\\\\\n\\tz\"; print (eval(\"\\\"\" + encodeString($t) + \"\\\";\") == $t);", "1"},
    {"print (stringRemovePrefix(\"abab\", \"ab\") + stringRemovePrefix(\"x\", \"xy\"));", "abx"},
};
INSTANTIATE_TEST_SUITE_P(Texts, TextAndArrayTest, testing::ValuesIn(kTexts));

// Faults: indices off by one at the ends, a function that changes the array it was to copy, arrays shared by
// assignment, a removal that takes neighbours along, orders that ignore the sign or the type.
static const PrintCase kArrays[] = {
    {"string $a[] = {\"b\"}; print (stringArrayInsertAtIndex(0, $a, \"a\") + stringArrayInsertAtIndex(2, $a, \"c\") + "
     "stringArrayInsertAtIndex(-1, $a, \"n\")); print $a;",
     "2a\nb\nc\n"},
    {"int $a[] = {1, 2, 3}; print (intArrayRemoveAtIndex(2, $a) + intArrayRemoveAtIndex(-1, $a) + "
     "intArrayRemoveAtIndex(2, $a)); print $a;",
     "11\n2\n"},
    {"string $a[] = {\"x\", \"y\", \"x\"}; print (stringArrayFind(\"x\", 3, $a) + \" \" + stringArrayFind(\"x\", 2, "
     "$a) "
     "+ \" \" + stringArrayFind(\"z\", 0, $a));",
     "-1 2 -1"},
    {"int $a[] = {3, 1, 3}; print (intArrayRemove({3}, $a)); print (size($a)); print (intArrayRemoveDuplicates($a)); "
     "print (intArrayCount(3, $a));",
     "1\n33\n1\n2"},
    {"print (stringArrayRemoveExact({\"a\", \"z\"}, {\"a\", \"b\", \"a\"}));", "b\na\n"}, // one for one
    {"float $f[] = {0.5, 0.25}; print (floatArrayContains(0.25, $f) + floatArrayContains(0.2, $f) + "
     "floatArrayCount(0.5, "
     "$f)); print (floatArrayToString($f, \"/\"));",
     "20.5/0.25"},
    {"int $a[] = {3, -1, 20}; int $b[] = sort($a); print $b; print $a[0];", "-1\n3\n20\n3"},
    {"print (sort({0.5, -2.0, -0.5})); print (sort({\"b\", \"B\", \"a\", \"\"}));", "-2\n-0.5\n0.5\n\nB\na\nb\n"},
    {"string $t[] = {\"a\"}; appendStringArray($t, {\"b\"}, 9); appendStringArray($t, {\"c\"}, 0); "
     "appendStringArray($t, {\"c\"}, -1); print $t;",
     "a\nb\n"},
    {"int $a[] = {1, 2}; int $b[] = $a; $b[0] = 9; print $a[0]; clear $b; print (size($a) + size($b));", "12"},
    {"vector $v[] = {<<1,2,3>>, <<0,0.5,0>>}; print $v; vector $w = $v[1]; $w.x = 4; print ($v[1]);",
     "1 2 3\n0 0.5 0\n0 0.5 0"},
    {"string $s[] = {\"a\", \"b\"}; string $last = $s[size($s) - 1]; print $last; print (size($s[9]));", "b0"},
    {"int $i[] = {1.9, -1.9, \"7x\"}; print $i; float $f[] = {1, 2}; print ($f[0] / 4);", "1\n-1\n7\n0.25"},
    {"string $d[] = stringArrayCatenate({\"a\"}, {}); print (size($d)); print (stringArrayCatenate($d, $d));",
     "1a\na\n"},
};
INSTANTIATE_TEST_SUITE_P(Arrays, TextAndArrayTest, testing::ValuesIn(kArrays));

// Faults: more or fewer than ten significant digits, an exponent at the wrong size, rounding in a conversion to int,
// int arithmetic where one side is a float, a sign or an exponent that ends the number in a text.
static const PrintCase kNumbers[] = {
    {"print (9999999999.0 + \" \" + 10000000000.0 + \" \" + 0.0001 + \" \" + 0.00001);",
     "9999999999 1e+10 0.0001 1e-05"},
    {"print (1234567.125 + \" \" + 2.0 / 3 + \" \" + 100.0 + \" \" + 1e-300);", "1234567.125 0.6666666667 100 1e-300"},
    {"print (0.1 + 0.2 + \" \" + 99999999999.5);", "0.3 1e+11"},
    {"float $f = 1 / 2; float $g = 1 / 2.0; int $i = 2.0 * 1.75; print ($f + \" \" + $g + \" \" + $i);", "0 0.5 3"},
    {"float $a = \"-.5e1xyz\"; float $b = \" +2.\"; int $c = \"1e2\"; int $d = \"abc\"; print ($a + \" \" + $b + \" \" "
     "+ $c + \" \" + $d);",
     "-5 2 100 0"},
    {"float $a = \"1e\"; float $b = \"--1\"; float $c = \".\"; float $d = \"1.2.3\"; print ($a + \" \" + $b + \" \" + "
     "$c "
     "+ \" \" + $d);",
     "1 0 0 1.2"},
    {"int $h = \"0x1f\"; print ($h + 0x10 + 0XF);", "62"},
    {"string $s = <<1,2.5,-3>>; vector $v = \"4 5\"; print ($s + \" \" + $v.y + $v.z);", "1 2.5 -3 50"},
    {"print ((1 == 1.0) + (0.1 + 0.2 != 0.3) + (\"a\" != \"A\") + (2 < 10) + (\"2\" < \"10\"));", "4"},
    {"print (5 / 2 * 2.0 + \" \" + 5 / 2.0 * 2 + \" \" + -5 / 2 + \" \" + 5 % -3);", "4 5 -2 2"},
    {"print (equivalent(1.0, 1.0 + 1e-12) + equivalent(1.0, 1.1) + equivalentTol(1.0, 1.1, 0.2));", "2"},
    {"print (min(-1, -1.5) + \" \" + clamp(0, 1, -5) + \" \" + smoothstep(0, 2, 3) + \" \" + linstep(1, 1, 1));",
     "-1.5 0 1 1"},
    {"print (sign(0) + \" \" + round(-0.6) + \" \" + abs(<<-1,2,-3>>) + \" \" + pow(-2, 3) + \" \" + "
     "mag(<<0,0,0>>) "
     "+ \" \" + unit(<<0,0,0>>));",
     "0 -1 1 2 3 -8 0 0 0 0"},
    {"seed 3; int $in = 0; for ($i = 0; $i < 200; $i++) { if (mag(sphrand(2)) <= 2.000001) $in++; float $r = rand(-1, "
     "1); if ($r >= -1 && $r < 1) $in++; } print $in;",
     "400"},
    {"seed 3; float $s; float $q; for ($i = 0; $i < 4000; $i++) { float $g = gauss(2, 10); $s += $g; $q += ($g - 10) * "
     "($g - 10); } print ((abs($s / 4000 - 10) < 0.2) + (abs($q / 4000 - 4) < 0.5));",
     "2"},
};
INSTANTIATE_TEST_SUITE_P(Numbers, TextAndArrayTest, testing::ValuesIn(kNumbers));

// Faults: wrong types or domains that give a silent 0, nan or an emptied array.
TEST(TextAndArrayErrors, WrongTypesAndDomainsAreErrors) {
    MelFixture mel;
    for (const char* script :
         {"stringArrayCount(\"a\", {1, 2});", "intArrayFind(1, 0, {\"a\"});", "int $i = 1; clear $i;",
          "sort({<<1,2,3>>});", "string $s = \"a\"; tokenize(\"a\", $s);", "format -s \"a\" \"^0s\";",
          "format -s \"a\" \"b\" \"c\";", "substring(\"abc\", 1);", "sqrt(-1);", "log(0);", "log10(-1);", "pow(0, -1);",
          "pow(-8, 1.0 / 3);", "asin(1.5);", "sqrt({4.0});", "fmod(1, 0);", "putenv \"A=B\" \"c\";"})
        EXPECT_THROW(mel.interpreter.execute(script), Error) << script;
    EXPECT_EQ(mel.run("string $kept[] = {\"a\"}; catchQuiet(`stringArrayInsertAtIndex 0 $kept`); print $kept;"), "a\n");
}
