#pragma once

#include "../Common/Matrix44.h"

#include <maya/M3dView.h>

namespace orvo {

/// Keeps the view's GL context from its beginning to its end, for locators that draw themselves.
class GlDrawing {
public:
    /// A failure to begin is reported.
    explicit GlDrawing(M3dView& view);
    ~GlDrawing();
    GlDrawing(const GlDrawing&) = delete;
    GlDrawing& operator=(const GlDrawing&) = delete;
    bool begun() const { return begun_; }

private:
    M3dView& view_;
    bool begun_;
};

/// The matrix from world space to that of GL's camera, which looks along its negative z axis, given the matrix of a
/// CameraFrustum.
Matrix44 worldToGlCamera(const Matrix44& cameraToWorld);

/// Replaces the current GL matrix by the one from world space to the view's camera, whatever object is being drawn.
/// Nothing happens when the camera cannot be had, which is reported.
void loadViewMatrix(M3dView& view);

} // namespace orvo
