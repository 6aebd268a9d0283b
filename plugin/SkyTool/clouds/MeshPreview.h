#pragma once

#include "Common/ShaderProgram.h"
#include "Common/TriMesh.h"

#include <functional>
#include <maya/M3dView.h>
#include <span>
#include <vector>

namespace orvo {

/// A triangle mesh as GL takes it, in packed floats.
struct MeshArrays {
    std::vector<float> positions; ///< three a vertex, world space, centimetres
    std::vector<float> normals;   ///< three a vertex, or none
    std::vector<float> uvs;       ///< two a vertex, or none
    std::vector<TriMesh::Triangle> triangles;
};

enum class MeshArrayKinds { WithNormals, WithUvs };

/// The arrays of a mesh in world space, with its vertex normals or its UV set 0 (where it has one).
MeshArrays meshArrays(const TriMesh& mesh, MeshArrayKinds kinds);

/// Draws meshes as the vertex attributes "in_worldPos", "in_normal" and "in_uvcoord" of a program, with the matrix of
/// the view's camera, depth test on, lighting and culling off. GL state is as before afterwards.
///
/// `setState` runs after that, `setUniforms` with the program bound. Nothing is drawn when the camera cannot be had,
/// which is reported.
void drawWorldMeshes(M3dView& view, ShaderProgram& program, std::span<const MeshArrays> meshes,
                     const std::function<void()>& setState,
                     const std::function<void(const Vector3& eyePoint)>& setUniforms);

} // namespace orvo
