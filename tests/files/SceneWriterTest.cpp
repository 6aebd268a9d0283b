#include "SceneFileFixture.h"

#include "scene/MeshNode.h"

#include <gmock/gmock.h>

#include <bit>
#include <cmath>
#include <csignal>
#include <random>

#include <sys/resource.h>

using namespace host;
using namespace host::scene;
using testing::HasSubstr;

namespace {

/// Everything that a scene holds, in words that do not come from the writer: values to the bit, connections, kept text.
std::string contentsOf(Scene& scene) {
    std::string all;
    const auto line = [&](const std::string& text) { all += text + "\n"; };
    const std::function<void(Cell&)> describe = [&](Cell& c) {
        std::string text = c.name();
        if (c.locked) text += " locked";
        if (c.keyable) text += *c.keyable ? " keyable" : " unkeyable";
        if (c.source)
            text += " <- " + c.source->name();
        else if (!c.node.isComputed(c.attribute) && c.attribute.storable) {
            if (const auto* n = std::get_if<Numeric>(&c.value))
                for (int k = 0; k < n->count; ++k)
                    text += " " + std::to_string(std::bit_cast<std::uint64_t>(n->get(k)));
            if (const auto* s = std::get_if<std::string>(&c.value)) text += " " + *s;
            if (const auto* m = matrixIn(c.value))
                for (unsigned k = 0; k < 16; ++k) text += " " + std::to_string((*m)(k / 4, k % 4));
            if (const auto* d = std::get_if<DataPtr>(&c.value); d && *d && (*d)->kind() != DataKind::Mesh) {
                for (const auto& t : static_cast<ArrayData&>(**d).texts) text += " '" + t + "'";
                for (const double v : static_cast<ArrayData&>(**d).numbers) text += " " + std::to_string(v);
            }
        }
        if (text != c.name()) line(text);
        for (auto& child : c.children)
            if (child) describe(*child);
        for (auto& [i, e] : c.elements) describe(*e);
    };
    std::map<std::string, Node*> nodes;
    for (const auto& [serial, node] : scene.nodes())
        nodes[node->dag() ? node->dag()->fullPath() : node->name] = node.get();
    for (const auto& [path, node] : nodes) {
        line(path + " is " + node->type.name + " " + node->unknownType + " " + node->uuid +
             (node->locked ? " locked" : ""));
        // Cells that the writing looks at come into being by it; their values are the defaults, so make all of them.
        for (const Attribute* a : node->attributes())
            if (!a->isCompound() || a->type == AttributeType::Tuple) node->cell(*a);
        for (Cell* c : node->cells()) describe(*c);
        for (const auto& kept : node->keptStatements) line("kept " + kept);
    }
    for (const auto& k : scene.keptConnections)
        line("kept connection " + k.sourceText + " " + k.destinationText + " " + k.flags);
    for (const auto& k : scene.keptStatements) line("kept " + k);
    for (const auto& r : scene.requiredPlugins) line(r);
    for (const auto& [k, v] : scene.fileInfo) line(k + "=" + v);
    line(std::to_string(scene.time()));
    return all;
}

class RoundTripTest : public SceneFileFixture, public testing::WithParamInterface<const char*> {};

// Faults: whatever the writer leaves out, puts in a wrong order, or writes so that it reads back as another value.
TEST_P(RoundTripTest, SavedScenesOpenAsTheSame) {
    files::SceneReader(scene, {}).read(sample(GetParam()));
    std::shared_ptr<const mesh::PolyMesh> meshes[2];
    const auto meshNow = [&]() -> std::shared_ptr<const mesh::PolyMesh> {
        Node* shape = scene.findNode("boxShape");
        return shape ? meshOf(*shape) : nullptr;
    };
    meshes[0] = meshNow();
    const std::string before = contentsOf(scene);
    const auto file = temporary("saved.ma");
    files::SceneWriter(scene).write(file);
    const std::string bytes = get(file);
    files::SceneWriter(scene).write(file);
    EXPECT_EQ(get(file), bytes) << "the same scene twice";
    messages.clear();
    files::SceneReader(scene, {}).read(file);
    meshes[1] = meshNow();
    EXPECT_EQ(contentsOf(scene), before);
    if (meshes[0]) {
        EXPECT_TRUE(meshes[1] && *meshes[0] == *meshes[1]);
    }
    EXPECT_TRUE(files::SceneWriter(scene).text("saved.ma") == bytes) << "saved again after opening";
    EXPECT_LE(messages.size(), 2u) << allMessages();
}

INSTANTIATE_TEST_SUITE_P(Samples, RoundTripTest, testing::Values("release2010.ma", "release2016.ma", "release2022.ma"));

// Faults: digits lost in any unit, a comma written under a comma locale.
TEST_F(SceneFileFixture, NumbersReadBackToTheBit) {
    std::mt19937_64 random(20110117);
    open("currentUnit -l inch -a degree -t pal;");
    for (int round = 0; round < 200; ++round) {
        scene.reset();
        files::FileUnits{LinearUnit::Inch, AngularUnit::Degree, {240}}.makeCurrent();
        std::string text =
            "currentUnit -l inch -a degree -t pal; createNode transform -n \"a\"; setAttr \".t\" -type \"double3\"";
        std::string rotate = "; setAttr \".r\" -type \"double3\"";
        for (int k = 0; k < 3; ++k) {
            char word[40];
            std::snprintf(word, sizeof word, " %.17g",
                          std::ldexp(static_cast<double>(random() >> 11), static_cast<int>(random() % 100) - 100));
            text += word;
            std::snprintf(word, sizeof word, " %.17g", static_cast<double>(random() % 360000) / 1000);
            rotate += word;
        }
        open(text + rotate + ";");
        const auto values = [&] {
            return std::pair(std::get<Numeric>(scene.findPlug("a.t").value),
                             std::get<Numeric>(scene.findPlug("a.r").value));
        };
        const auto before = values();
        open(files::SceneWriter(scene).text("a"));
        ASSERT_TRUE(before == values()) << text << rotate;
    }
}

// Faults: kept connections written with names of the past; those of deleted nodes written.
TEST_F(SceneFileFixture, KeptConnectionsFollowTheirNodes) {
    open("createNode transform -n \"a\"; createNode foo -n \"f\"; createNode foo -n \"g\";"
         "connectAttr \"a.tx\" \"f.in\"; connectAttr \"f.out\" \"g.in\" -na;");
    scene.rename(*scene.findNode("f"), "renamed");
    EXPECT_THAT(files::SceneWriter(scene).text("x"),
                HasSubstr("connectAttr \"a.tx\" \"renamed.in\";\nconnectAttr \"renamed.out\" \"g.in\" -na;\n"));
    scene.deleteNodes({scene.findNode("a")});
    EXPECT_THAT(files::SceneWriter(scene).text("x"), testing::Not(HasSubstr("renamed.in")));
}

// Faults: long and odd texts cut, split within an escape or a character.
TEST_F(SceneFileFixture, LongTextsReadBack) {
    std::string text;
    for (int i = 0; i < 3000; ++i) text += i % 7 == 0 ? "\\\"\n" : i % 3 == 0 ? "\xC3\xA9" : "$x;";
    const NodePtr node = scene.createNode(*scene.findType("script"), "s");
    scene.setValue(node->cell("before"), text);
    open(files::SceneWriter(scene).text("x"));
    EXPECT_EQ(this->text("s.before"), text);
}

// Faults: a full disk passes for success, or costs the file that was there.
TEST_F(SceneFileFixture, AFailedSaveKeepsTheOldFile) {
    const auto file = temporary("scene.ma");
    put(file, "old");
    rlimit old{};
    getrlimit(RLIMIT_FSIZE, &old);
    const rlimit small{500, old.rlim_max};
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &small);
    std::string message;
    try {
        files::SceneWriter(scene).write(file);
    } catch (const files::FileError& e) {
        message = e.what();
    }
    setrlimit(RLIMIT_FSIZE, &old);
    std::signal(SIGXFSZ, handler);
    EXPECT_THAT(message, HasSubstr(file.generic_string() + ": cannot be written: "));
    EXPECT_EQ(get(file), "old");
    std::size_t entries = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(file.parent_path())) ++entries;
    EXPECT_EQ(entries, 1u) << "nothing is left beside it";
    EXPECT_THROW(files::SceneWriter(scene).write(temporary("no/such/folder.ma")), files::FileError);
    EXPECT_THROW(files::SceneWriter(scene).write(file.parent_path()), files::FileError);
}

} // namespace
