#include "ParticleCloudSphereLoc.h"

#include "Common/GlStateScope.h"
#include "Common/LocatorAttributes.h"
#include "Common/MayaUtils.h"
#include "SkyTool/CameraSpace.h"

#include <GL/glu.h>

#include <maya/MPoint.h>
#include <memory>

namespace orvo {
namespace {

void drawWireSphere() {
    const GlStateScope state;
    glEnable(GL_DEPTH_TEST);
    glDisable(GL_BLEND);
    glDisable(GL_LIGHTING);
    const std::unique_ptr<GLUquadric, decltype(&gluDeleteQuadric)> sphere(gluNewQuadric(), &gluDeleteQuadric);
    if (!sphere) return;
    gluQuadricDrawStyle(sphere.get(), GLU_LINE);
    gluQuadricNormals(sphere.get(), GLU_SMOOTH);
    gluSphere(sphere.get(), 1.0, 16, 16);
}

} // namespace

const MTypeId ParticleCloudSphereLoc::id(0x374023);

MObject ParticleCloudSphereLoc::opacity, ParticleCloudSphereLoc::density;

MStatus ParticleCloudSphereLoc::initialize() {
    return guarded("ParticleCloudSphereLoc::initialize", MStatus(MStatus::kFailure), [] {
        using A = LocatorAttributes;
        opacity = A::real("opacity", 1.0, {.min = 0.0, .max = 1.0});
        density = A::real("density", 1.0, {.min = 0.0, .max = 1.0});
        return MStatus(MStatus::kSuccess);
    });
}

void ParticleCloudSphereLoc::draw(M3dView& view, const MDagPath&, M3dView::DisplayStyle, M3dView::DisplayStatus) {
    guarded("ParticleCloudSphereLoc::draw", [&] {
        const GlDrawing drawing(view);
        if (drawing.begun()) drawWireSphere();
    });
}

MBoundingBox ParticleCloudSphereLoc::boundingBox() const { return {MPoint(-1, -1, -1), MPoint(1, 1, 1)}; }

} // namespace orvo
