#include "CameraSpace.h"

#include "../Common/MayaCamera.h"
#include "../Common/Messages.h"

namespace orvo {

GlDrawing::GlDrawing(M3dView& view) : view_(view), begun_(succeeded(view.beginGL())) {}

GlDrawing::~GlDrawing() {
    guarded("M3dView::endGL", [&] {
        if (begun_) succeeded(view_.endGL());
    });
}

Matrix44 worldToGlCamera(const Matrix44& cameraToWorld) {
    Matrix44 towards = cameraToWorld;
    for (double& component : towards.m[2]) component = -component;
    return MatrixInverse(towards, 0.0);
}

void loadViewMatrix(M3dView& view) {
    const MayaCamera camera(view);
    if (!camera.isValid()) return;
    const Matrix44 matrix = worldToGlCamera(camera.frustum().cameraToWorld);
    glLoadMatrixd(&matrix.m[0][0]);
}

} // namespace orvo
