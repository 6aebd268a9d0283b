#pragma once

#include <array>
#include <optional>

namespace host::viewport {

/// How the film gate is fitted into a window of another shape, with the camera attribute's values.
enum class FilmFit {
    Fill = 0,       ///< the window shows part of the film gate and nothing outside it
    Horizontal = 1, ///< the window is as wide as the film gate
    Vertical = 2,   ///< the window is as high as the film gate
    Overscan = 3,   ///< the window shows the whole film gate
};

/// The optics of a camera, under the names and with the defaults of its attributes.
struct CameraOptics {
    double focalLength = 35.0;                                   ///< millimetres, above 0
    double horizontalFilmAperture = 36 / 25.4;                   ///< inches, above 0
    double verticalFilmAperture = 24 / 25.4;                     ///< inches, above 0
    double horizontalFilmOffset = 0.0, verticalFilmOffset = 0.0; ///< inches, right and up
    double lensSqueezeRatio = 1.0;                               ///< widens the film gate; above 0
    FilmFit filmFit = FilmFit::Horizontal;
    double filmFitOffset = 0.0; ///< -1 to 1: moves the window from one edge of the film gate to the other, up for a
                                ///< horizontal fit, to the right for a vertical one; without effect for the others
    double cameraScale = 1.0;   ///< above 0
    double overscan = 1.0;      ///< above 0
    double nearClip = 0.1, farClip = 10000.0; ///< distances in scene units
    bool orthographic = false;
    double orthoWidth = 10.0; ///< scene units, above 0
};

/// The part of the film plane that a window shows.
struct FilmWindow {
    double centreX = 0.0, centreY = 0.0; ///< inches from the optical axis
    double width = 0.0, height = 0.0;    ///< inches
};

/// Angles of view in radians.
struct FieldOfView {
    double horizontal = 0.0, vertical = 0.0;
};

/// A view volume, and its projection to OpenGL's clip space.
struct CameraProjection {
    double left = 0.0, right = 0.0, bottom = 0.0, top = 0.0; ///< on the near plane, scene units
    double nearClip = 0.0, farClip = 0.0;
    bool orthographic = false;
    std::array<double, 16> matrix{}; ///< column by column, as glLoadMatrixd takes it
};

/// The part of the film plane that a window of `portWidth` x `portHeight` pixels shows, after film fit, film
/// offset, camera scale and overscan. Nothing when a length of the optics, a ratio or a port size is not above 0.
std::optional<FilmWindow> visibleFilmWindow(const CameraOptics& optics, int portWidth, int portHeight);

/// The angles that the visible film window takes at the focal length, 2 atan(size / (2 focal length)); film offsets
/// do not enter. An orthographic camera's optics are answered for as well. Nothing when visibleFilmWindow answers so.
std::optional<FieldOfView> portFieldOfView(const CameraOptics& optics, int portWidth, int portHeight);

/// The optics with the focal length at which portFieldOfView answers `horizontal` (radians, between 0 and pi). Nothing
/// when visibleFilmWindow answers so.
std::optional<CameraOptics> withHorizontalView(CameraOptics optics, double horizontal, int portWidth, int portHeight);

/// The view volume of a window. A perspective camera's is the visible film window carried to the near plane; an
/// orthographic camera's is orthoWidth x camera scale wide, in the port's proportion, without film fit and offsets.
/// Nothing when visibleFilmWindow answers so, when the far distance is not above the near one, or when a perspective
/// camera's near distance is not above 0.
std::optional<CameraProjection> cameraProjection(const CameraOptics& optics, int portWidth, int portHeight);

} // namespace host::viewport
