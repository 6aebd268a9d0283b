#pragma once

#include "Common/MayaCamera.h"
#include "Common/ShaderProgram.h"

#include <functional>
#include <maya/M3dView.h>
#include <maya/MObject.h>

namespace orvo {

/// How a sky or fog quad is composed with what is drawn already.
struct ViewQuadStyle {
    bool writeDepth;
    bool blend;
    GLenum sourceFactor, destinationFactor;
    double depthFactor; ///< how far out the quad stands, as a fraction of the far clipping distance
};

constexpr ViewQuadStyle skyQuadStyle{true, false, GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA, 0.9};
/// Stands in front of the skies; the colour is premultiplied.
constexpr ViewQuadStyle fogQuadStyle{false, true, GL_ONE, GL_ONE_MINUS_SRC_ALPHA, 0.75};

/// Shades one quad that fills the view, given in world space as the attribute "in_worldPos". The node's world matrix
/// is applied on top, so a node is meant to stay at the origin. GL state is as before afterwards.
///
/// `setTextures` (may be empty) runs once the GL state is set, `setUniforms` with the program bound. Nothing is drawn
/// when the world matrix or the camera cannot be had; both are reported.
void drawViewQuad(M3dView& view, const MObject& node, ShaderProgram& program, const ViewQuadStyle& style,
                  const std::function<void()>& setTextures,
                  const std::function<void(const Vector3& eyePoint)>& setUniforms);

/// A float uniform, and one of three.
void setUniform(ShaderProgram& program, const char* name, double value);
void setUniform(ShaderProgram& program, const char* name, const Vector3& value);

} // namespace orvo
