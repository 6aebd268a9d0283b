#pragma once

#include "Matrix44.h"

namespace orvo {

/// Keeps the viewport's GL state: pushes all attribute groups and the current matrix, and pops both at the end of the
/// scope, on every way out of it.
class GlStateScope {
public:
    GlStateScope();
    ~GlStateScope();
    GlStateScope(const GlStateScope&) = delete;
    GlStateScope& operator=(const GlStateScope&) = delete;
};

/// Keeps the vertex arrays and the bound buffers in the same way.
class GlArrayScope {
public:
    GlArrayScope();
    ~GlArrayScope();
    GlArrayScope(const GlArrayScope&) = delete;
    GlArrayScope& operator=(const GlArrayScope&) = delete;
};

/// Pushes the current matrix multiplied by another one, for the length of the scope.
class GlMatrixScope {
public:
    explicit GlMatrixScope(const Matrix44& matrix);
    ~GlMatrixScope();
    GlMatrixScope(const GlMatrixScope&) = delete;
    GlMatrixScope& operator=(const GlMatrixScope&) = delete;
};

/// Draws what lies beyond the clipping planes at their depth, where the driver can; nothing otherwise.
void enableDepthClamp();

/// Turns the fixed-function client arrays off: texture coordinates, vertices, normals, indices, colours, edge flags.
void disableClientArrays();

} // namespace orvo
