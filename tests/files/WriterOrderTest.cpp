#include "SceneFileFixture.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

using namespace host;
using namespace host::scene;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

class WriterOrder : public SceneFileFixture {
protected:
    DagNode& make(const std::string& name, DagNode* parent = nullptr) {
        return *scene.createNode(*scene.findType("transform"), name, parent)->dag();
    }
    std::string written(const std::string& name = "x.ma") { return files::SceneWriter(scene).text(name); }
};

// Catches a name alone where several nodes have it, children before parents, and children that change their places.
TEST_F(WriterOrder, LikeNamesBelowDifferentParents) {
    DagNode &a = make("a"), &b = make("b");
    for (DagNode* parent : {&a, &b}) {
        DagNode& same = make("same", parent);
        scene.setNumber(scene.findPlug(same.fullPath() + ".tx"), parent == &a ? 1 : 2);
        scene.setNumber(scene.findPlug(make("leaf", &same).fullPath() + ".ty"), parent == &a ? 3 : 4);
    }
    scene.connect(scene.findPlug("|b|same.sx"), scene.findPlug("|a|same|leaf.sy"));
    scene.reparent(*make("late").dag(), &a);
    scene.reorder(*scene.findNode("|a|late")->dag(), 0);
    scene.reparent(b, &a);
    open(written());
    EXPECT_EQ(messages.size(), 0u) << allMessages();
    EXPECT_EQ(number("|a|same.tx"), 1);
    EXPECT_EQ(number("|a|b|same.tx"), 2);
    EXPECT_EQ(number("|a|same|leaf.ty"), 3);
    EXPECT_EQ(number("|a|b|same|leaf.ty"), 4);
    ASSERT_NE(scene.findPlug("|a|same|leaf.sy").source, nullptr);
    EXPECT_EQ(scene.findPlug("|a|same|leaf.sy").source->node.dag()->fullPath(), "|a|b|same");
    std::string order;
    for (DagNode* child : scene.findNode("a")->dag()->children) order += child->name + " ";
    EXPECT_EQ(order, "late same b ");
}

// Catches a line of a file that the scene's name or a text breaks out of.
TEST_F(WriterOrder, TextsCannotEndTheirStatement) {
    const std::string evil = "\";\ncreateNode transform -n \"evil\"; //";
    scene.fileInfo["a\"; " + evil] = evil + "\\";
    const NodePtr script = scene.createNode(*scene.findType("script"), "s");
    scene.setValue(script->cell("before"), evil + "\\");
    const std::string text = files::SceneWriter(scene, {.plugins = {{evil, evil}}}).text("x\n" + evil);
    EXPECT_THAT(text, StartsWith("//Maya ASCII "));
    open(text);
    EXPECT_EQ(scene.findNode("evil"), nullptr);
    EXPECT_EQ(this->text("s.before"), evil + "\\");
    EXPECT_EQ(scene.fileInfo["a\"; " + evil], evil + "\\");
}

// Catches numbers that are no finite ones and that stop the reading, or come back as others.
TEST_F(WriterOrder, NumbersThatAreNotFinite) {
    const double inf = std::numeric_limits<double>::infinity(), nan = std::numeric_limits<double>::quiet_NaN();
    Node& a = make("a");
    scene.setValue(a.cell("translate"), Numeric(NumericType::Double, 3, inf, -inf, nan));
    scene.setNumber(a.cell("scale").child(1), 1e-320);
    open(written());
    EXPECT_EQ(number("a.tx"), inf);
    EXPECT_EQ(number("a.ty"), -inf);
    EXPECT_TRUE(std::isnan(number("a.tz")));
    EXPECT_EQ(number("a.sy"), 1e-320);
}

// Catches helpers of a plug-in that say they are not to be saved, and connections that then lead to nothing.
TEST_F(WriterOrder, NodesThatAreNotToBeSavedAreLeftOut) {
    DagNode &kept = make("kept"), &helper = make("helper"), &below = make("below", &helper);
    helper.doNotWrite = true;
    scene.connect(helper.cell("translate"), kept.cell("translate"));
    scene.connect(kept.cell("scale"), below.cell("scale"));
    const std::string text = written();
    EXPECT_THAT(text, HasSubstr("\"kept\""));
    EXPECT_THAT(text, Not(HasSubstr("helper")));
    EXPECT_THAT(text, Not(HasSubstr("below"))) << "it has no place without what is above it";
    EXPECT_THAT(text, Not(HasSubstr("connectAttr")));
    open(text);
    EXPECT_EQ(messages.size(), 0u) << allMessages();
}

// Catches a lock that is set before the value or connection it would refuse.
TEST_F(WriterOrder, LockedPlugsKeepValueAndConnection) {
    Node &a = make("a"), &b = make("b");
    scene.setNumber(scene.findPlug("a.tx"), 5);
    scene.setLocked(scene.findPlug("a.tx"), true);
    scene.connect(b.cell("translate").child(1), a.cell("translate").child(1));
    scene.setLocked(scene.findPlug("a.ty"), true);
    a.locked = true;
    open(written());
    EXPECT_EQ(messages.size(), 0u) << allMessages();
    EXPECT_EQ(number("a.tx"), 5);
    EXPECT_TRUE(scene.findPlug("a.tx").locked && scene.findPlug("a.ty").locked);
    ASSERT_NE(scene.findPlug("a.ty").source, nullptr);
    EXPECT_TRUE(scene.findNode("a")->locked);
}

// Catches default nodes that are made a second time, or written though nothing about them has changed.
TEST_F(WriterOrder, DefaultNodes) {
    EXPECT_THAT(written(), Not(HasSubstr("select -ne"))) << written();
    const std::size_t count = scene.nodes().size();
    scene.setNumber(scene.findPlug("lambert1.diffuse"), 0.25);
    const std::string text = written();
    EXPECT_THAT(text, HasSubstr("select -ne :lambert1;\n\tsetAttr \".dc\" 0.25;\n"));
    EXPECT_THAT(text, Not(HasSubstr("createNode lambert")));
    open(text);
    EXPECT_EQ(number("lambert1.diffuse"), 0.25);
    EXPECT_EQ(scene.nodes().size(), count);
}

} // namespace
