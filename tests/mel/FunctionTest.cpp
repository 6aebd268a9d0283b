#include "MelFixture.h"
#include "kit/OtherLocale.h"

class FunctionTest : public testing::TestWithParam<PrintCase> {};

TEST_P(FunctionTest, PrintsWhatItsDescriptionSays) {
    MelFixture mel;
    try {
        EXPECT_EQ(mel.run(GetParam().script), GetParam().expected);
    } catch (const host::mel::Error& e) {
        FAIL() << e.described();
    }
}

static const PrintCase kTexts[] = {
    {"print (substring(\"abcdef\", 2, 4) + substring(\"abc\", 3, 99) + substring(\"abc\", 3, 2));", "bcdc"},
    {"print (startString(\"abcdef\", 2) + endString(\"abcdef\", 2) + endString(\"ab\", 9));", "abefab"},
    {"print (startsWith(\"abc\", \"ab\") + endsWith(\"abc\", \"ab\"));", "1"},
    {"print (toupper(\"aZ_9\") + tolower(\"aZ_9\") + capitalizeString(\"sky\"));", "AZ_9az_9Sky"},
    {"print (strcmp(\"a\", \"b\") + \" \" + strcmp(\"b\", \"a\") + \" \" + strcmp(\"a\", \"a\"));", "-1 1 0"},
    {"print (\"[\" + strip(\" \\t a b \\n\") + \"]\" + size(\"\"));", "[a b]0"},
    {"print (substitute(\"_[0-9]+\", \"a_12_3\", \"-\") + substituteAllString(\"a.b.c\", \".\", \"::\"));",
     "a-_3a::b::c"},
    {"print (match(\"[0-9]+$\", \"node12x34\") + match(\"^[0-9]+\", \"node12\") + match(\"o.*x\", \"node12x34x\"));",
     "34ode12x34x"},
    {"print (match(\"(ab)+\", \"xababc\") + match(\"a\\\\.b\", \"aXba.b\") + match(\"[^/\\\\]*$\", \"c:/d\\\\e.ma\"));",
     "ababa.be.ma"},
    {"print (gmatch(\"cloud12\", \"cl*[0-9]?\") + gmatch(\"cloud\", \"cl\") + gmatch(\"abcabd\", \"*ab[d-f]\"));", "2"},
    {"string $b[]; print (tokenize(\"a//b/c\", \"/\", $b)); print $b; print `tokenize \" x  y \" $b`; print $b;",
     "3a\nb\nc\n2x\ny\n"},
    {"string $b[]; tokenizeList(\"a, b,c\", $b); print (stringArrayToString($b, \"|\"));", "a|b|c"},
    {"print (stringArrayToString(stringToStringArray(\"a b\", \" \"), \"+\"));", "a+b"},
    {"print `format -stringArg \"x\" -s 2 \"^2s of ^1s ^\"`;", "2 of x ^"},
    {"print (encodeString(\"a\\\"b\\\\\\n\"));", "a\\\"b\\\\\\n"},
    {"print (isValidObjectName(\"a1_\") + isValidObjectName(\"1a\") + isValidString(\"ab\", \"[a-z]+\"));", "2"},
    {"print (interToUI(\"scaleFactorX\") + stringAddPrefix(\"p_\", \"n\") + stringRemovePrefix(\"p_n\", \"p_\"));",
     "Scale Factor Xp_nn"},
};
INSTANTIATE_TEST_SUITE_P(Texts, FunctionTest, testing::ValuesIn(kTexts));

static const PrintCase kArrays[] = {
    {"print (sort({10, 9, 2})); print (sort({\"10\", \"9\", \"b\"}));", "2\n9\n10\n10\n9\nb\n"},
    {"string $a[] = {\"x\", \"y\", \"x\"}; print (stringArrayContains(\"y\", $a) + stringArrayCount(\"x\", $a) + "
     "stringArrayFind(\"x\", 1, $a));",
     "5"}, // 1 + 2 + 2
    {"print (stringArrayRemove({\"a\"}, {\"a\", \"b\", \"a\"})); print (stringArrayRemoveExact({\"a\"}, {\"a\", "
     "\"a\"}));",
     "b\na\n"},
    {"print (stringArrayRemoveDuplicates({\"b\", \"a\", \"b\"})); print (stringArrayCatenate({\"p\"}, {\"q\"}));",
     "b\na\np\nq\n"},
    {"string $a[] = {\"a\", \"c\"}; print (stringArrayInsertAtIndex(1, $a, \"b\") + stringArrayRemoveAtIndex(0, $a) + "
     "stringArrayRemoveAtIndex(9, $a)); print $a;",
     "2b\nc\n"},
    {"string $a[] = {\"a\"}; appendStringArray($a, {\"b\", \"c\"}, 1); print $a; clear $a; print (size($a));",
     "a\nb\n0"},
    {"string $a[] = {\"a\", \"b\"}; appendStringArray($a, $a, 2); print (size($a));", "4"}, // onto itself
    {"print (intArrayContains(2, {1, 2}) + intArrayFind(7, 0, {1}));", "0"},
};
INSTANTIATE_TEST_SUITE_P(Arrays, FunctionTest, testing::ValuesIn(kArrays));

static const PrintCase kNumbers[] = {
    {"print (abs(-3) + \" \" + abs(-2.5) + \" \" + ceil(1.2) + \" \" + floor(-1.2) + \" \" + trunc(-1.7));",
     "3 2.5 2 -2 -1"},
    {"print (round(2.5) + \" \" + round(-2.5) + \" \" + sign(-4) + \" \" + fmod(-7.5, 2));", "3 -3 -1 -1.5"},
    {"print (sqrt(16) + \" \" + pow(2, 10) + \" \" + hypot(3, 4) + \" \" + exp(0) + \" \" + log10(1000));",
     "4 1024 5 1 3"},
    {"print (sin(0.5) + \" \" + cos(0.5) + \" \" + atan2(1, 1));", "0.4794255386 0.8775825619 0.7853981634"},
    {"print (sind(30) + \" \" + acosd(0.5) + \" \" + atan2d(1, -1) + \" \" + deg_to_rad(180) + \" \" + rad_to_deg(1));",
     "0.5 60 135 3.141592654 57.29577951"},
    {"print (min(2, 3) / 4 + \" \" + max(2, 3.5) + \" \" + clamp(0, 1, 1.5) + \" \" + clamp(0, 10, 7) / 2);",
     "0 3.5 1 3"},
    {"print (linstep(2, 4, 3) + \" \" + smoothstep(0, 1, 0.25) + \" \" + linstep(0, 1, 9));", "0.5 0.15625 1"},
    {"print (mag(<<2,3,6>>) + \" \" + unit(<<0,3,4>>) + \" \" + dot(<<1,2,3>>, <<1,1,1>>));", "7 0 0.6 0.8 6"},
    {"print (cross(<<0,1,0>>, <<0,0,1>>) + \" \" + angle(<<1,0,0>>, <<0,2,0>>));", "1 0 0 1.570796327"},
    {"vector $r = rot(<<1,0,0>>, <<0,0,1>>, deg_to_rad(90)); print (round($r.x) + \" \" + round($r.y));", "0 1"},
    // Python's colorsys gives these.
    {"print (hsv_to_rgb(<<0.9, 0.25, 0.8>>) + \" \" + hsv_to_rgb(<<-1.4, 1, 1>>) + \" \" + hsv_to_rgb(<<1, 1, 0.5>>));",
     "0.8 0.6 0.72 0 0.4 1 0.5 0 0"},
    {"print (rgb_to_hsv(<<0.8, 0.6, 0.72>>) + \" \" + rgb_to_hsv(<<0.2, 0.4, 0.8>>) + \" \" + rgb_to_hsv(<<3, 3, "
     "3>>));",
     "0.9 0.25 0.8 0.6111111111 0.75 0.8 0 0 3"},
    // The reference implementation gives 0.13691995878400012 there.
    {"print (noise(3.14, 42, 7) + \" \" + noise(<<3.14, 42 - 256, 7>>) + \" \" + noise(3, 7) + \" \" + noise(1e300));",
     "0.1369199588 0.1369199588 0 0"},
    {"seed 5; $a = rand(1); seed 5; $b = rand(1); $c = rand(3, 4); print (($a == $b) + ($c >= 3 && $c < 4) + ($a != "
     "$c));",
     "3"},
};
INSTANTIATE_TEST_SUITE_P(Numbers, FunctionTest, testing::ValuesIn(kNumbers));

static const PrintCase kPaths[] = {
    {"print (basename(\"/a/b.tar.gz\", \".gz\") + \" \" + basenameEx(\"c:/x/s.ma\") + \" \" + basename(\"/a/b/\", "
     "\"\"));",
     "b.tar s b"},
    {"print (dirname(\"/a/b/c\") + \" \" + dirname(\"/a\") + \"[\" + dirname(\"a\") + \"]\");", "/a/b /[]"},
    {"print (fileExtension(\"/a.b/c\") + \"[\" + fileExtension(\"x.y.ma\") + \"]\");", "[ma]"},
    {"putenv \"ORVO_MEL_TEST\" \"v w\"; print (getenv(\"ORVO_MEL_TEST\") + getenv(\"ORVO_MEL_UNSET\"));", "v w"},
    {"print (whatIs(\"sin\") + \", \" + whatIs(\"nosuch\")); proc mine() {} print (\", \" + `whatIs mine`);",
     "Command, Unknown, Mel procedure entered interactively."},
};
INSTANTIATE_TEST_SUITE_P(Paths, FunctionTest, testing::ValuesIn(kPaths));

TEST(Locale, DoesNotChangeNumbers) {
    const orvo::test::OtherLocale comma;
    if (!comma.found()) GTEST_SKIP() << "no locale with a decimal comma on this machine";
    EXPECT_EQ(MelFixture().run("float $x = \"0.5\"; print ($x + 1.25);"), "1.75");
}
