#include "GraphFixture.h"

#include <maya/MDagPath.h>
#include <maya/MFnSingleIndexedComponent.h>
#include <maya/MIntArray.h>

namespace {

using testing::ElementsAre;
using testing::UnorderedElementsAre;

struct SelectionListTest : GraphFixture {
    SelectionListTest() {
        run("createNode transform -n fog1; createNode transform -n fog2; createNode transform -n haze; "
            "polyCube -ch 0 -n box; createNode transform -n twin; createNode transform -n g; "
            "createNode transform -p g -n twin; select -cl;");
    }
    static std::vector<std::string> names(const MSelectionList& list) {
        MStringArray array;
        EXPECT_TRUE(list.getSelectionStrings(array));
        std::vector<std::string> found;
        for (unsigned i = 0; i < array.length(); ++i) found.push_back(str(array[i]));
        return found;
    }
    static std::vector<std::string> active() {
        MSelectionList list;
        EXPECT_TRUE(MGlobal::getActiveSelectionList(list));
        return names(list);
    }
    MSelectionList list;
};

// Fault: a pattern that finds too little or too much, items doubled by two patterns, a name of two nodes taken as one.
TEST_F(SelectionListTest, NamesAndPatterns) {
    EXPECT_TRUE(list.add("fog*"));
    EXPECT_THAT(names(list), UnorderedElementsAre("fog1", "fog2"));
    EXPECT_TRUE(list.add("fo?1"));
    EXPECT_EQ(list.length(), 2u);
    for (const char* wrong : {"", "nothing", "no*", "twin", "haze.noSuch", "nothing.tx", "twin.tx"})
        EXPECT_EQ(list.add(wrong), MStatus::kInvalidParameter) << wrong;
    EXPECT_EQ(list.length(), 2u);
    EXPECT_TRUE(list.add("g|twin"));
    EXPECT_TRUE(list.add("|twin"));
    EXPECT_EQ(list.length(), 4u);
    EXPECT_EQ(names(list)[2], "g|twin");
    EXPECT_EQ(MGlobal::getSelectionListByName("tw*", list), MStatus::kSuccess);
    EXPECT_EQ(list.length(), 2u) << "the list is replaced";
}

// Fault: a plug or component stored as its whole node, or the reverse; an index beyond the end answered.
TEST_F(SelectionListTest, PlugsComponentsAndNodes) {
    EXPECT_TRUE(list.add("haze.tx"));
    EXPECT_TRUE(list.add("box.vtx[0:3]"));
    EXPECT_TRUE(list.add(object("haze")));
    EXPECT_THAT(names(list), ElementsAre("haze.translateX", "box.vtx[0:3]", "haze"));
    MPlug found;
    EXPECT_TRUE(list.getPlug(0, found));
    EXPECT_EQ(found, plug("haze.tx"));
    EXPECT_EQ(list.getPlug(2, found), MStatus::kFailure);
    EXPECT_EQ(list.getPlug(3, found), MStatus::kInvalidParameter);
    MDagPath path;
    EXPECT_TRUE(list.getDagPath(1, path));
    EXPECT_EQ(path.node(), object("boxShape"));
    MObject node;
    EXPECT_TRUE(list.getDependNode(0, node));
    EXPECT_EQ(node, object("haze"));
    EXPECT_EQ(list.getDependNode(3, node), MStatus::kInvalidParameter);
    EXPECT_TRUE(list.hasItem(plug("haze.tx")) && !list.hasItem(plug("haze.ty")) && list.hasItem(object("haze")));
    EXPECT_FALSE(list.hasItem(object("box"))) << "only a component of it";
    EXPECT_EQ(list.remove(3), MStatus::kInvalidParameter);
    EXPECT_TRUE(list.remove(2));
    EXPECT_FALSE(list.hasItem(object("haze")));
    EXPECT_TRUE(list.replace(0, object("fog1")));
    EXPECT_TRUE(list.replace(1, plug("fog2.ty")));
    EXPECT_EQ(list.replace(2, object("fog2")), MStatus::kInvalidParameter);
    EXPECT_EQ(list.replace(0, MObject()), MStatus::kInvalidParameter);
    EXPECT_THAT(names(list), ElementsAre("fog1", "fog2.translateY"));
    EXPECT_TRUE(list.add(object("time1")));
    EXPECT_EQ(list.getDagPath(2, path), MStatus::kInvalidParameter);
    EXPECT_EQ(list.add(plug("fog1.tx").attribute()), MStatus::kInvalidParameter);
    EXPECT_EQ(list.add(MPlug()), MStatus::kInvalidParameter);
}

// Fault: components handed out as their whole mesh, not joined, or changed by what another list does with them.
TEST_F(SelectionListTest, ComponentsAsObjects) {
    run("select box.vtx[4:5] box.vtx[0] box.f[2] haze");
    ASSERT_TRUE(MGlobal::getActiveSelectionList(list));
    ASSERT_EQ(list.length(), 3u);
    MDagPath path;
    MObject component;
    ASSERT_TRUE(list.getDagPath(0, path, component));
    EXPECT_EQ(path.node(), object("boxShape"));
    EXPECT_EQ(component.apiType(), MFn::kMeshVertComponent);
    MFnSingleIndexedComponent vertices(component);
    EXPECT_EQ(vertices.elementCount(), 3);
    EXPECT_EQ(vertices.element(1), 4);
    MIntArray elements;
    EXPECT_TRUE(vertices.addElement(2) && vertices.addElement(1) && vertices.getElements(elements));
    EXPECT_EQ(std::vector<int>(&elements[0], &elements[0] + elements.length()), (std::vector{0, 1, 2, 4, 5}));
    MObject face, none;
    EXPECT_TRUE(list.getDagPath(1, path, face) && face.hasFn(MFn::kMeshComponent));
    EXPECT_EQ(face.apiType(), MFn::kMeshPolygonComponent);
    EXPECT_TRUE(list.getDagPath(2, path, none) && none.isNull());

    MSelectionList other;
    ASSERT_TRUE(list.getDagPath(0, path));
    EXPECT_TRUE(other.add(path, component) && other.add(path, face, true));
    EXPECT_THAT(names(other), ElementsAre("box.vtx[0:2]", "box.vtx[4:5]", "box.f[2]"));
    MFnSingleIndexedComponent made;
    MObject some = made.create(MFn::kMeshVertComponent);
    EXPECT_TRUE(made.addElement(5) && made.addElement(7));
    EXPECT_TRUE(other.hasItemPartly(path, some) && !other.hasItem(path, some));
    EXPECT_TRUE(other.toggle(path, some));
    EXPECT_THAT(names(other), ElementsAre("box.vtx[0:2]", "box.vtx[4]", "box.vtx[7]", "box.f[2]"));
    EXPECT_TRUE(other.merge(path, some, MSelectionList::kRemoveFromList));
    EXPECT_TRUE(MGlobal::setActiveSelectionList(other));
    EXPECT_EQ(run("ls -sl"), "box.vtx[0:2] box.vtx[4] box.f[2]");
    EXPECT_TRUE(MGlobal::unselect(path, component));
    EXPECT_EQ(run("ls -sl"), "box.f[2]");
    EXPECT_TRUE(made.setCompleteData(8) && made.isComplete() && made.elementMax() == 7);
    EXPECT_EQ(made.create(MFn::kCurveCVComponent, nullptr), MObject::kNullObj);
    MDagPath fog;
    ASSERT_TRUE(MDagPath::getAPathTo(object("fog1"), fog));
    EXPECT_EQ(list.add(fog, component), MStatus::kInvalidParameter) << "no mesh";
}

// Fault: an item merged although all are asked for or the reverse; strategies taken for one another.
TEST_F(SelectionListTest, MergeStrategies) {
    EXPECT_TRUE(list.add(object("fog1")));
    EXPECT_TRUE(list.add(object("fog1"), true));
    EXPECT_EQ(list.length(), 1u);
    EXPECT_TRUE(list.add(object("fog1")));
    EXPECT_EQ(list.length(), 2u);
    const auto merged = [&](MSelectionList::MergeStrategy how) {
        MSelectionList a, b;
        for (const char* name : {"fog1", "haze.tx"}) a.add(name);
        for (const char* name : {"haze.tx", "fog2", "haze"}) b.add(name);
        EXPECT_TRUE(a.merge(b, how));
        return names(a);
    };
    const std::string tx = "haze.translateX";
    EXPECT_THAT(merged(MSelectionList::kMergeNormal), ElementsAre("fog1", tx, "fog2", "haze"));
    EXPECT_THAT(merged(MSelectionList::kXORWithList), ElementsAre("fog1", "fog2", "haze"));
    EXPECT_THAT(merged(MSelectionList::kRemoveFromList), ElementsAre("fog1"));
    EXPECT_TRUE(list.merge(list));
    EXPECT_TRUE(list.merge(list, MSelectionList::kRemoveFromList));
}

// Fault: an adjustment of the scene's selection that doubles items, loses their order or replaces them all.
TEST_F(SelectionListTest, AdjustsTheActiveSelection) {
    EXPECT_TRUE(MGlobal::selectByName("fog1"));
    EXPECT_TRUE(MGlobal::selectByName("haze"));
    EXPECT_TRUE(MGlobal::selectByName("fog1")) << "selected already";
    EXPECT_THAT(active(), UnorderedElementsAre("fog1", "haze"));
    EXPECT_TRUE(MGlobal::selectByName("fog*", MGlobal::kXORWithList));
    EXPECT_THAT(active(), ElementsAre("haze", "fog2"));
    EXPECT_TRUE(MGlobal::selectByName("fog1", MGlobal::kAddToHeadOfList));
    EXPECT_THAT(active(), ElementsAre("fog1", "haze", "fog2"));
    EXPECT_TRUE(MGlobal::unselectByName("haze"));
    EXPECT_THAT(active(), ElementsAre("fog1", "fog2"));
    EXPECT_EQ(run("ls -sl"), "fog1 fog2");
    MObject fog = object("fog1"), haze = object("haze");
    EXPECT_TRUE(MGlobal::isSelected(fog) && !MGlobal::isSelected(haze));
    EXPECT_EQ(MGlobal::selectByName("nothing", MGlobal::kReplaceList), MStatus::kInvalidParameter);
    EXPECT_EQ(active().size(), 2u);
    EXPECT_TRUE(list.add("box.f[2]"));
    EXPECT_TRUE(list.add("haze.ty"));
    EXPECT_TRUE(MGlobal::setActiveSelectionList(list));
    EXPECT_THAT(active(), ElementsAre("box.f[2]", "haze.translateY"));
    EXPECT_TRUE(MGlobal::select(haze, MGlobal::kReplaceList));
    run("delete haze");
    EXPECT_TRUE(active().empty()) << "a deleted node stays selected";
    EXPECT_TRUE(MGlobal::selectByName("fog1"));
    EXPECT_TRUE(MGlobal::clearSelectionList());
    EXPECT_TRUE(active().empty());
}

} // namespace
