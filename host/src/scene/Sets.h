#pragma once

#include "scene/Scene.h"

#include <vector>

namespace host::scene {

/// Whether it is a set whose members are rendered together: each surface is in one of those at most.
bool isRenderableSet(const Node& set);

/// The elements of the set's lists that the node is connected to by a whole: not by one of its plugs.
std::vector<Cell*> placesIn(Node& set, Node& member);

/// What of the node a set of that kind holds: surfaces are rendered, whatever else is a member itself.
std::vector<Node*> membersFor(Node& set, Node& node);

/// What is connected to the set: an instObjGroups element or the message of a node that is a member, other plugs that
/// are.
std::vector<Cell*> memberSources(Node& set);
/// Whether the connection's source stands for its whole node.
bool standsForNode(const Cell& source);

/// The other renderable set that the node is in; null when there is none.
Node* otherEngineOf(Node& set, Node& member);

/// Puts the node, or of it what the set holds, into the set; for renderable sets it leaves the others first.
void addToSet(Node& set, Node& node);
void addToSet(Node& set, Cell& plug);
void takeFromSet(Node& set, Node& member);

} // namespace host::scene
