#include "Common/MayaUtils.h"

#include "MessageLog.h"
#include "commands/Host.h"
#include "scene/Scene.h"

#include <gmock/gmock.h>

using namespace orvo;
using testing::ElementsAre;
using testing::StartsWith;

namespace {

class MayaUtils : public testing::Test {
protected:
    MayaUtils() { host::scene::Scene::current().reset(); }
    static void mel(const char* script) { host::Host::instance().interpreter().execute(script); }
    static MObject node(const char* name) {
        MObject found;
        EXPECT_FALSE(dependencyNodeByName(name, found).error()) << name;
        return found;
    }
    MessageLog log_;
};

} // namespace

TEST_F(MayaUtils, AFailedReadIsReportedInFourLinesAndGivesTheFallback) {
    const MObject none;
    EXPECT_EQ(readDouble(none, none), 0.0);
    EXPECT_THAT(log_.errors(), ElementsAre(StartsWith("In Common\\MayaUtils, line "), StartsWith("Maya Reports: "),
                                           StartsWith("In Common\\MayaUtils, line "), ""));
    EXPECT_EQ(readDouble3(none, none), Vector3());
    EXPECT_EQ(readFloat3(none, none), Vector3());
    EXPECT_FALSE(readBool(none, none));
    EXPECT_EQ(readInt(none, none), 0);
    EXPECT_EQ(readString(none, none), "");
    EXPECT_TRUE(writeFloat3(none, none, {1, 2, 3}).error());
}

// Catches a row and column mix-up, and local matrices taken for world ones.
TEST_F(MayaUtils, WorldMatrixIncludesTheParents) {
    mel("createNode transform -n \"outer\"; setAttr \"outer.translateX\" 5;"
        "createNode transform -n \"inner\" -p \"outer\"; setAttr \"inner.scaleY\" 2; setAttr \"inner.translateZ\" 3;");
    Matrix44 matrix;
    ASSERT_FALSE(nodeWorldMatrix(node("inner"), matrix).error());
    EXPECT_EQ(MatrixTransformPoint(matrix, {1, 1, 1}), (Vector3{6, 2, 4}));
    ASSERT_FALSE(nodeInverseWorldMatrix(node("inner"), matrix).error());
    EXPECT_EQ(MatrixTransformPoint(matrix, {6, 2, 4}), (Vector3{1, 1, 1}));
}

TEST_F(MayaUtils, AMatrixThatCannotBeHadIsTheIdentity) {
    Matrix44 matrix;
    matrix.m[3][0] = 7;
    testing::internal::CaptureStderr();
    EXPECT_TRUE(nodeWorldMatrix(MObject(), matrix).error());
    EXPECT_THAT(testing::internal::GetCapturedStderr(), StartsWith("Error getting world matrix object\n"));
    EXPECT_EQ(matrix, Matrix44());
}

TEST_F(MayaUtils, VisibilityAndTemplateComeDownTheDag) {
    mel("createNode transform -n \"a\"; createNode transform -n \"b\" -p \"a\"; createNode transform -n \"c\" -p "
        "\"b\";");
    EXPECT_TRUE(isVisibleAlongDag(node("c")));
    EXPECT_FALSE(isTemplatedAlongDag(node("c")));
    mel("setAttr \"a.visibility\" 0; setAttr \"b.template\" 1;");
    EXPECT_FALSE(isVisibleAlongDag(node("c")));
    EXPECT_TRUE(isTemplatedAlongDag(node("c")));
    EXPECT_FALSE(isTemplatedAlongDag(node("a")));
}

TEST_F(MayaUtils, DeletingByNameEmptiesTheName) {
    mel("createNode transform -n \"gone\";");
    std::string name = "gone";
    deleteIfExists(name);
    EXPECT_EQ(name, "");
    MObject found;
    EXPECT_TRUE(dependencyNodeByName("gone", found).error());
    for (std::string other : {"", "neverThere"}) {
        deleteIfExists(other);
        EXPECT_EQ(other, "");
    }
    EXPECT_THAT(log_.all(), ElementsAre());
}

// Catches a margin in centimetres: it is relative, so a point stays a point.
TEST_F(MayaUtils, BoundingBoxGrowsByAHundredThousandth) {
    mel("polyCube -w 2 -h 4 -d 6 -n \"cube\"; setAttr \"cube.translateX\" 10;");
    MBoundingBox box;
    ASSERT_FALSE(exactWorldBoundingBox("cube", box).error());
    EXPECT_NEAR(box.min().x, 9 - 0.00002, 1e-9);
    EXPECT_NEAR(box.max().x, 11 + 0.00002, 1e-9);
    EXPECT_NEAR(box.max().z, 3 + 0.00006, 1e-9);
    mel("setAttr \"cube.scale\" 0 0 0;");
    ASSERT_FALSE(exactWorldBoundingBox("cube", box).error());
    EXPECT_EQ(box.min().x, box.max().x);
    EXPECT_TRUE(exactWorldBoundingBox("neverThere", box).error());
}
