#include "MeshPreview.h"

#include "Common/GlStateScope.h"
#include "SkyTool/CameraSpace.h"

namespace orvo {
namespace {

std::vector<float> packed(const std::vector<Vector3>& values) {
    std::vector<float> floats;
    floats.reserve(3 * values.size());
    for (const Vector3& v : values)
        floats.insert(floats.end(), {static_cast<float>(v.x), static_cast<float>(v.y), static_cast<float>(v.z)});
    return floats;
}

/// Vertex attributes that are switched off again, with the program, on every way out.
class MeshAttributes {
public:
    explicit MeshAttributes(const ShaderProgram& program) : program_(program) { program_.bind(); }
    ~MeshAttributes() {
        ShaderProgram::unbind();
        disable();
        disableClientArrays();
    }
    MeshAttributes(const MeshAttributes&) = delete;
    MeshAttributes& operator=(const MeshAttributes&) = delete;

    void set(const char* name, int size, const std::vector<float>& values) {
        const std::int32_t location = values.empty() ? -1 : program_.attributeLocation(name);
        if (location == -1) return;
        enabled_.push_back(static_cast<GLuint>(location));
        gl().enableVertexAttribArray(enabled_.back());
        gl().vertexAttribPointer(enabled_.back(), size, GL_FLOAT, GL_FALSE, 0, values.data());
    }
    void disable() {
        for (const GLuint location : enabled_) gl().disableVertexAttribArray(location);
        enabled_.clear();
    }

private:
    const ShaderProgram& program_;
    std::vector<GLuint> enabled_;
};

} // namespace

MeshArrays meshArrays(const TriMesh& mesh, MeshArrayKinds kinds) {
    MeshArrays arrays{packed(mesh.positions), {}, {}, mesh.triangles};
    if (kinds == MeshArrayKinds::WithNormals) {
        arrays.normals = packed(mesh.vertexNormals());
    } else if (mesh.uvSets[0]) {
        arrays.uvs.reserve(2 * mesh.uvSets[0]->size());
        for (const Uv& uv : *mesh.uvSets[0])
            arrays.uvs.insert(arrays.uvs.end(), {static_cast<float>(uv.u), static_cast<float>(uv.v)});
    }
    return arrays;
}

void drawWorldMeshes(M3dView& view, ShaderProgram& program, std::span<const MeshArrays> meshes,
                     const std::function<void()>& setState,
                     const std::function<void(const Vector3& eyePoint)>& setUniforms) {
    const MayaCamera camera(view);
    Vector3 eye;
    if (camera.eyePoint(eye).error()) return;

    const GlStateScope state;
    loadViewMatrix(camera);
    glEnable(GL_DEPTH_TEST);
    glDisable(GL_LIGHTING);
    glDisable(GL_CULL_FACE);
    setState();
    disableClientArrays();

    MeshAttributes attributes(program);
    setUniforms(eye);
    for (const MeshArrays& mesh : meshes) {
        if (mesh.triangles.empty()) continue;
        attributes.set("in_worldPos", 3, mesh.positions);
        attributes.set("in_normal", 3, mesh.normals);
        attributes.set("in_uvcoord", 2, mesh.uvs);
        glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(3 * mesh.triangles.size()), GL_UNSIGNED_INT,
                       mesh.triangles.data());
        attributes.disable();
    }
}

} // namespace orvo
