#include "UtilityTest.h"

#include <maya/MFnMesh.h>

using namespace orvo;
using host::scene::Attribute;
using host::scene::NumericType;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::StartsWith;

namespace {

/// A node "n" with an attribute of each kind.
class AttributeAccess : public UtilityTest {
protected:
    AttributeAccess() {
        mel("createNode transform -n \"n\"");
        auto& made = *scene.findNode("n");
        scene.addAttribute(made, Attribute::number("real", "real", NumericType::Double));
        scene.addAttribute(made, Attribute::number("flag", "flag", NumericType::Bool));
        scene.addAttribute(made, Attribute::number("count", "count", NumericType::Int));
        scene.addAttribute(made, Attribute::tuple("vector", "vector", NumericType::Double, 3));
        scene.addAttribute(made, Attribute::tuple("colour", "colour", NumericType::Float, 3));
        scene.addAttribute(made, Attribute::text("words", "words"));
        n = node("n");
        log_.clear();
    }
    MObject n;
    MObject at(const char* name) { return attribute(n, name); }
};

} // namespace

// Catches readers and writers of the wrong width or order, and values that are cut on their way.
TEST_F(AttributeAccess, ValuesComeBack) {
    set("n.real", 0.1);
    set("n.flag", 1);
    set("n.count", -2000000000);
    EXPECT_EQ(readDouble(n, at("real")), 0.1);
    EXPECT_TRUE(readBool(n, at("flag")));
    EXPECT_EQ(readInt(n, at("count")), -2000000000);
    EXPECT_FALSE(writeDouble3(n, at("vector"), {0.1, -2, 1e300}).error());
    EXPECT_EQ(readDouble3(n, at("vector")), (Vector3{0.1, -2, 1e300}));
    EXPECT_FALSE(writeFloat3(n, at("colour"), {0.1, 0.5, -7}).error());
    EXPECT_EQ(readFloat3(n, at("colour")), (Vector3{0.1f, 0.5, -7}));
    for (const char* text : {"a \"quoted\"\n%s \xC3\xA9", ""}) {
        writeString(n, at("words"), text);
        EXPECT_EQ(readString(n, at("words")), text);
    }
    EXPECT_THAT(log_.all(), IsEmpty());
}

// Catches a failure that is silent, told in other than four lines, or answered with anything but the fallback. Each of
// these fails at the host's first call.
TEST_F(AttributeAccess, FailuresAreFourLinesAndTheFallback) {
    const MObject none, other = node("persp");
    const auto expectReport = [&](const char* what) {
        EXPECT_THAT(log_.errors(), ElementsAre(MatchesRegex("In Common\\\\MayaUtils, line [0-9]+"),
                                               MatchesRegex("Maya Reports: \\(k[A-Za-z]+\\): .+"),
                                               MatchesRegex("In Common\\\\MayaUtils, line [0-9]+"), ""))
            << what;
        const auto lines = log_.errors();
        if (lines.size() == 4) {
            EXPECT_EQ(lines[0], lines[2]) << what;
        }
        log_.clear();
    };
    const std::pair<MObject, MObject> cases[] = {{none, none}, {n, none}, {none, at("real")}, {other, at("real")}};
    for (const auto& [node, attribute] : cases) {
        EXPECT_EQ(readDouble(node, attribute), 0.0);
        expectReport("double");
        EXPECT_EQ(readDouble3(node, attribute), Vector3());
        expectReport("double3");
        EXPECT_EQ(readFloat3(node, attribute), Vector3());
        expectReport("float3");
        EXPECT_FALSE(readBool(node, attribute));
        expectReport("bool");
        EXPECT_EQ(readString(node, attribute), "");
        expectReport("string");
        EXPECT_EQ(readInt(node, attribute), 0);
        expectReport("int");
        writeString(node, attribute, "x");
        expectReport("write string");
        EXPECT_TRUE(writeDouble3(node, attribute, {1, 2, 3}).error());
        expectReport("write double3");
        EXPECT_TRUE(writeFloat3(node, attribute, {1, 2, 3}).error());
        expectReport("write float3");
    }
}

// Catches a value of another kind that is read or written as if it fitted: a number for a triple, a text for a number.
TEST_F(AttributeAccess, AttributesOfAnotherKindFail) {
    set("n.real", 5);
    writeString(n, at("words"), "7");
    EXPECT_EQ(readDouble3(n, at("real")), Vector3());
    EXPECT_EQ(readFloat3(n, at("words")), Vector3());
    EXPECT_EQ(readDouble(n, at("words")), 0.0);
    EXPECT_EQ(log_.errors().size(), 12u);
    log_.clear();
    writeString(n, at("real"), "8");
    EXPECT_THAT(log_.errors(), testing::SizeIs(4));
    EXPECT_TRUE(writeDouble3(n, at("words"), {1, 2, 3}).error());
    EXPECT_EQ(readDouble(n, at("real")), 5.0);
    EXPECT_EQ(readString(n, at("words")), "7");
}

// Catches a write that goes through a lock or a connection, or fails without a word.
TEST_F(AttributeAccess, LockedAttributesKeepTheirValue) {
    scene.setLocked(scene.findPlug("n.vector"), true);
    scene.setLocked(scene.findPlug("n.words"), true);
    EXPECT_TRUE(writeDouble3(n, at("vector"), {1, 2, 3}).error());
    EXPECT_EQ(log_.errors().size(), 4u);
    writeString(n, at("words"), "x");
    EXPECT_EQ(log_.errors().size(), 8u);
    EXPECT_EQ(readDouble3(n, at("vector")), Vector3());
    EXPECT_EQ(readString(n, at("words")), "");
}

// Catches a look-up that takes a node without a mesh for one, or leaves the path on the transform.
TEST_F(AttributeAccess, MeshByName) {
    mel("polyCube -n \"box\"; createNode transform -n \"empty\"; createNode camera -n \"eye\" -p \"empty\";");
    for (const char* name : {"box", "|box", "boxShape", "|box|boxShape"}) {
        MDagPath path;
        MStatus status;
        const auto mesh = meshByName(name, path, &status);
        EXPECT_FALSE(status.error()) << name;
        ASSERT_NE(mesh, nullptr) << name;
        EXPECT_EQ(mesh->numVertices(), 8) << name;
        EXPECT_EQ(path.fullPathName(), "|box|boxShape") << name;
    }
    const std::pair<const char*, MStatus::MStatusCode> failures[] = {{"eye", MStatus::kInvalidParameter},
                                                                     {"empty", MStatus::kInvalidParameter},
                                                                     {"time1", MStatus::kInvalidParameter}};
    for (const auto& [name, code] : failures) {
        MDagPath path;
        MStatus status;
        EXPECT_EQ(meshByName(name, path, &status), nullptr) << name;
        EXPECT_EQ(status.statusCode(), code) << name;
    }
    MDagPath path;
    MStatus status;
    EXPECT_EQ(meshByName("neverThere", path, &status), nullptr);
    EXPECT_TRUE(status.error());
    EXPECT_EQ(meshByName("n", path, &status), nullptr) << "a transform without a shape";
    EXPECT_TRUE(status.error());
    EXPECT_EQ(meshByName("", path), nullptr) << "the status is optional";
    EXPECT_THAT(log_.errors(), IsEmpty()) << "look-ups are silent";
}

// Catches a destination taken for the source, a shape of any kind taken for geometry, and a name that is not full.
TEST_F(AttributeAccess, ShapeConnectedTo) {
    mel("group -em -n \"outer\"; polyCube -n \"box\"; parent box outer; createNode camera -n \"eye\";"
        "createNode mesh -n \"fed\";");
    scene.addAttribute(*scene.findNode("n"), Attribute::message("feed", "feed"));
    EXPECT_EQ(shapeConnectedTo(plug("n", "feed")), "");
    const auto feedFrom = [&](const char* source) {
        scene.connect(scene.findPlug(source), scene.findPlug("n.feed"), true);
        return shapeConnectedTo(plug("n", "feed"));
    };
    EXPECT_EQ(feedFrom("boxShape.message"), "|outer|box|boxShape");
    EXPECT_EQ(feedFrom("box.message"), "") << "a transform";
    EXPECT_EQ(feedFrom("eye.message"), "") << "a camera";
    EXPECT_EQ(feedFrom("time1.message"), "");
    mel("connectAttr \"boxShape.outMesh\" \"fed.inMesh\";");
    EXPECT_EQ(shapeConnectedTo(plug("fed", "inMesh")), "|outer|box|boxShape");
    EXPECT_EQ(shapeConnectedTo(plug("boxShape", "outMesh")), "") << "it feeds, and is not fed";
    EXPECT_EQ(shapeConnectedTo(MPlug()), "");
    EXPECT_EQ(fullPathName(node("boxShape")), "|outer|box|boxShape");
    EXPECT_EQ(fullPathName(node("time1")), "");
    EXPECT_THAT(log_.errors(), IsEmpty());
}

// Catches a step's text under another step, local matrices, and a stale matrix that is left in the result.
TEST_F(AttributeAccess, MatricesAndWhatIsPrintedWithoutThem) {
    mel("createNode transform -n \"outer\"; createNode transform -n \"inner\" -p \"outer\";");
    set("outer.scaleX", 4);
    set("outer.rotateZ", M_PI / 2);
    set("inner.translateX", 3);
    Matrix44 matrix;
    ASSERT_FALSE(nodeWorldMatrix(node("inner"), matrix).error());
    const Vector3 p = MatrixTransformPoint(matrix, {0, 1, 0}); // (3, 1), scaled (12, 1), turned (-1, 12)
    EXPECT_NEAR(p.x, -1, 1e-12);
    EXPECT_NEAR(p.y, 12, 1e-12);
    ASSERT_FALSE(nodeInverseWorldMatrix(node("inner"), matrix).error());
    const Vector3 q = MatrixTransformPoint(matrix, {-1, 12, 0});
    EXPECT_NEAR(q.x, 0, 1e-12);
    EXPECT_NEAR(q.y, 1, 1e-12);
    EXPECT_EQ(printed(), "");
    for (const MObject& bad : {MObject(), node("time1")}) {
        matrix.m[3][0] = 7;
        EXPECT_TRUE(nodeWorldMatrix(bad, matrix).error());
        EXPECT_EQ(matrix, Matrix44());
        EXPECT_THAT(printed(), StartsWith("Error getting world matrix object\n"));
        matrix.m[0][0] = 7;
        EXPECT_TRUE(nodeInverseWorldMatrix(bad, matrix).error());
        EXPECT_EQ(matrix, Matrix44());
        EXPECT_THAT(printed(), StartsWith("Error getting inverse world matrix object\n"));
    }
    EXPECT_THAT(log_.all(), IsEmpty()) << "printed, not shown";
}

// Catches an array of another kind under the matrix's name whose data is taken for a matrix.
TEST_F(AttributeAccess, AMatrixThatIsNoneNamesTheStep) {
    mel("createNode script -n \"odd\";");
    for (const char* name : {"worldMatrix", "worldInverseMatrix"}) {
        auto texts = Attribute::tuple(name, name, NumericType::Double, 3);
        texts->array = true;
        scene.addAttribute(*scene.findNode("odd"), texts);
    }
    Matrix44 matrix;
    EXPECT_TRUE(nodeWorldMatrix(node("odd"), matrix).error());
    EXPECT_THAT(printed(), StartsWith("Error getting world matrix data\n"));
    EXPECT_TRUE(nodeInverseWorldMatrix(node("odd"), matrix).error());
    EXPECT_THAT(printed(), StartsWith("Error getting inverse world matrix data\n"));
    EXPECT_EQ(matrix, Matrix44());
}

// Catches a box in the user's units, a margin in any unit, and one that is added to one side alone.
TEST_F(AttributeAccess, BoundingBoxInAnyUnit) {
    mel("polyCube -w 200 -h 400 -d 600 -n \"box\";");
    set("box.translateX", 1000);
    for (const auto unit : {host::LinearUnit::Centimetre, host::LinearUnit::Metre, host::LinearUnit::Inch}) {
        host::setLinearUnit(unit);
        MBoundingBox box;
        ASSERT_FALSE(exactWorldBoundingBox("box", box).error());
        const MPoint low = box.min(), high = box.max();
        EXPECT_NEAR(low.x, 900 - 0.002, 1e-9);
        EXPECT_NEAR(low.y, -200 - 0.004, 1e-9);
        EXPECT_NEAR(low.z, -300 - 0.006, 1e-9);
        EXPECT_NEAR(high.x, 1100 + 0.002, 1e-9);
        EXPECT_NEAR(high.y, 200 + 0.004, 1e-9);
        EXPECT_NEAR(high.z, 300 + 0.006, 1e-9);
    }
    MBoundingBox untouched(MPoint(1, 2, 3), MPoint(4, 5, 6));
    EXPECT_TRUE(exactWorldBoundingBox("neverThere", untouched).error());
    EXPECT_EQ(untouched.max().z, 6);
}

// Catches a name that is kept, an object of another name that goes, and a second object of the name that goes too.
TEST_F(AttributeAccess, DeleteIfExists) {
    mel("createNode transform -n \"a\"; createNode transform -n \"ab\"; createNode transform -n \"under\" -p \"a\";");
    std::string name = "a|under";
    deleteIfExists(name);
    EXPECT_EQ(name, "");
    EXPECT_NE(scene.findNode("a"), nullptr);
    EXPECT_EQ(scene.findNode("under"), nullptr);
    name = "a";
    deleteIfExists(name);
    EXPECT_EQ(name, "");
    EXPECT_EQ(scene.findNode("a"), nullptr);
    EXPECT_NE(scene.findNode("ab"), nullptr);
    EXPECT_THAT(log_.errors(), IsEmpty());
    for (std::string odd : {"persp", "not a name", "x; delete ab"}) {
        deleteIfExists(odd);
        EXPECT_EQ(odd, "") << "emptied whatever comes of it";
    }
}

// Catches a flag of one node that decides for all, a switch that is read at one level alone, and a failed reading that
// hides the node or templates it.
TEST_F(AttributeAccess, VisibleAndTemplatedAlongTheDag) {
    mel("createNode transform -n \"a\"; createNode transform -n \"b\" -p \"a\"; createNode camera -n \"c\" -p \"b\";");
    const auto state = [&] {
        std::string text;
        for (const char* name : {"a", "b", "c"})
            text += std::string(isVisibleAlongDag(node(name)) ? "v" : "-") +
                    (isTemplatedAlongDag(node(name)) ? "t" : "-") + " ";
        return text;
    };
    const std::pair<const char*, const char*> cases[] = {{"a", "-- -- -- "}, {"b", "v- -- -- "}, {"c", "v- v- -- "}};
    const std::pair<const char*, const char*> templated[] = {
        {"a", "vt vt vt "}, {"b", "v- vt vt "}, {"c", "v- v- vt "}};
    EXPECT_EQ(state(), "v- v- v- ");
    for (const auto& [name, expected] : cases) {
        const std::string plugName = std::string(name) + ".visibility";
        set(plugName.c_str(), 0);
        EXPECT_EQ(state(), expected) << plugName;
        set(plugName.c_str(), 1);
    }
    for (const auto& [name, expected] : templated) {
        const std::string plugName = std::string(name) + ".template";
        set(plugName.c_str(), 1);
        EXPECT_EQ(state(), expected) << plugName;
        set(plugName.c_str(), 0);
    }
    for (const MObject& none : {MObject(), node("time1")}) {
        EXPECT_TRUE(isVisibleAlongDag(none));
        EXPECT_FALSE(isTemplatedAlongDag(none));
    }
    EXPECT_THAT(log_.all(), IsEmpty());
}
