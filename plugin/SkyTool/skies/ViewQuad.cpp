#include "ViewQuad.h"

#include "Common/GlStateScope.h"
#include "Common/MayaUtils.h"

#include <deque>
#include <maya/MGlobal.h>

namespace orvo {
namespace {

/// Undoes what drawing a quad sets beside the pushed state: the vertex arrays and the bound program.
class QuadArrays {
public:
    ~QuadArrays() {
        ShaderProgram::unbind();
        disableClientArrays();
        for (; !enabled_.empty(); enabled_.pop_front()) gl().disableVertexAttribArray(enabled_.front());
    }
    void point(std::int32_t location, const CameraFrustum::Corners& corners) {
        if (location == -1) return;
        enabled_.push_back(location);
        gl().enableVertexAttribArray(location);
        gl().vertexAttribPointer(location, 3, GL_DOUBLE, GL_FALSE, 0, corners.data());
    }

private:
    std::deque<std::int32_t> enabled_;
};

static_assert(sizeof(Vector3) == 3 * sizeof(double), "corners are handed to GL as packed doubles");

void setState(const ViewQuadStyle& style) {
    const auto set = [](GLenum capability, bool on) { on ? glEnable(capability) : glDisable(capability); };
    glDepthMask(style.writeDepth ? GL_TRUE : GL_FALSE);
    glEnable(GL_DEPTH_TEST);
    // Between a near plane of millimetres and a far one of kilometres single precision cannot tell the quad from the
    // far plane: some of its corners would be cut off.
    enableDepthClamp();
    set(GL_BLEND, style.blend);
    glDisable(GL_LIGHTING);
    glDisable(GL_CULL_FACE);
    glBlendFunc(style.sourceFactor, style.destinationFactor);
    glDisable(GL_POLYGON_SMOOTH);
    glDisable(GL_TEXTURE_2D);
}

} // namespace

void drawViewQuad(M3dView& view, const MObject& node, ShaderProgram& program, const ViewQuadStyle& style,
                  const std::function<void()>& setTextures,
                  const std::function<void(const Vector3& eyePoint)>& setUniforms) {
    Matrix44 world;
    const MStatus status = nodeWorldMatrix(node, world);
    if (status.error()) {
        MGlobal::displayError(status.errorString() + "\n");
        return;
    }
    const GlStateScope state;
    glMultMatrixd(&world.m[0][0]);
    setState(style);
    if (setTextures) setTextures();
    disableClientArrays();

    const MayaCamera camera(view);
    CameraFrustum::Corners corners;
    Vector3 eye;
    if (camera.farCorners(style.depthFactor, corners).error() || camera.eyePoint(eye).error()) return;
    QuadArrays arrays;
    arrays.point(program.attributeLocation("in_worldPos"), corners);
    program.bind();
    setUniforms(eye);
    glDrawArrays(GL_QUADS, 0, 4);
}

void setUniform(ShaderProgram& program, const char* name, double value) {
    program.setUniformF(name, static_cast<float>(value));
}

void setUniform(ShaderProgram& program, const char* name, const Vector3& value) {
    program.setUniformF(name, static_cast<float>(value.x), static_cast<float>(value.y), static_cast<float>(value.z));
}

} // namespace orvo
