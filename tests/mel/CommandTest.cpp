#include "MelFixture.h"

#include <gmock/gmock.h>

#include <chrono>
#include <thread>

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

// Faults: a deferred text that runs at once, before others that came first, or after its script has failed.
TEST(Deferred, RunsWhenTheScriptHasEnded) {
    MelFixture mel;
    EXPECT_EQ(
        mel.run("evalDeferred -lowestPriority \"print 4\"; evalDeferred \"evalDeferred \\\"print 3\\\"; print 2\"; "
                "print 1;"),
        "1234");
    EXPECT_THROW(mel.interpreter.execute("evalDeferred \"print 5\"; error \"x\";"), Error);
    EXPECT_EQ(mel.run("print 6"), "6");
}

// Faults: a script that goes on behind quit, inside a catch or in a deferred text.
TEST(Quit, EndsEverything) {
    MelFixture mel;
    EXPECT_EQ(mel.interpreter.exitCode(), std::nullopt);
    EXPECT_THROW(mel.run("evalDeferred \"print 3\"; print 1; catchQuiet(`quit -exitCode 3`); print 2;"), Error);
    EXPECT_EQ(mel.printed, "1");
    EXPECT_EQ(mel.interpreter.exitCode(), 3);
    EXPECT_THROW(mel.run("print 4"), Error);
}

// Faults: a command that runs when it is asked for its flags.
TEST(Help, ListsTheFlags) {
    MelFixture mel;
    int runs = 0;
    const auto command = [&](Call& call) {
        const ParsedArguments args(call, {{"sz", "size", 2}, {"v", "verbose"}}, true);
        return Value(++runs);
    };
    mel.interpreter.registerCommand("telling", command, true);
    mel.interpreter.registerCommand("silent", command);
    EXPECT_EQ(mel.run("print `help telling`;"), "Synopsis: telling [flags]\nFlags:\n  -sz -size VALUE VALUE\n"
                                                "  -v -verbose\n  -q -query\n  -e -edit\n");
    EXPECT_EQ(mel.run("print `help silent`;"), "Synopsis: silent\n");
    EXPECT_EQ(mel.run("print `help -list \"tell*\"`;"), "telling\n");
    EXPECT_EQ(runs, 0);
    // The language's own, too.
    EXPECT_EQ(mel.run("print `help timerX`;"), "Synopsis: timerX [flags]\nFlags:\n  -st -startTime VALUE\n");
    EXPECT_EQ(mel.run("print `help sin`;"), "Synopsis: sin\n");
    mel.run("print `help warning`; print `help quit`; print `help format`; print `help sysFile`;");
    for (const char* part :
         {"-sl -showLineNumber VALUE\n", "-ec -exitCode VALUE\n", "-s -stringArg VALUE\n", "-ren -rename VALUE\n"})
        EXPECT_NE(mel.printed.find(part), std::string::npos) << part;
    EXPECT_EQ(mel.interpreter.exitCode(), std::nullopt);
}

// Faults: a script without end that runs on, though it catches what stops it.
TEST(StepLimit, EndsWhatHasNoEnd) {
    for (const char* script :
         {"while (1) catchQuiet(`eval \"while (1);\"`);", "proc f() { f(); f(); } while (1) catchQuiet(`f`);",
          "for (;;) {}", "string $s = \"x\"; while (1) $s += $s;", "string $a[]; while (1) $a[size($a)] = \"\";"}) {
        MelFixture mel;
        mel.interpreter.setStepLimit(100000);
        EXPECT_THROW(mel.run(script), Error) << script;
        EXPECT_THROW(mel.run("print 1"), Error);
    }
}

// Faults: a script that goes on by catching what stops it, by a command that takes long, or by what it deferred; a
// session that is of no use after one was stopped, or has called quit.
TEST(Stopping, EndsAScriptAndNoneAfterIt) {
    for (const char* script : {"while (1) catchQuiet(`eval \"while (1);\"`);", "while (1) catchQuiet(`slow`);",
                               "evalDeferred \"print later;\"; proc f() { while (1); } f();"}) {
        MelFixture mel;
        mel.interpreter.registerCommand("slow", [](Call&) {
            std::this_thread::sleep_for(std::chrono::milliseconds(30));
            return Value();
        });
        int asked = 0;
        mel.interpreter.stopAsked = [&] { return ++asked == 2; };
        try {
            mel.run(script);
            ADD_FAILURE() << script;
        } catch (const Error& e) {
            EXPECT_STREQ(e.what(), "The script was stopped.");
        }
        EXPECT_EQ(mel.run("print 1;"), "1");
        EXPECT_EQ(asked, 2) << "short scripts are left alone";
        EXPECT_THROW(mel.run("quit -exitCode 3;"), Error);
        EXPECT_THROW(mel.run("print 1;"), Error);
        EXPECT_EQ(mel.interpreter.takeExitCode(), 3);
        EXPECT_EQ(mel.run("print 1;"), "1");
    }
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
