#pragma once

#include "scene/Node.h"
#include "viewport/CameraProjection.h"

#include <maya/MPoint.h>
#include <maya/MVector.h>

namespace host::viewport {

/// Where a camera stands in the world and how it is turned; the directions are orthogonal and of unit length.
struct CameraFrame {
    MPoint eye;
    MVector view{0, 0, -1}, up{0, 1, 0}, right{1, 0, 0};

    MMatrix cameraToWorld() const;
    MMatrix worldToCamera() const;
};

bool isCamera(const scene::Node& node);

/// The camera shape that a node stands for: the node itself, or the one shape of a transform. Null when it is none.
scene::DagNode* cameraShapeOf(scene::Node& node);

/// The optics that a camera node's attributes say.
CameraOptics cameraOptics(scene::Node& camera);

/// A camera's place and turn. Scale, shear and mirroring of the transforms above it do not enter: they change how a
/// camera's icon looks, not what it sees.
CameraFrame cameraFrame(scene::DagNode& camera);

/// A level view from a point: `azimuth` is 0 along -Z and grows clockwise as seen from above, so that +X is a quarter
/// turn; `elevation` is that above the horizon. Radians.
CameraFrame cameraFrame(const MPoint& eye, double azimuth, double elevation);

/// Makes a camera shape below a transform of that name, or the next free one, in the world.
scene::DagNode& createCamera(scene::Scene& scene, const std::string& name, const CameraFrame& frame,
                             const CameraOptics& optics);

/// Places a camera that createCamera made elsewhere, with other optics.
void setCamera(scene::Scene& scene, scene::DagNode& camera, const CameraFrame& frame, const CameraOptics& optics);

/// A number that a node's attribute has now, in internal units; 0 when there is no such attribute.
double attributeNumber(scene::Node& node, std::string_view name, int component = 0);

} // namespace host::viewport
