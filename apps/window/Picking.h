#pragma once

#include <maya/MPoint.h>
#include <maya/MVector.h>

namespace host::scene {
class DagNode;
}

namespace orvosky::window {

/// The shape that a ray from the eye meets: the nearest mesh, or, before it, the smallest of the boxes around what
/// other nodes show. Boxes around the eye do not count. Null when there is none.
host::scene::DagNode* shapeAt(const MPoint& eye, const MVector& direction);

} // namespace orvosky::window
