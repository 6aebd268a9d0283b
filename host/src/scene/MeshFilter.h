#pragma once

#include "scene/Node.h"

#include <memory>

namespace host::scene {

/// The attribute through which a mesh enters a node of a mesh's history and goes on with the same faces; null for nodes
/// of other kinds.
Cell* meshInput(Node& node);

/// What such nodes do to the mesh on its way: polyTweak and tweak move points, polyTweakUV texture coordinates,
/// polySoftEdge makes edges soft or hard; groupParts and polyColorPerVertex hand it on.
std::unique_ptr<NodeBehavior> makeMeshFilter(Node& node);

} // namespace host::scene
