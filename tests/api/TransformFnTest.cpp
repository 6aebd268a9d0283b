#include "api/graph/Handle.h"
#include "scene/Scene.h"

#include <maya/MDagPath.h>
#include <maya/MFnTransform.h>
#include <maya/MMatrix.h>
#include <maya/MPlug.h>
#include <maya/MString.h>

#include <gtest/gtest.h>

#include <numbers>

namespace {

using namespace host;
constexpr double quarter = std::numbers::pi / 2;

void expectVector(const MVector& v, double x, double y, double z) {
    EXPECT_NEAR(v.x, x, 1e-9);
    EXPECT_NEAR(v.y, y, 1e-9);
    EXPECT_NEAR(v.z, z, 1e-9);
}

/// A child below a parent at (10, 0, 0) that is turned by 90 degrees about z and twice as wide along its x.
struct TransformFn : testing::Test {
    TransformFn() {
        scene::Scene::current().reset();
        const double wide[3]{2, 1, 1};
        parent.create();
        child.create(parent.object());
        EXPECT_TRUE(parent.setScale(wide));
        EXPECT_TRUE(parent.setRotation(MEulerRotation(0, 0, quarter)));
        EXPECT_TRUE(parent.setTranslation(MVector(10, 0, 0), MSpace::kTransform));
    }
    double plug(const char* name) { return child.findPlug(name, true).asDouble(); }
    MFnTransform parent, child;
};

// Fault: components written to the wrong attribute or in other units; the two enumerations of orders taken for one.
TEST_F(TransformFn, ComponentsAreTheNodesAttributes) {
    const double scale[3]{2, 3, 4}, shear[3]{0.1, 0.2, 0.3}, angles[3]{0.4, 0.5, 0.6};
    EXPECT_TRUE(child.setScale(scale));
    EXPECT_TRUE(child.scaleBy(scale));
    EXPECT_TRUE(child.setShear(shear));
    EXPECT_TRUE(child.setRotation(angles, MTransformationMatrix::kZXY));
    EXPECT_TRUE(child.setTranslation(MVector(1, 2, 3), MSpace::kTransform));
    EXPECT_TRUE(child.translateBy(MVector(1, 1, 1), MSpace::kTransform));
    EXPECT_EQ(plug("scaleY"), 9);
    EXPECT_EQ(plug("shearYZ"), 0.3);
    EXPECT_EQ(plug("rotateZ"), 0.6);
    EXPECT_EQ(child.findPlug("rotateOrder", true).asInt(), 2);
    EXPECT_EQ(plug("translateZ"), 4);
    EXPECT_EQ(child.rotationOrder(), MTransformationMatrix::kZXY);
    EXPECT_TRUE(child.transformation().asMatrix().isEquivalent(child.transformationMatrix(), 1e-12));

    // The same rotation by other angles, and the same angles as another rotation.
    const MMatrix before = child.transformationMatrix();
    EXPECT_TRUE(child.setRotationOrder(MTransformationMatrix::kYXZ, true));
    EXPECT_TRUE(child.transformationMatrix().isEquivalent(before, 1e-9));
    EXPECT_EQ(child.findPlug("rotateOrder", true).asInt(), 4);
    const double x = plug("rotateX");
    EXPECT_TRUE(child.setRotationOrder(MTransformationMatrix::kXYZ, false));
    EXPECT_EQ(plug("rotateX"), x);
    EXPECT_FALSE(child.transformationMatrix().isEquivalent(before, 1e-3));
}

// Fault: the parents left out, taken twice or in the wrong order.
TEST_F(TransformFn, WorldSpaceGoesThroughTheParents) {
    EXPECT_TRUE(child.setTranslation(MVector(1, 1, 0), MSpace::kTransform));
    expectVector(child.getTranslation(MSpace::kWorld), 9, 2, 0);
    EXPECT_TRUE(child.setTranslation(MVector(10, 6, 0), MSpace::kWorld));
    expectVector(child.getTranslation(MSpace::kTransform), 3, 0, 0);
    EXPECT_TRUE(child.translateBy(MVector(-1, 2, 0), MSpace::kWorld));
    expectVector(child.getTranslation(MSpace::kTransform), 4, 1, 0);

    const double even[3]{1, 1, 1};
    EXPECT_TRUE(parent.setScale(even));
    const MQuaternion aboutX(quarter, MVector::xAxis);
    EXPECT_TRUE(child.setRotation(aboutX, MSpace::kWorld));
    // Locally the z axis turns to -y, which the parent takes to x; in the world it turns to -y.
    expectVector(MVector::zAxis * MDagPath::getAPathTo(child.object()).inclusiveMatrix(), 0, -1, 0);
    MQuaternion q;
    EXPECT_TRUE(child.getRotation(q, MSpace::kWorld));
    expectVector(MVector::zAxis * q.asMatrix(), 0, -1, 0);
    EXPECT_TRUE(child.rotateBy(aboutX, MSpace::kWorld));
    expectVector(MVector::zAxis * MDagPath::getAPathTo(child.object()).inclusiveMatrix(), 0, 0, -1);
    EXPECT_TRUE(child.setRotation(MEulerRotation(0, 0, 0)));
    double angles[3];
    MTransformationMatrix::RotationOrder order;
    EXPECT_TRUE(child.getRotation(angles, order, MSpace::kWorld));
    expectVector(MVector(angles), 0, 0, quarter);
    const double none[3]{0, 0, 0};
    EXPECT_TRUE(child.setRotation(none, MTransformationMatrix::kXYZ, MSpace::kWorld));
    EXPECT_NEAR(plug("rotateZ"), -quarter, 1e-12);
}

// Fault: a rotation put on the wrong side of the one that is there.
TEST_F(TransformFn, RotationsAddUpBySpace) {
    EXPECT_TRUE(child.setRotation(MEulerRotation(quarter, 0, 0)));
    EXPECT_TRUE(child.rotateBy(MEulerRotation(0, 0, quarter), MSpace::kTransform));
    expectVector(MVector::xAxis * child.transformationMatrix(), 0, 1, 0);
    EXPECT_TRUE(child.setRotation(MEulerRotation(quarter, 0, 0)));
    EXPECT_TRUE(child.rotateBy(MEulerRotation(0, 0, quarter), MSpace::kObject)); // x -> y first, then y -> z
    expectVector(MVector::xAxis * child.transformationMatrix(), 0, 0, 1);
    const MMatrix before = child.transformationMatrix();
    EXPECT_TRUE(child.setRotateOrientation(MQuaternion(0.3, MVector::yAxis), MSpace::kTransform, true));
    EXPECT_NEAR(plug("rotateAxisY"), 0.3, 1e-12);
    EXPECT_TRUE(child.transformationMatrix().isEquivalent(before, 1e-9));
}

// Fault: pivots that move the object although balanced, or are not found where the object is in the scene.
TEST_F(TransformFn, PivotsAreFoundInTheWorld) {
    EXPECT_TRUE(child.setRotation(MEulerRotation(0, 0, quarter)));
    const MMatrix before = child.transformationMatrix();
    EXPECT_TRUE(child.setRotatePivot(MPoint(1, 0, 0), MSpace::kTransform, true));
    EXPECT_TRUE(child.transformationMatrix().isEquivalent(before, 1e-12));
    EXPECT_EQ(plug("rotatePivotX"), 1);
    expectVector(child.rotatePivot(MSpace::kPostTransform), 0, 1, 0);
    expectVector(child.rotatePivot(MSpace::kWorld), 9, 0, 0);
    EXPECT_TRUE(child.setScalePivot(MPoint(9, 0, 0), MSpace::kWorld, false));
    expectVector(child.scalePivot(MSpace::kTransform), 1, 0, 0);
    EXPECT_TRUE(child.setScalePivotTranslation(MVector(0, 4, 0), MSpace::kWorld));
    expectVector(child.scalePivotTranslation(MSpace::kTransform), 2, 0, 0);
}

// Fault: a whole transformation that loses components.
TEST_F(TransformFn, SetTakesAllComponents) {
    const double scale[3]{2, 3, 4};
    MTransformationMatrix tm;
    tm.setScale(scale, MSpace::kTransform);
    tm.rotateTo(MEulerRotation(0.1, 0.2, 0.3, MEulerRotation::kZYX));
    tm.setRotationOrientation(MQuaternion(0.4, MVector::xAxis));
    tm.setScalePivot(MPoint(1, 2, 3), MSpace::kTransform, true);
    tm.setRotatePivot(MPoint(4, 5, 6), MSpace::kTransform, true);
    tm.setTranslation(MVector(7, 8, 9), MSpace::kTransform);
    EXPECT_TRUE(child.set(tm));
    EXPECT_TRUE(child.transformationMatrix().isEquivalent(tm.asMatrix(), 1e-12));
    EXPECT_TRUE(child.set(MTransformationMatrix()));
    EXPECT_TRUE(child.transformationMatrix().isEquivalent(MMatrix::identity, 1e-12));
}

// Fault: half of a change is made before a locked attribute stops it; wrong arguments are taken.
TEST_F(TransformFn, RefusedChangesChangeNothing) {
    const double angles[3]{1, 1, 1};
    EXPECT_TRUE(child.findPlug("translateZ", true).setLocked(true));
    EXPECT_EQ(child.setTranslation(MVector(1, 2, 3), MSpace::kTransform), MStatus::kFailure);
    EXPECT_EQ(plug("translateX"), 0);
    EXPECT_TRUE(child.setTranslation(MVector(1, 2, 0), MSpace::kTransform)) << "the locked one stays as it is";
    EXPECT_EQ(child.setTranslation(MVector(5, 5, 0), MSpace::kInvalid), MStatus::kInvalidParameter);
    EXPECT_EQ(child.translateBy(MVector(5, 5, 0), MSpace::kLast), MStatus::kInvalidParameter);
    EXPECT_EQ(child.setRotation(angles, MTransformationMatrix::kInvalid), MStatus::kInvalidParameter);
    EXPECT_EQ(child.setRotation(angles, MTransformationMatrix::kLast, MSpace::kWorld), MStatus::kInvalidParameter);
    EXPECT_EQ(child.rotateBy(angles, MTransformationMatrix::kLast), MStatus::kInvalidParameter);
    EXPECT_EQ(child.setRotationOrder(MTransformationMatrix::kInvalid, true), MStatus::kInvalidParameter);
    EXPECT_EQ(child.rotateBy(MQuaternion(), MSpace::kInvalid), MStatus::kInvalidParameter);
    EXPECT_EQ(plug("rotateX"), 0);
    EXPECT_EQ(plug("translateX"), 1);

    const auto locator = scene::Scene::current().createNode(*scene::Scene::current().findType("locator"));
    const MObject shape = api::Access::object(locator.get());
    MStatus status;
    EXPECT_TRUE(MFnTransform().create(shape, &status).isNull());
    EXPECT_EQ(status, MStatus::kInvalidParameter);
    MFnTransform onShape(shape, &status);
    EXPECT_EQ(status, MStatus::kInvalidParameter);
    EXPECT_EQ(onShape.setScale(angles), MStatus::kFailure);
    scene::Scene::current().deleteNodes({api::Access::node(child.object()).get()});
    EXPECT_EQ(child.setScale(angles), MStatus::kFailure);
    child.getTranslation(MSpace::kTransform, &status);
    EXPECT_EQ(status, MStatus::kFailure);
}

} // namespace
