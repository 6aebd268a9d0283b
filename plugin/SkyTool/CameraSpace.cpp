#include "CameraSpace.h"

#include "Common/Messages.h"

namespace orvo {

GlDrawing::GlDrawing(M3dView& view) : view_(view), begun_(succeeded(view.beginGL())) {}

GlDrawing::~GlDrawing() {
    guarded("M3dView::endGL", [&] {
        if (begun_) succeeded(view_.endGL());
    });
}

void loadViewMatrix(const MayaCamera& camera) {
    if (!camera.isValid()) return;
    Matrix44 glCamera = camera.frustum().cameraToWorld;
    for (double& component : glCamera.m[2]) component = -component;
    const Matrix44 matrix = MatrixInverse(glCamera, 0.0);
    glLoadMatrixd(&matrix.m[0][0]);
}

} // namespace orvo
