#include "GraphFixture.h"

#include <maya/MArgList.h>
#include <maya/MDGModifier.h>
#include <maya/MDoubleArray.h>
#include <maya/MIntArray.h>
#include <maya/MPxCommand.h>
#include <maya/MVector.h>

#include <functional>
#include <stdexcept>

namespace {

using testing::HasSubstr;

/// A command whose doIt is the test's.
struct LambdaCommand : MPxCommand {
    static inline std::function<MStatus(const MArgList&)> body;
    MStatus doIt(const MArgList& args) override { return body(args); }
    static void* create() { return new LambdaCommand; }
};

/// Sets a.tx by a modifier, undoable; a second argument makes undoing fail by exception.
struct MoveCommand : MPxCommand {
    static inline int alive = 0;
    MoveCommand() { ++alive; }
    ~MoveCommand() override { --alive; }
    MStatus doIt(const MArgList& args) override {
        MSelectionList list;
        MPlug plug;
        list.add("a.tx");
        list.getPlug(0, plug);
        throws = args.length() > 1;
        modifier.newPlugValueDouble(plug, args.asDouble(0));
        return redoIt();
    }
    MStatus undoIt() override {
        if (throws) throw std::runtime_error("cannot");
        return modifier.undoIt();
    }
    MStatus redoIt() override { return modifier.doIt(); }
    bool isUndoable() const override { return true; }
    static void* create() { return new MoveCommand; }
    MDGModifier modifier;
    bool throws = false;
};

struct PxCommandTest : GraphFixture {
    PxCommandTest() {
        EXPECT_TRUE(plugin.fn.registerCommand("testCommand", LambdaCommand::create));
        EXPECT_TRUE(plugin.fn.registerCommand("testMove", MoveCommand::create));
        run("createNode transform -n a");
    }
    ~PxCommandTest() override { LambdaCommand::body = nullptr; }
    TestPlugin plugin;
};

// Fault: a result of one type answered as another, or appending that loses what was there.
TEST_F(PxCommandTest, Results) {
    const struct {
        std::function<void()> give;
        host::mel::Value::Type type;
        const char* text;
    } cases[] = {
        {[] {}, host::mel::Value::Type::None, ""},
        {[] { MPxCommand::setResult(7); }, host::mel::Value::Type::Int, "7"},
        {[] { MPxCommand::setResult(true); }, host::mel::Value::Type::Int, "1"},
        {[] { MPxCommand::setResult(0.5); }, host::mel::Value::Type::Float, "0.5"},
        {[] { MPxCommand::setResult("sky"); }, host::mel::Value::Type::String, "sky"},
        {[] {
             const int n[] = {3, 4};
             MPxCommand::setResult(MIntArray(n, 2));
         },
         host::mel::Value::Type::IntArray, "3 4"},
        {[] {
             const double n[] = {0.5, 4};
             MPxCommand::setResult(MDoubleArray(n, 2));
         },
         host::mel::Value::Type::FloatArray, "0.5 4"},
        {[] {
             MPxCommand::appendToResult("a");
             MPxCommand::appendToResult(MString("b"));
             MPxCommand::appendToResult("c");
         },
         host::mel::Value::Type::StringArray, "a b c"},
        {[] {
             MPxCommand::setResult(1);
             MPxCommand::appendToResult(2);
             EXPECT_TRUE(MPxCommand::isCurrentResultArray());
             EXPECT_EQ(MPxCommand::currentResultType(), MPxCommand::kLong);
         },
         host::mel::Value::Type::IntArray, "1 2"},
        {[] {
             MPxCommand::appendToResult(2.5);
             EXPECT_EQ(MPxCommand::currentDoubleResult(), 2.5);
             MStatus status;
             MPxCommand::currentStringResult(&status);
             EXPECT_EQ(status, MStatus::kFailure);
         },
         host::mel::Value::Type::Float, "2.5"},
        {[] {
             MPxCommand::setResult("x");
             MPxCommand::clearResult();
         },
         host::mel::Value::Type::None, ""},
    };
    int number = 0;
    for (const auto& c : cases) {
        LambdaCommand::body = [&](const MArgList&) {
            c.give();
            return MStatus();
        };
        EXPECT_EQ(host::Host::instance().interpreter().execute("testCommand").type(), c.type) << number;
        EXPECT_EQ(run("testCommand"), c.text) << number;
        ++number;
    }
    EXPECT_EQ(MPxCommand::currentResultType(), MPxCommand::kNoArg) << "outside of a command";
    MPxCommand::setResult(5);
    EXPECT_FALSE(MPxCommand::isCurrentResultArray());
}

// Fault: arguments as texts, arrays flattened or a vector passed as one thing.
TEST_F(PxCommandTest, ArgumentsKeepTheirTypes) {
    LambdaCommand::body = [](const MArgList& args) {
        EXPECT_EQ(args.length(), 10u);
        EXPECT_EQ(args.asInt(0), -3);
        EXPECT_EQ(args.asDouble(1), 2.5);
        EXPECT_EQ(args.asString(2), "two words");
        EXPECT_EQ(args.flagIndex("n", "name"), 3u);
        unsigned at = 4;
        EXPECT_EQ(args.asVector(at, 3), MVector(1, 2, 3));
        EXPECT_EQ(at, 7u);
        EXPECT_EQ(args.asIntArray(at).length(), 2u);
        EXPECT_EQ(args.asDoubleArray(at)[1], 0.25);
        EXPECT_EQ(args.asStringArray(at)[0], "p");
        EXPECT_EQ(at, 10u);
        MString text;
        EXPECT_FALSE(args.get(0, text));
        return MStatus();
    };
    EXPECT_EQ(run("vector $v = <<1, 2, 3>>; testCommand -3 2.5 \"two words\" -name $v {4, 5} {0.5, 0.25} {\"p\"};"),
              "");
}

// Fault: a failure or an exception that the script does not see, or that ends the host.
TEST_F(PxCommandTest, FailuresAreScriptErrors) {
    LambdaCommand::body = [](const MArgList&) { return MStatus(MStatus::kInvalidParameter); };
    EXPECT_THAT(run("testCommand"), HasSubstr("testCommand"));
    EXPECT_EQ(run("catch(`testCommand`)"), "1");
    LambdaCommand::body = [](const MArgList&) -> MStatus { throw std::runtime_error("storm"); };
    EXPECT_THAT(run("testCommand"), HasSubstr("storm"));
    LambdaCommand::body = [](const MArgList&) -> MStatus { throw 1; };
    EXPECT_THAT(run("testCommand"), HasSubstr("Error"));
    EXPECT_EQ(plugin.fn.registerCommand("testCommand", LambdaCommand::create), MStatus::kFailure);
    EXPECT_EQ(plugin.fn.registerCommand("setAttr", LambdaCommand::create), MStatus::kFailure);
    EXPECT_EQ(plugin.fn.registerCommand("testNone", nullptr), MStatus::kInvalidParameter);
    EXPECT_EQ(plugin.fn.registerCommand("", LambdaCommand::create), MStatus::kInvalidParameter);
    EXPECT_EQ(plugin.fn.deregisterCommand("setAttr"), MStatus::kInvalidParameter);
    EXPECT_TRUE(plugin.fn.registerCommand("testNull", [] { return static_cast<void*>(nullptr); }));
    EXPECT_THAT(run("testNull"), HasSubstr("testNull"));
}

// Fault: a nested command whose result or failure becomes that of the outer one.
TEST_F(PxCommandTest, NestedCommands) {
    int depth = 0;
    LambdaCommand::body = [&](const MArgList& args) {
        MPxCommand::setResult("outer");
        if (args.length() == 0 && ++depth == 1) {
            int inner = 0;
            EXPECT_FALSE(MGlobal::executeCommand("testCommand 1", inner)) << "a text is no number";
            MString text;
            EXPECT_TRUE(MGlobal::executeCommand("testCommand 1", text));
            EXPECT_EQ(text, "inner");
            EXPECT_FALSE(MGlobal::executeCommand("testCommand 2"));
        } else {
            MPxCommand::setResult("inner");
            if (args.asInt(0) == 2) return MStatus(MStatus::kFailure);
        }
        return MStatus();
    };
    EXPECT_EQ(run("testCommand"), "outer");
}

// Fault: undo that misses the command or takes its changes back twice; an object that dies in the queue, or never.
TEST_F(PxCommandTest, UndoAndRedo) {
    run("testMove 5; testMove 8;");
    EXPECT_EQ(run("getAttr a.tx"), "8");
    EXPECT_EQ(MoveCommand::alive, 2);
    run("undo"); // each command is a step
    EXPECT_EQ(run("getAttr a.tx"), "5");
    run("redo");
    EXPECT_EQ(run("getAttr a.tx"), "8");
    run("file -f -new");
    EXPECT_EQ(MoveCommand::alive, 0);
    run("createNode transform -n a; createNode transform -n b;");
    for (const char* value : {"1", "2"}) run(std::string("testMove ") + value);
    EXPECT_EQ(run("undo; getAttr a.tx"), "1");
    EXPECT_EQ(run("undo; getAttr a.tx"), "0");
    EXPECT_EQ(run("redo; redo; getAttr a.tx"), "2");
    run("testMove 9 1; undo;");
    EXPECT_THAT(errors, testing::Contains(HasSubstr("testMove")));
    EXPECT_TRUE(plugin.fn.deregisterCommand("testMove"));
    EXPECT_EQ(MoveCommand::alive, 0) << "objects whose code goes";
    EXPECT_THAT(run("testMove 1"), HasSubstr("testMove"));
}

} // namespace
