#pragma once

#include "OutputFile.h"
#include "TriMesh.h"

namespace orvo {

/// Writes the mesh as a TriMesh element, each line after the indent: positions in metres, UV set 0, and triangles.
/// @return false, with nothing written, for a mesh without vertices, triangles or UV set 0
bool writeTriMeshXml(const TriMesh& mesh, OutputFile& file, const char* indent);

} // namespace orvo
