#include "CameraMoves.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace orvosky::window {
namespace {

/// Short of straight up and down, where a level camera would not know how to stand.
constexpr double steepest = 89.9 * std::numbers::pi / 180;
constexpr double nearest = 1, farthest = 1e9; ///< of the point of interest, centimetres

double held(double elevation) { return std::clamp(elevation, -steepest, steepest); }

} // namespace

MVector CameraPose::view() const {
    return MVector(std::sin(azimuth) * std::cos(elevation), std::sin(elevation),
                   -std::cos(azimuth) * std::cos(elevation));
}

MVector CameraPose::right() const { return MVector(std::cos(azimuth), 0, std::sin(azimuth)); }

MVector CameraPose::up() const { return right() ^ view(); }

CameraPose tumbled(CameraPose pose, double azimuth, double elevation) {
    const MPoint about = pose.interest();
    pose = turned(pose, azimuth, elevation);
    pose.eye = about - pose.view() * pose.distance;
    return pose;
}

CameraPose turned(CameraPose pose, double azimuth, double elevation) {
    pose.azimuth = std::remainder(pose.azimuth + azimuth, 2 * std::numbers::pi);
    pose.elevation = held(pose.elevation + elevation);
    return pose;
}

CameraPose tracked(CameraPose pose, double right, double up, double height) {
    pose.eye = pose.eye + pose.right() * (right * height) + pose.up() * (up * height);
    return pose;
}

CameraPose dollied(CameraPose pose, double factor) {
    const MPoint about = pose.interest();
    pose.distance = std::clamp(pose.distance * factor, nearest, farthest);
    pose.eye = about - pose.view() * pose.distance;
    return pose;
}

CameraPose framed(CameraPose pose, const MPoint& centre, double radius, double fov) {
    const double half = std::clamp(fov / 2, 0.01, 1.5);
    pose.distance = std::clamp(std::max(radius, 1.0) / std::sin(half), nearest, farthest);
    pose.eye = centre - pose.view() * pose.distance;
    return pose;
}

} // namespace orvosky::window
