#pragma once

#include <maya/MPoint.h>
#include <maya/MVector.h>

namespace orvosky::window {

/// A level camera that a hand moves: where it stands, where it looks, and how far away its point of interest is.
struct CameraPose {
    MPoint eye;
    double azimuth = 0;    ///< radians, clockwise from -Z as seen from above
    double elevation = 0;  ///< radians above the horizon
    double distance = 100; ///< to the point of interest, centimetres

    MVector view() const;
    MVector right() const;
    MVector up() const;
    MPoint interest() const { return eye + view() * distance; }
};

/// @name What the hand does. Angles in radians, lengths as parts of the view's height at the point of interest
/// @{
/// Goes around the point of interest.
CameraPose tumbled(CameraPose pose, double azimuth, double elevation);
/// Turns the head where it stands.
CameraPose turned(CameraPose pose, double azimuth, double elevation);
/// Moves sideways and up; `height` is what the view shows at the point of interest, in centimetres.
CameraPose tracked(CameraPose pose, double right, double up, double height);
/// Goes nearer (`factor` below 1) to the point of interest, or away from it.
CameraPose dollied(CameraPose pose, double factor);
/// Shows a sphere whole, from the same direction; `fov` is the smaller angle of view.
CameraPose framed(CameraPose pose, const MPoint& centre, double radius, double fov);
/// @}

} // namespace orvosky::window
