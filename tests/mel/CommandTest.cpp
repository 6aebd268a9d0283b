#include "MelFixture.h"

#include <gmock/gmock.h>

using namespace host::mel;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

/// A command call's arguments, taken apart.
ParsedArguments parsed(MelFixture& mel, std::vector<Value> arguments, bool queryAndEdit = false) {
    return ParsedArguments(
        Call{mel.interpreter, "cmd", std::move(arguments)},
        {{"n", "name", 1}, {"p", "position", 3}, {"v", "visible", 1}, {"vi", "visit"}, {"at", "attribute", 1, true}},
        queryAndEdit);
}

std::string failure(MelFixture& mel, std::vector<Value> arguments) {
    try {
        parsed(mel, std::move(arguments));
    } catch (const Error& e) {
        return e.what();
    }
    return "none";
}

} // namespace

TEST(ParsedArgumentsTest, FlagsStandAnywhereAndMayBeAbbreviated) {
    MelFixture mel;
    auto a = parsed(mel, {"ball", "-pos", 1, 2.5, -3, "-name", "x", StringArray{"c", "d"}, "-n", "y", "-5"});
    EXPECT_THAT(a.names(), ElementsAre("ball", "c", "d", "-5"));
    EXPECT_EQ(a.objects().size(), 3u);
    EXPECT_DOUBLE_EQ(a.value("p", 2).toFloat(), -3);
    EXPECT_EQ(a.occurrences("n"), 2u);
    EXPECT_EQ(a.value("n", 0, 1).toString(), "y");
    EXPECT_EQ(a.text("v", "fallback"), "fallback");
    EXPECT_FALSE(a.has("vi"));
}

TEST(ParsedArgumentsTest, AVectorOrArrayFillsAFlagOfSeveralValues) {
    MelFixture mel;
    EXPECT_DOUBLE_EQ(parsed(mel, {"-p", Vector{1, 2, 3}}).value("p", 1).toFloat(), 2);
    EXPECT_DOUBLE_EQ(parsed(mel, {"-p", FloatArray{1, 2, 3}, "obj"}).value("p", 2).toFloat(), 3);
}

TEST(ParsedArgumentsTest, QueriesTakeNoValuesButThoseThatSaySo) {
    MelFixture mel;
    auto a = parsed(mel, {"-name", "-at", "tx", "-q", "ball"}, true);
    EXPECT_TRUE(a.query());
    EXPECT_FALSE(a.edit());
    EXPECT_TRUE(a.has("n"));
    EXPECT_EQ(a.text("at"), "tx");
    EXPECT_THAT(a.names(), ElementsAre("ball"));
}

TEST(ParsedArgumentsTest, WrongUseIsAnError) {
    MelFixture mel;
    EXPECT_EQ(failure(mel, {"-xyz"}), "Invalid flag: '-xyz'");
    EXPECT_EQ(failure(mel, {"-vis", 1}), "Invalid flag: '-vis'"); // visible or visit
    EXPECT_EQ(failure(mel, {"-query"}), "Invalid flag: '-query'");
    EXPECT_EQ(failure(mel, {"-n"}), "Flag '-n' must be passed a value");
    EXPECT_EQ(failure(mel, {"-n", "-v", 1}), "Flag '-n' must be passed a value");
    EXPECT_THAT(failure(mel, {"-p", 1, 2}), HasSubstr("must be passed"));
    EXPECT_EQ(failure(mel, {"-n", "-odd value"}), "none"); // a text that is no flag of the command
    EXPECT_THROW(parsed(mel, {}).value("n"), Error);
}

TEST(Hooks, SurroundTopLevelStatementsAndCommands) {
    MelFixture mel;
    std::string log;
    Interpreter& i = mel.interpreter;
    i.beforeTopLevelStatement = [&] { log += "("; };
    i.afterTopLevelStatement = [&] { log += ")"; };
    i.beforeCommand = [&](const std::string& name) { log += "<" + name; };
    i.afterCommand = [&](const std::string&) { log += ">"; };
    i.registerCommand("act", [](Call&) { return Value(1); });
    i.registerCommand("fail", [](Call&) -> Value { throw Error("no"); });
    i.registerCommand("nest", [](Call& call) { return call.interpreter.execute("act; act;"); });
    i.execute("act; proc f() { act; act; } f; nest; eval \"act\";");
    EXPECT_EQ(log, "(<act>)(<act><act>)(<nest<act><act>>)(<act>)");
    log.clear();
    EXPECT_THROW(i.execute("catch(`fail`); fail; act;"), Error);
    EXPECT_EQ(log, "(<fail>)(<fail>)");
    log.clear();
    i.call("f", {});
    EXPECT_EQ(log, "(<act><act>)");
}

TEST(Commands, CanBeReplacedRemovedAndCalledByTheHost) {
    MelFixture mel;
    Interpreter& i = mel.interpreter;
    i.registerCommand("once", [](Call& call) {
        call.interpreter.unregisterCommand("once"); // as unloading a plug-in does while its command runs
        return Value(call.arguments.size() == 2 ? "two" : "other");
    });
    EXPECT_EQ(i.call("once", {1, "b"}).toString(), "two");
    EXPECT_FALSE(i.hasCommand("once"));
    EXPECT_THROW(i.call("once", {}), Error);
    i.execute("global proc int twice(int $x) { return 2 * $x; }");
    EXPECT_EQ(i.call("twice", {4.9}).toInt(), 8);
    EXPECT_EQ(i.call("size", {"abc"}).toInt(), 3);
    EXPECT_THROW(i.call("twice", {}), Error);
}
