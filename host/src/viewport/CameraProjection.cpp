#include "viewport/CameraProjection.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>

namespace host::viewport {
namespace {

constexpr double mmPerInch = 25.4;

bool allAboveZero(std::initializer_list<double> values) {
    return std::all_of(values.begin(), values.end(), [](double v) { return std::isfinite(v) && v > 0.0; });
}

/// glFrustum's matrix.
std::array<double, 16> perspectiveMatrix(const CameraProjection& p) {
    const double width = p.right - p.left, height = p.top - p.bottom, depth = p.farClip - p.nearClip;
    std::array<double, 16> m{};
    m[0] = 2.0 * p.nearClip / width;
    m[5] = 2.0 * p.nearClip / height;
    m[8] = (p.right + p.left) / width;
    m[9] = (p.top + p.bottom) / height;
    m[10] = -(p.farClip + p.nearClip) / depth;
    m[11] = -1.0;
    m[14] = -2.0 * p.farClip * p.nearClip / depth;
    return m;
}

/// glOrtho's matrix.
std::array<double, 16> orthographicMatrix(const CameraProjection& p) {
    const double width = p.right - p.left, height = p.top - p.bottom, depth = p.farClip - p.nearClip;
    std::array<double, 16> m{};
    m[0] = 2.0 / width;
    m[5] = 2.0 / height;
    m[10] = -2.0 / depth;
    m[12] = -(p.right + p.left) / width;
    m[13] = -(p.top + p.bottom) / height;
    m[14] = -(p.farClip + p.nearClip) / depth;
    m[15] = 1.0;
    return m;
}

} // namespace

std::optional<FilmWindow> visibleFilmWindow(const CameraOptics& optics, int portWidth, int portHeight) {
    if (portWidth < 1 || portHeight < 1 ||
        !allAboveZero({optics.focalLength, optics.horizontalFilmAperture, optics.verticalFilmAperture,
                       optics.lensSqueezeRatio, optics.cameraScale, optics.overscan}))
        return std::nullopt;
    const double filmWidth = optics.horizontalFilmAperture * optics.lensSqueezeRatio;
    const double filmHeight = optics.verticalFilmAperture;
    const double portAspect = static_cast<double>(portWidth) / portHeight;
    const bool filmIsNarrower = filmWidth / filmHeight < portAspect;

    bool keepWidth = false;
    switch (optics.filmFit) {
    case FilmFit::Fill: keepWidth = filmIsNarrower; break;
    case FilmFit::Horizontal: keepWidth = true; break;
    case FilmFit::Vertical: keepWidth = false; break;
    case FilmFit::Overscan: keepWidth = !filmIsNarrower; break;
    }

    FilmWindow window;
    window.width = keepWidth ? filmWidth : filmHeight * portAspect;
    window.height = keepWidth ? filmWidth / portAspect : filmHeight;
    window.centreX = optics.horizontalFilmOffset;
    window.centreY = optics.verticalFilmOffset;
    if (optics.filmFit == FilmFit::Horizontal)
        window.centreY += optics.filmFitOffset * (filmHeight - window.height) / 2;
    if (optics.filmFit == FilmFit::Vertical) window.centreX += optics.filmFitOffset * (filmWidth - window.width) / 2;
    window.width *= optics.cameraScale * optics.overscan;
    window.height *= optics.cameraScale * optics.overscan;
    window.centreX *= optics.cameraScale;
    window.centreY *= optics.cameraScale;
    return window;
}

std::optional<FieldOfView> portFieldOfView(const CameraOptics& optics, int portWidth, int portHeight) {
    const auto window = visibleFilmWindow(optics, portWidth, portHeight);
    if (!window) return std::nullopt;
    const auto angle = [&](double inches) { return 2.0 * std::atan(0.5 * inches * mmPerInch / optics.focalLength); };
    return FieldOfView{angle(window->width), angle(window->height)};
}

std::optional<CameraOptics> withHorizontalView(CameraOptics optics, double horizontal, int portWidth, int portHeight) {
    const auto window = visibleFilmWindow(optics, portWidth, portHeight);
    if (!window) return std::nullopt;
    optics.focalLength = 0.5 * window->width * mmPerInch / std::tan(horizontal / 2);
    return optics;
}

std::optional<CameraProjection> cameraProjection(const CameraOptics& optics, int portWidth, int portHeight) {
    const auto window = visibleFilmWindow(optics, portWidth, portHeight);
    if (!window || !std::isfinite(optics.nearClip) || !std::isfinite(optics.farClip) ||
        !(optics.farClip > optics.nearClip))
        return std::nullopt;
    CameraProjection view;
    view.nearClip = optics.nearClip;
    view.farClip = optics.farClip;
    view.orthographic = optics.orthographic;
    if (optics.orthographic) {
        if (!allAboveZero({optics.orthoWidth})) return std::nullopt;
        view.right = 0.5 * optics.orthoWidth * optics.cameraScale;
        view.top = view.right * portHeight / portWidth;
        view.left = -view.right;
        view.bottom = -view.top;
        view.matrix = orthographicMatrix(view);
        return view;
    }
    if (!(optics.nearClip > 0.0)) return std::nullopt;
    const double toNearPlane = mmPerInch / optics.focalLength * optics.nearClip;
    view.left = (window->centreX - 0.5 * window->width) * toNearPlane;
    view.right = (window->centreX + 0.5 * window->width) * toNearPlane;
    view.bottom = (window->centreY - 0.5 * window->height) * toNearPlane;
    view.top = (window->centreY + 0.5 * window->height) * toNearPlane;
    view.matrix = perspectiveMatrix(view);
    return view;
}

} // namespace host::viewport
