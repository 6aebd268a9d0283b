#include "MelFixture.h"

#include <gmock/gmock.h>

using namespace host::mel;
using testing::ElementsAre;

namespace {

/// Flags whose names are prefixes of one another, as those of real commands are.
class ArgumentsTest : public testing::Test {
protected:
    ParsedArguments parsed(std::vector<Value> arguments, bool queryAndEdit = true) {
        return ParsedArguments(Call{mel.interpreter, "cmd", std::move(arguments)},
                               {{"t", "translation", 3},
                                {"tx", "translateX", 1},
                                {"e1", "edge", 1},
                                {"s", "shape", 1},
                                {"sh", "shapes"},
                                {"at", "attribute", 1, true},
                                {"r", "range", 2}},
                               queryAndEdit);
    }
    std::string failure(std::vector<Value> arguments, bool queryAndEdit = true) {
        try {
            parsed(std::move(arguments), queryAndEdit);
            return "none";
        } catch (const Error& e) {
            return e.what();
        }
    }
    MelFixture mel;
};

} // namespace

// Faults: an exact short or long name taken for an abbreviation of another, an abbreviation of two names accepted, of a
// short name accepted, letters of the other case accepted.
TEST_F(ArgumentsTest, NamesAndTheirAbbreviations) {
    EXPECT_TRUE(parsed({"-t", 1, 2, 3}).has("t"));
    EXPECT_TRUE(parsed({"-shape", "x"}).has("s")); // also a prefix of "shapes"
    EXPECT_TRUE(parsed({"-shapes"}).has("sh"));
    EXPECT_TRUE(parsed({"-translateX", 1}).has("tx"));
    EXPECT_TRUE(parsed({"-translati", 1, 2, 3}).has("t"));
    EXPECT_TRUE(parsed({"-e"}).edit()); // not "edge"
    EXPECT_TRUE(parsed({"-ed", 1}, false).has("e1"));
    EXPECT_TRUE(parsed({"-qu"}).query());
    EXPECT_EQ(failure({"-translat", 1}), "Invalid flag: '-translat'");
    EXPECT_EQ(failure({"-ed", 1}), "Invalid flag: '-ed'"); // edge or edit
    EXPECT_EQ(failure({"-txx", 1}), "Invalid flag: '-txx'");
    EXPECT_EQ(failure({"-TX", 1}), "Invalid flag: '-TX'");
    EXPECT_EQ(failure({"-q"}, false), "Invalid flag: '-q'");
}

// Faults: the last use overwriting the first, values mixed between uses, an array value given to the wrong flag, words
// that look like flags (numbers, a dash) taken for some.
TEST_F(ArgumentsTest, RepeatedFlagsAndOddWords) {
    const auto a =
        parsed({"-at", "x", "a", "-", "-at", "y", "-.5", "-r", 1, 2, "-range", FloatArray{3, 4}, "b", "--x"});
    ASSERT_EQ(a.occurrences("at"), 2u);
    EXPECT_EQ(a.text("at"), "x"); // the first
    EXPECT_EQ(a.value("at", 0, 1).toString(), "y");
    ASSERT_EQ(a.occurrences("r"), 2u);
    EXPECT_EQ(a.value("r", 1, 0).toInt(), 2);
    EXPECT_EQ(a.value("r", 0, 1).toInt(), 3);
    EXPECT_EQ(a.value("r", 1, 1).toInt(), 4);
    EXPECT_THAT(a.names(), ElementsAre("a", "-", "-.5", "b", "--x"));
    EXPECT_THROW(a.value("r", 2), Error);
    EXPECT_THROW(a.value("r", 0, 2), Error);
    EXPECT_EQ(a.occurrences("t"), 0u);
    const auto mixed = parsed({"-t", FloatArray{1, 2}, 3, "obj"});
    EXPECT_EQ(mixed.value("t", 2).toInt(), 3);
    EXPECT_THAT(mixed.names(), ElementsAre("obj"));
    // A single value stays whole: the flag's owner sees the array.
    EXPECT_EQ(parsed({"-at", StringArray{"p", "q"}}).value("at").size(), 2u);
}

// Faults: query mode known only behind the flags it changes, values swallowed in a query (the object's name is lost),
// those of a flag that takes some in queries forgotten, edit mode treated as a query.
TEST_F(ArgumentsTest, QueryAndEditModes) {
    for (const std::vector<Value>& words : {std::vector<Value>{"-q", "-t", "-at", "n", "ball"},
                                            {"-t", "-at", "n", "ball", "-query"},
                                            {"ball", "-t", "-q", "-at", "n"}}) {
        const auto a = parsed(words);
        EXPECT_TRUE(a.query() && a.has("t") && !a.edit());
        EXPECT_EQ(a.text("at"), "n");
        EXPECT_THAT(a.names(), ElementsAre("ball"));
        EXPECT_THROW(a.value("t"), Error);
    }
    EXPECT_EQ(failure({"-q", "-at"}), "Flag '-at' must be passed a value");
    EXPECT_EQ(failure({"-e", "-t", 1, 2}), "Flag '-t' must be passed 3 values");
    EXPECT_EQ(failure({"-tx", "-sh"}), "Flag '-tx' must be passed a value");
    EXPECT_EQ(failure({"-r", 1, "-tx", 2}), "Flag '-r' must be passed 2 values");
    EXPECT_EQ(parsed({"-e", "-tx", 2, "ball"}).number("tx", 0), 2);
    EXPECT_EQ(parsed({"-s", "-unknown", "x"}).text("s"), "-unknown"); // a text that is no flag
}

// Faults: fallbacks returned although the flag is there, or its values read as another type.
TEST_F(ArgumentsTest, TypedAccess) {
    const auto a = parsed({"-tx", "2.5cm", "-s", "on", "-at", 0});
    EXPECT_DOUBLE_EQ(a.number("tx", 9), 2.5);
    EXPECT_EQ(a.integer("tx", 9), 2);
    EXPECT_TRUE(a.boolean("s", false));
    EXPECT_FALSE(a.boolean("at", true));
    EXPECT_EQ(a.text("at", "no"), "0");
    EXPECT_DOUBLE_EQ(a.number("e1", 9), 9);
    EXPECT_EQ(a.integer("e1", -3), -3);
    EXPECT_TRUE(a.boolean("e1", true));
    EXPECT_EQ(a.text("e1", "none"), "none");
    EXPECT_THAT(parsed({1, 2.5, IntArray{3, 4}, "x"}).names(), ElementsAre("1", "2.5", "3", "4", "x"));
}
