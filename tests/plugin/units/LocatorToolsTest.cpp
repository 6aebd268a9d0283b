#include "Common/InstanceList.h"
#include "Common/LocatorAttributes.h"
#include "SkyTool/ShadingConversionNode.h"
#include "SkyTool/SkyProgram.h"
#include "SkyTool/fog/ExpHeightFogLocator.h"
#include "UtilityTest.h"

#include "api/graph/Handle.h"
#include "api/plugins/PluginManager.h"

#include <maya/M3dView.h>
#include <maya/MDagPath.h>
#include <maya/MFnPlugin.h>
#include <maya/MPxLocatorNode.h>
#include <maya/MTypeId.h>

#include <optional>
#include <stdexcept>
#include <tuple>

using namespace orvo;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::SizeIs;

namespace {

/// A locator with attributes of the kinds that the sky nodes use; two of them clash.
class Sample : public MPxLocatorNode {
public:
    static MStatus initialize() {
        using A = LocatorAttributes;
        A::text("title", {.hidden = true});
        A::integer("count", 7, {.min = -5, .max = 50, .softMin = 0, .softMax = 10}, {.keyable = true});
        A::real("size", 2.5, {.min = 1});
        A::vector("dir", {1, 2, 3}, {.min = 0, .max = 9});
        A::enumeration("mode", 20, {{"low", 10}, {"high", 20}}, {.storable = false});
        A::boolean("count", true);
        A::text("late");
        return MStatus::kSuccess;
    }
    static void* create() { return new Sample; }
    static inline std::vector<std::string> reported;

private:
    InstanceEntry<Sample> entry_{*this};
};

/// A conversion node, one of whose attributes is there already.
struct Clash {
    static MStatus initialize() {
        LocatorAttributes::real("inVector", 0.0);
        status = OrvoSkyShadingConversionNode::initialize();
        return MStatus::kSuccess;
    }
    static inline MStatus status;
};

class LocatorTools : public UtilityTest {
protected:
    LocatorTools() {
        static const bool registered = registerTypes(log_);
        EXPECT_TRUE(registered);
        log_.clear();
    }
    static bool registerTypes(MessageLog& log) {
        static host::api::Plugin plugin;
        plugin.name = "locatorTools";
        MObject object = host::api::Access::object(std::make_shared<host::api::PluginHandle>(&plugin));
        MFnPlugin module(object);
        log.clear();
        const bool sample = !module
                                 .registerNode("sampleLocator", MTypeId(0x7f101), Sample::create, Sample::initialize,
                                               MPxNode::kLocatorNode)
                                 .error();
        Sample::reported = log.errors();
        const auto fog = [] { return static_cast<void*>(new ExpHeightFogLocator); };
        const auto conversion = [] { return static_cast<void*>(new OrvoSkyShadingConversionNode); };
        EXPECT_FALSE(module.registerNode("sampleClash", MTypeId(0x7f104), conversion, Clash::initialize).error());
        return sample && !module
                              .registerNode("sampleFog", MTypeId(0x7f102), fog, ExpHeightFogLocator::initialize,
                                            MPxNode::kLocatorNode)
                              .error();
    }
    static InstanceList<Sample>& samples() { return InstanceList<Sample>::shared(); }
    double number(const char* plugName) {
        auto& cell = scene.findPlug(plugName);
        host::scene::evaluate(cell);
        return cell.number();
    }
};

} // namespace

// Catches a default, limit or flag that is not passed on, a soft limit that binds, and names that differ.
TEST_F(LocatorTools, AttributesAreAsAskedFor) {
    mel("createNode transform -n \"t\"; createNode sampleLocator -n \"s\" -p \"t\";");
    EXPECT_EQ(number("s.count"), 7);
    EXPECT_EQ(number("s.size"), 2.5);
    EXPECT_EQ(number("s.dir1"), 2);
    EXPECT_EQ(number("s.mode"), 20);
    EXPECT_EQ(readString(node("s"), attribute(node("s"), "title")), "");
    for (const auto& [plugName, value] : std::initializer_list<std::pair<const char*, double>>{
             {"s.count", -6}, {"s.count", 51}, {"s.size", 0.5}, {"s.dir0", -1}, {"s.dir2", 10}})
        EXPECT_THROW(set(plugName, value), host::scene::SceneError) << plugName << value;
    for (const auto& [plugName, value] : std::initializer_list<std::pair<const char*, double>>{
             {"s.count", -5}, {"s.count", 50}, {"s.size", 1e9}, {"s.dir2", 9}}) {
        set(plugName, value);
        EXPECT_EQ(number(plugName), value);
    }
    const auto& type = scene.findNode("s")->type;
    const auto* count = type.find("count");
    EXPECT_TRUE(count->keyable && count->storable && count->readable && count->writable && !count->hidden);
    EXPECT_EQ(count->shortName, "count");
    EXPECT_EQ(count->numeric, host::scene::NumericType::Int);
    EXPECT_EQ(count->limits[0].softMax, 10);
    EXPECT_TRUE(type.find("title")->hidden);
    EXPECT_FALSE(type.find("mode")->storable);
    EXPECT_EQ(type.find("mode")->fieldName(10), "low");
}

// Catches a name that is given twice and passes unnoticed, a report that names the tool and not the node that called
// it, and an initialisation that ends there.
TEST_F(LocatorTools, ADoubleNameIsReportedAndTheRestFollows) {
    EXPECT_THAT(Sample::reported,
                ElementsAre(testing::HasSubstr("count"), // the host's own
                            MatchesRegex("In units\\\\LocatorToolsTest, line [0-9]+"),
                            MatchesRegex("Maya Reports: \\(k[A-Za-z]+\\): .+"),
                            MatchesRegex("In units\\\\LocatorToolsTest, line [0-9]+"), ""));
    const auto* type = scene.findType("sampleLocator");
    EXPECT_NE(type->find("late"), nullptr);
    EXPECT_EQ(type->find("count")->numeric, host::scene::NumericType::Int) << "the first one stays";
}

// Catches an initialisation that ends at its first failure, or hides it.
TEST_F(LocatorTools, AClashLeavesTheOtherAttributes) {
    EXPECT_TRUE(Clash::status.error());
    const auto* type = scene.findType("sampleClash");
    for (const char* name : {"inMatrix", "mode", "outVector", "outW"}) EXPECT_NE(type->find(name), nullptr) << name;
}

// Catches a list that loses its order, finds a node of another class or a dead one, or keeps one that is destroyed.
TEST_F(LocatorTools, InstanceList) {
    ASSERT_THAT(samples().nodes(), SizeIs(0));
    EXPECT_EQ(samples().firstLive(), nullptr);
    for (const char* name : {"a", "b", "c"})
        mel(std::string("createNode transform -n \"") + name + "T\"; createNode sampleLocator -n \"" + name +
            "\" -p \"" + name + "T\";");
    const auto nodes = samples().nodes();
    ASSERT_THAT(nodes, SizeIs(3));
    EXPECT_EQ(samples().find("a"), nodes[0]);
    EXPECT_EQ(samples().find("|cT|c"), nodes[2]);
    for (const char* name : {"aT", "persp", "neverThere", ""}) EXPECT_EQ(samples().find(name), nullptr) << name;
    EXPECT_EQ(samples().firstLive(), nodes[0]);
    {
        const host::scene::UndoQueue::Chunk chunk(scene.undo);
        scene.deleteNodes({scene.findNode("aT")});
    }
    EXPECT_THAT(samples().nodes(), SizeIs(3)) << "it may yet come back";
    EXPECT_EQ(samples().find("a"), nullptr);
    EXPECT_EQ(samples().firstLive(), nodes[1]);
    scene.undo.undo();
    EXPECT_EQ(samples().find("a"), nodes[0]);
    scene.deleteNodes({scene.findNode("bT")});
    scene.undo.clear();
    EXPECT_THAT(samples().nodes(), ElementsAre(nodes[0], nodes[2]));
    EXPECT_EQ(samples().find("c"), nodes[2]);
    scene.rename(*scene.findNode("c"), "other");
    EXPECT_EQ(samples().find("other"), nodes[2]);
    // A deleted node's name, taken again by a node of another kind; and a name that stands for two nodes.
    mel("delete aT; createNode transform -n aT; createNode transform -n a -p aT;");
    EXPECT_EQ(samples().firstLive(), nodes[2]);
    mel("createNode transform -n elsewhere; createNode transform -n other -p elsewhere;");
    EXPECT_EQ(samples().firstLive(), nodes[2]);
    scene.reset();
    EXPECT_THAT(samples().nodes(), SizeIs(0));
}

// Catches a colour that is copied though nobody asked, or from a fog that is switched off, a copy that is stored as
// something else, and the export of the old one.
TEST_F(LocatorTools, HeightFogTakesTheSceneFogsColour) {
    struct Seam {
        ~Seam() { ExpHeightFogLocator::sceneFogColour = nullptr; }
    } seam;
    static std::optional<Vector3> colour;
    static int asked;
    colour.reset();
    asked = 0;
    mel("createNode transform -n \"t\"; createNode sampleFog -n \"fog\" -p \"t\";");
    ExpHeightFogLocator* fog = ExpHeightFogLocator::findInstance("fog");
    ASSERT_NE(fog, nullptr);
    EXPECT_EQ(ExpHeightFogLocator::firstLiveInstance(), fog);
    M3dView view;
    const auto afterDraw = [&] {
        fog->draw(view, MDagPath(), {}, {});
        return readFloat3(node("fog"), ExpHeightFogLocator::fogColour);
    };
    const Vector3 white{1, 1, 1};
    set("fog.getColourFromSceneFog", 1);
    EXPECT_EQ(afterDraw(), white) << "no class of scene fog nodes";
    ExpHeightFogLocator::sceneFogColour = [] { return ++asked, colour; };
    EXPECT_EQ(afterDraw(), white) << "no scene fog node";
    colour = Vector3{0.25, 0.5, 0.75};
    set("fog.getColourFromSceneFog", 0);
    EXPECT_EQ(afterDraw(), white);
    set("fog.getColourFromSceneFog", 1);
    set("fog.Enable", 0);
    EXPECT_EQ(afterDraw(), white) << "switched off";
    EXPECT_EQ(asked, 1);
    set("fog.Enable", 1);
    EXPECT_EQ(afterDraw(), *colour);
    colour = Vector3{0.125, 0, 2};
    EXPECT_EQ(afterDraw(), *colour) << "at every draw";
    EXPECT_EQ(number("fog.fogColourB"), 2);
    EXPECT_THAT(log_.all(), IsEmpty());
    scene.setLocked(scene.findPlug("fog.fogColour"), true);
    colour = white;
    EXPECT_EQ(afterDraw(), (Vector3{0.125, 0, 2}));
    EXPECT_THAT(log_.all(), IsEmpty()) << "an artist's lock is no failure";
}

namespace {

/// A driver whose link gives the status and log that a test wants.
class SkyProgramTest : public UtilityTest {
protected:
    GlFunctions driver() {
        GlFunctions table;
        table.createProgram = [this] { return ++made_, 5u; };
        table.deleteProgram = [this](GLuint) { ++deleted_; };
        table.getProgramiv = [this](GLuint, GLenum name, GLint* value) {
            *value = name == GL_VALIDATE_STATUS   ? valid
                     : name == GL_INFO_LOG_LENGTH ? static_cast<GLint>(log.size()) + (log.empty() ? 0 : 1)
                                                  : GL_TRUE;
        };
        table.getProgramInfoLog = [this](GLuint, GLsizei size, GLsizei*, GLchar* text) {
            if (throws) throw std::runtime_error("driver");
            log.copy(text, static_cast<std::size_t>(size) - 1);
        };
        return table;
    }
    const SkyShaderTexts texts{"SomeSky", "V", "F"};
    GLint valid = GL_TRUE;
    std::string log;
    bool throws = false;
    int made_ = 0, deleted_ = 0;
    GlFunctionsScope scope_{driver()};
};

} // namespace

// Catches a program that is built for every frame, or lost on the way.
TEST_F(SkyProgramTest, IsBuiltOnce) {
    SkyProgram program;
    ShaderProgram* first = program.get(texts);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(program.get(texts), first);
    EXPECT_FALSE(program.buildFailed());
    EXPECT_EQ(made_, 1);
    program.release();
    EXPECT_EQ(deleted_, 1);
    EXPECT_NE(program.get(texts), nullptr);
    EXPECT_EQ(made_, 2);
    EXPECT_THAT(log_.all(), IsEmpty());
}

// Catches a failure that is tried again at every frame, is told again, leaks its program, or outlives the release; a
// log of warnings that counts as success; and a log that is not the format of its message.
TEST_F(SkyProgramTest, AFailureIsToldOnceAndKeptUntilRelease) {
    const std::string head = "SomeSky:  shader did not compile! :(  \n\nErrorReport:\n";
    const std::tuple<GLint, const char*, std::string> cases[] = {
        {GL_FALSE, "", head},
        {GL_FALSE, "0:3: error\n", head + "0:3: error\n"},
        {GL_TRUE, "warning: 100%% slow", head + "warning: 100% slow"},
    };
    for (const auto& [status, text, message] : cases) {
        valid = status;
        log = text;
        made_ = deleted_ = 0;
        log_.clear();
        SkyProgram program;
        const auto where = SourcePlace::current();
        for (int frame = 0; frame < 3; ++frame) EXPECT_EQ(program.get(texts, where), nullptr);
        EXPECT_TRUE(program.buildFailed());
        EXPECT_EQ(made_, 1) << message;
        EXPECT_EQ(deleted_, 1) << message;
        EXPECT_THAT(log_.all(), ElementsAre("Error: In units\\LocatorToolsTest, line " + std::to_string(where.line),
                                            "Error: " + message));
        valid = GL_TRUE;
        log.clear();
        EXPECT_EQ(program.get(texts), nullptr) << "the cause is gone, but the node was not switched off and on";
        program.release();
        EXPECT_FALSE(program.buildFailed());
        EXPECT_NE(program.get(texts), nullptr);
    }
}

// Catches a report that ends in nothing where there is no log, because the driver gave nothing to log.
TEST_F(UtilityTest, AProgramWithoutADriverSaysWhy) {
    SkyProgram program;
    EXPECT_EQ(program.get({"SomeSky", "V", "F"}), nullptr);
    EXPECT_EQ(log_.errors().back(), "SomeSky:  shader did not compile! :(  \n\nErrorReport:\nNo OpenGL context is "
                                    "current");
}

// Catches an exception that leaves the build, a program that is left behind, and a failure that is forgotten.
TEST_F(SkyProgramTest, AnExceptionIsAFailure) {
    throws = true;
    log = "x";
    SkyProgram program;
    EXPECT_EQ(program.get(texts), nullptr);
    EXPECT_TRUE(program.buildFailed());
    EXPECT_EQ(deleted_, 1);
    throws = false;
    log.clear();
    EXPECT_EQ(program.get(texts), nullptr);
    program.release();
    EXPECT_NE(program.get(texts), nullptr);
}
