#pragma once

#include "Common/MayaCamera.h"

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

/// Replaces the current GL matrix by the one from world space to the camera (which in GL looks along its negative z
/// axis), whatever object is being drawn. Scale above the camera does not count, as in the host's own drawing. Nothing
/// happens for a camera that is not valid.
void loadViewMatrix(const MayaCamera& camera);

} // namespace orvo
