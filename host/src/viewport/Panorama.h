#pragma once

#include "viewport/CameraNode.h"
#include "viewport/FloatPicture.h"

#include <array>
#include <optional>

/// Pictures of all directions, put together from six square views along the axes of the world.
namespace host::viewport {

/// A side of the cube around the eye.
struct CubeFace {
    const char* name; ///< "px" for +X, "nz" for -Z
    MVector view;     ///< from the eye to its middle
    MVector up;       ///< towards the top row
};

/// How the faces of cube maps lie in their files, in the order +X, -X, +Y, -Y, +Z, -Z.
enum class CubeLayout {
    Texture, ///< of GL and DDS: their columns run the other way than those of a view from inside, and +Y has -Z on top
    OpenExr  ///< of OpenEXR's cube maps: views from inside, +Y has +Z on top
};
const std::array<CubeFace, 6>& cubeFaces(CubeLayout layout);

/// A square view of a face from a camera's place, between its clipping distances. The face's middle is at the middle,
/// and its edges are `reach` times as far from there as the cube's: 1 for exactly a quarter of a turn.
struct FaceView {
    CameraFrame frame;
    CameraOptics optics;
};
FaceView faceView(const CubeFace& face, const MPoint& eye, const CameraOptics& camera, double reach);

/// A picture of all directions by azimuth, which grows to the right, and elevation, which falls towards the bottom.
class LatLongPicture {
public:
    /// The azimuth, in radians as cameraFrame has it, is that of the middle column. Of each side of a face there are
    /// `margin` pixels more than belong to it, at least 1, so that every pixel's neighbours are on its face.
    LatLongPicture(int width, int height, int channels, double azimuth, int margin);

    /// Fills in what the face's view shows, drawn with reach(): one of cubeFaces(OpenExr), by its number.
    void add(std::size_t face, const FloatPicture& view);
    /// The pixels of a face's view, for a picture as sharp in its middle row as the views are in their middles.
    static int faceSize(int width, int margin);
    static double reach(int faceSize, int margin);

    FloatPicture take() { return std::move(picture_); }

private:
    FloatPicture picture_;
    int margin_;
    std::vector<double> sine_, cosine_; ///< of the columns' azimuths
};

} // namespace host::viewport
