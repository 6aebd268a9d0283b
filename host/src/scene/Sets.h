#pragma once

#include "scene/Scene.h"
#include "scene/Selection.h"

#include <vector>

namespace host::scene {

/// Whether it is a set whose members are rendered together: each surface is in one of those at most.
bool isRenderableSet(const Node& set);

/// What of the node a set of that kind holds: surfaces are rendered, whatever else is a member itself.
std::vector<Node*> membersFor(Node& set, Node& node);

/// The members: whole nodes, plugs, and components of meshes, those of one kind and shape as one item.
std::vector<Selected> membersOf(Node& set);
/// Whether all of the item is in the set: of a node what sets of that kind hold, of components each of them, alone or
/// with its whole shape.
bool isInSet(Node& set, const Selected& item);

/// Another renderable set that the node is in as a whole; null when there is none.
Node* otherEngineOf(Node& set, Node& member);

/// Puts the item into the set. Into a renderable one go surfaces and faces, which leave the others first: of a surface
/// that was in one as a whole, the other faces stay there. Throws SceneError.
void addToSet(Node& set, const Selected& item);
inline void addToSet(Node& set, Node& node) { addToSet(set, Selected{node.shared_from_this()}); }
/// Puts a copy of a node into the sets that the node is in: as a whole, or with the same components.
void joinSetsOf(Node& original, Node& copy);
/// Takes out what of the item is in the set.
void takeFromSet(Node& set, const Selected& item);

} // namespace host::scene
