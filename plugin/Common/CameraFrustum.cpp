#include "CameraFrustum.h"

#include <cmath>

namespace orvo {

Matrix44 CameraFrustum::matrixOf(const Vector3& viewDirection, const Vector3& up, const Vector3& eye) {
    const Vector3 forward = normalised(viewDirection);
    const Vector3 upward = normalised(up);
    const Vector3 rows[4] = {cross(forward, upward), upward, forward, eye};
    Matrix44 matrix;
    for (int r = 0; r < 4; ++r) {
        matrix.m[r][0] = rows[r].x;
        matrix.m[r][1] = rows[r].y;
        matrix.m[r][2] = rows[r].z;
    }
    return matrix;
}

Vector3 CameraFrustum::eyePoint() const {
    return {cameraToWorld.m[3][0], cameraToWorld.m[3][1], cameraToWorld.m[3][2]};
}

void CameraFrustum::computePlanes() {
    planes[Near] = {{0, 0, 1}, nearDistance};
    planes[Far] = {{0, 0, -1}, -farDistance};
    if (isPerspective) {
        const double x = std::tan(horizontalFov / 2), y = std::tan(verticalFov / 2);
        const Vector3 topLeft{-x, y, 1}, topRight{x, y, 1}, bottomLeft{-x, -y, 1}, bottomRight{x, -y, 1};
        planes[Left] = {normalised(cross(topLeft, bottomLeft)), 0};
        planes[Right] = {normalised(cross(bottomRight, topRight)), 0};
        planes[Top] = {normalised(cross(topRight, topLeft)), 0};
        planes[Bottom] = {normalised(cross(bottomLeft, bottomRight)), 0};
    } else {
        planes[Left] = {{1, 0, 0}, -(orthoWidth / 2)};
        planes[Right] = {{-1, 0, 0}, -(orthoWidth / 2)};
        planes[Top] = {{0, -1, 0}, -(orthoHeight / 2)};
        planes[Bottom] = {{0, 1, 0}, -(orthoHeight / 2)};
    }
    for (Plane& plane : planes) {
        plane.normal = transformDirection(cameraToWorld, plane.normal);
        plane.distance += dot(plane.normal, eyePoint());
    }
}

CameraFrustum::Corners CameraFrustum::cornersAt(double distance, double factor) const {
    const double depth = distance * factor;
    const double x = isPerspective ? std::tan(horizontalFov / 2) * depth : orthoWidth / 2;
    const double y = isPerspective ? std::tan(verticalFov / 2) * depth : orthoHeight / 2;
    return {MatrixTransformPoint(cameraToWorld, {-x, y, depth}), MatrixTransformPoint(cameraToWorld, {x, y, depth}),
            MatrixTransformPoint(cameraToWorld, {x, -y, depth}), MatrixTransformPoint(cameraToWorld, {-x, -y, depth})};
}

CameraFrustum::Ray CameraFrustum::rayThrough(double u, double v) const {
    if (!isPerspective) {
        const Vector3 start{(u - 0.5) * orthoWidth, (v - 0.5) * orthoHeight, 0};
        return {MatrixTransformPoint(cameraToWorld, start), transformDirection(cameraToWorld, {0, 0, 1})};
    }
    const Vector3 direction{(u - 0.5) * 2 * std::tan(horizontalFov / 2), (v - 0.5) * 2 * std::tan(verticalFov / 2), 1};
    return {eyePoint(), transformDirection(cameraToWorld, direction)};
}

} // namespace orvo
