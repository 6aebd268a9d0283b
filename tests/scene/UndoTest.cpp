#include "kit/SceneFixture.h"

#include "scene/AnimCurve.h"

#include <algorithm>
#include <sstream>

using namespace host::scene;

namespace {

std::string text(const Value& value) {
    std::ostringstream out;
    out.precision(17);
    if (auto* n = std::get_if<Numeric>(&value))
        for (int k = 0; k < n->count; ++k) out << n->get(k) << ' ';
    if (auto* s = std::get_if<std::string>(&value)) out << *s;
    if (auto* m = matrixIn(value))
        for (unsigned k = 0; k < 16; ++k) out << (*m)(k / 4, k % 4) << ' ';
    return out.str();
}

/// One line for every cell that somebody has changed.
void describe(Cell& cell, std::ostream& out) {
    if (!cell.node.isComputed(cell.attribute)) {
        std::ostringstream line;
        if (cell.written) line << " written";
        if (cell.locked) line << " locked";
        if (cell.keyable) line << " keyable " << *cell.keyable;
        if (cell.source) line << " from " << cell.source->name();
        for (Cell* d : cell.destinations) line << " to " << d->name();
        evaluate(cell);
        if (!cell.isArray() && !cell.isTupleChild() && !equal(cell.value, cell.attribute.defaultValue))
            line << " = " << text(cell.value);
        if (!line.str().empty()) out << "  " << cell.attributePath() << line.str() << '\n';
    } else {
        for (Cell* d : cell.destinations) out << "  " << cell.attributePath() << " to " << d->name() << '\n';
    }
    for (auto& child : cell.children)
        if (child) describe(*child, out);
    for (auto& [index, element] : cell.elements) describe(*element, out);
}

/// Everything about the scene that a user could tell: names, order, parents, values, connections, meshes, selection.
std::string fingerprint(Scene& scene) {
    std::ostringstream out;
    out.precision(17);
    for (const auto& [serial, node] : scene.nodes()) {
        out << serial << ' ' << node->type.name << ' ' << node->name << (node->locked ? " locked" : "") << '\n';
        if (DagNode* dag = node->dag()) {
            out << "  at " << dag->fullPath() << " above";
            for (DagNode* child : dag->children) out << ' ' << child->name;
            out << '\n';
        }
        for (const auto& a : node->dynamicAttributes()) out << "  has " << a->longName << '\n';
        for (Cell* cell : node->cells()) describe(*cell, out);
        if (const CurveKeys* keys = curveKeys(*node))
            for (std::size_t i = 0; const CurveKey& k : keys->keys())
                out << "  key " << keys->indexOf(i++) << ' ' << k.time << ' ' << k.value << ' ' << int(k.in) << ' '
                    << int(k.out) << ' ' << k.given << '\n';
        if (const auto mesh = meshOf(*node))
            for (const auto& p : mesh->points()) out << "  " << p.x << ',' << p.y << ',' << p.z << '\n';
    }
    out << "world";
    for (DagNode* child : scene.world()->children) out << ' ' << child->name;
    out << "\nselected";
    for (const auto& item : scene.selection()) out << ' ' << item.node->name << '.' << item.part;
    const PlaybackRange& range = scene.playback();
    out << "\ntime " << scene.time() << ' ' << range.min << ' ' << range.max << '\n';
    return out.str();
}

/// The lines that only one of the two has.
std::string difference(const std::string& was, const std::string& is) {
    std::istringstream one(was), two(is);
    std::vector<std::string> a, b;
    for (std::string line; std::getline(one, line);) a.push_back(line);
    for (std::string line; std::getline(two, line);) b.push_back(line);
    std::string text;
    for (const auto& line : a)
        if (std::ranges::count(b, line) < std::ranges::count(a, line)) text += "- " + line + "\n";
    for (const auto& line : b)
        if (std::ranges::count(a, line) < std::ranges::count(b, line)) text += "+ " + line + "\n";
    return was != is && text.empty() ? "the order of lines" : text;
}

constexpr const char* kScene = R"(
    polyCube -n box;
    polyPlane -sx 1 -sy 1 -n floor;
    spaceLocator -n mark;
    group -em -n home;
    move 1 2 3 home;
    rotate 10 20 30 home;
    scale 2 2 2 home;
    group -n pair box mark;
    connectAttr home.tx floor.ty;
    connectAttr floor.ty mark.tz;
    setKeyframe -at translateX -t 1 -v 1 floor;
    setKeyframe -at translateX -t 9 -v 5 floor;
    sets -n some box floor;
    select box floor;
)";

struct UndoTest : SceneFixture, testing::WithParamInterface<ScriptCase> {};

} // namespace

/// Fails when a command changes something that its undo does not put back, or that its redo does not repeat.
TEST_P(UndoTest, RestoresTheSceneExactly) {
    ASSERT_EQ(run(kScene), "");
    const std::string before = fingerprint(scene);
    // In braces it is one statement, and so one step.
    const std::string answer = run(std::string("{") + GetParam().script + ";}");
    ASSERT_FALSE(answer.starts_with("Error")) << answer;
    const std::string after = fingerprint(scene);
    EXPECT_NE(difference(before, after), "") << "the command changes nothing";
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(run("undo"), "");
        EXPECT_EQ(difference(before, fingerprint(scene)), "") << "after undo";
        EXPECT_EQ(run("redo"), "");
        EXPECT_EQ(difference(after, fingerprint(scene)), "") << "after redo";
    }
}

INSTANTIATE_TEST_SUITE_P(
    Commands, UndoTest,
    testing::Values(
        ScriptCase{"ConnectAttr", "connectAttr home.ry floor.rz", ""},
        ScriptCase{"ConnectOverAConnection", "connectAttr -f box.tx mark.tz", ""},
        ScriptCase{"ConnectToAnArray", "connectAttr -na box.message some.dnSetMembers", ""},
        ScriptCase{"DisconnectFirstOfTwo", "connectAttr home.tx box.sx; disconnectAttr home.tx floor.ty", ""},
        ScriptCase{"DisconnectMesh", "disconnectAttr polyCube1.output boxShape.inMesh", ""},
        ScriptCase{"RenameTransform", "rename box crate", ""}, ScriptCase{"RenameSet", "rename some any", ""},
        ScriptCase{"DeleteMeshWithHistory", "delete box", ""}, ScriptCase{"DeleteGroup", "delete pair", ""},
        ScriptCase{"DeleteConnectedBetween", "delete floor", ""}, ScriptCase{"DeleteSet", "delete some", ""},
        ScriptCase{"DeleteCreator", "delete polyCube1", ""}, ScriptCase{"DeleteHistory", "delete -ch box", ""},
        ScriptCase{"DeletePattern", "delete \"*a*\"", ""}, ScriptCase{"Parent", "parent floor home", ""},
        ScriptCase{"ParentRelative", "parent -r pair home", ""}, ScriptCase{"ParentToWorld", "parent -w box", ""},
        ScriptCase{"ParentShape", "parent -s -r floorShape home", ""}, ScriptCase{"Group", "group floor box", ""},
        ScriptCase{"Ungroup", "ungroup pair", ""}, ScriptCase{"Duplicate", "duplicate pair", ""},
        ScriptCase{"DuplicateUpstream", "duplicate -un floor", ""},
        ScriptCase{"DuplicateInputs", "duplicate -ic floor", ""}, ScriptCase{"LockNode", "lockNode box", ""},
        ScriptCase{"Select", "select -add home box.vtx[0]", ""}, ScriptCase{"SelectToggle", "select -tgl box home", ""},
        ScriptCase{"Hide", "hide pair", ""}, ScriptCase{"ShowHidden", "hide box; showHidden -all", ""},
        ScriptCase{"Move", "move -r 1 1 1 box", ""}, ScriptCase{"Rotate", "rotate -r -ws 0 90 0 home", ""},
        ScriptCase{"Scale", "scale -r 2 2 2 box", ""},
        ScriptCase{"XformMatrix", "xform -ws -m 0 1 0 0 -1 0 0 0 0 0 1 0 5 6 7 1 box", ""},
        ScriptCase{"XformPivots", "xform -ws -piv 4 5 6 home", ""}, ScriptCase{"XformOrder", "xform -roo zyx home", ""},
        ScriptCase{"CentrePivots", "move 1 1 1 box; xform -cp box", ""},
        ScriptCase{"MakeIdentity", "move 1 1 1 box; makeIdentity -a 1 box", ""},
        ScriptCase{"CurrentTime", "currentTime 5", ""},
        ScriptCase{"PlaybackOptions", "playbackOptions -min 5 -max 50", ""},
        ScriptCase{"FirstKey", "setKeyframe -at sx -v 3 -t 4 box", ""},
        ScriptCase{"KeyBetween", "setKeyframe -at tx -v 3 -t 4 floor", ""},
        ScriptCase{"CutKey", "cutKey -t \"5:\" floor.tx", ""}, ScriptCase{"CutAllKeys", "cutKey floor", ""},
        ScriptCase{"ValueBesideKeys", "move -x 77 floor", ""},
        ScriptCase{"RemoveMultiInstance", "removeMultiInstance -b true some.dagSetMembers[0]", ""},
        ScriptCase{"KeyTangent", "keyTangent -ott step floor.tx", ""}, ScriptCase{"PolySphere", "polySphere -r 2", ""},
        ScriptCase{"PolyPlaneBare", "polyPlane -ch 0", ""}, ScriptCase{"PolyEdit", "polyCube -e -w 5 box", ""},
        ScriptCase{"NewSet", "sets home", ""}, ScriptCase{"ForceElement", "sets -e -fe initialParticleSE box", ""},
        ScriptCase{"SetRemove", "sets -rm some box", ""}, ScriptCase{"SetClear", "sets -cl some", ""},
        ScriptCase{"Camera", "camera -n eye -fl 50", ""}, ScriptCase{"Light", "directionalLight -i 2", ""},
        ScriptCase{"ShadingNode", "shadingNode -asShader lambert", ""},
        ScriptCase{"AThrowingStatement", "select home; catch(`rename nothing else`); move 9 9 9", ""}),
    caseName);

namespace {
struct UndoQueueTest : SceneFixture {};
} // namespace

/// Fails when a chunk does not join statements, a statement is not one step, or undo in mid-chunk goes too far.
TEST_F(UndoQueueTest, GroupsStatementsAndCommands) {
    const std::string empty = fingerprint(scene);
    run("undoInfo -openChunk; group -em -n a; group -em -n b; undoInfo -closeChunk");
    run("proc two() { group -em -n c; group -em -n d; } two");
    EXPECT_EQ(run("undo; ls -as a b c d"), "a b");
    EXPECT_EQ(run("undo; ls -as a b c d"), "");
    EXPECT_EQ(difference(empty, fingerprint(scene)), "");
    EXPECT_EQ(run("redo; ls -as a b c d"), "a b");
    EXPECT_EQ(run("proc three() { group -em -n e; group -em -n f; undo; } three; ls e f"), "e");
}

/// Fails when the queue's ends are no errors, or when switching it off leaves steps behind.
TEST_F(UndoQueueTest, EndsAndSwitches) {
    EXPECT_EQ(run("undo"), "Error: There are no more commands to undo.");
    EXPECT_EQ(run("redo"), "Error: There are no more commands to redo.");
    run("group -em -n a");
    EXPECT_EQ(run("undoInfo -q -undoName"), "group");
    run("undoInfo -stateWithoutFlush off");
    run("group -em -n b");
    run("undoInfo -stateWithoutFlush on");
    EXPECT_EQ(run("undo; ls -as a b"), "b");
    EXPECT_EQ(run("redo; undoInfo -state off; group -em -n c; undoInfo -state on; undo"),
              "Error: There are no more commands to undo.");
    EXPECT_EQ(run("undoInfo -closeChunk"), "Error: There is no open undo chunk to close.");
}

/// Fails when an attribute that was deleted comes back elsewhere, without its value, or under another name.
TEST_F(UndoQueueTest, AddedAttributesComeBackInPlace) {
    run("group -em -n a");
    Node& node = *scene.findNode("a");
    for (const char* name : {"first", "second", "third"})
        scene.addAttribute(node, Attribute::number(name, name, NumericType::Double));
    scene.setNumber(*scene.tryPlug("a.second"), 7);
    const std::string before = fingerprint(scene);
    EXPECT_EQ(run("deleteAttr a.second; listAttr -ud a"), "first third");
    run("undo");
    EXPECT_EQ(difference(before, fingerprint(scene)), "");
    EXPECT_EQ(run("renameAttr a.second other; getAttr a.other"), "7");
    EXPECT_EQ(run("renameAttr a.other first"), "Error: Node 'a' already has an attribute named 'first'.");
    EXPECT_EQ(run("deleteAttr a.translate"),
              "Error: 'a.translate' was not added by a user: it cannot be deleted or renamed.");
    run("undo");
    EXPECT_EQ(difference(before, fingerprint(scene)), "");
}
