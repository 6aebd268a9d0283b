#include "viewport/Panorama.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <thread>

namespace host::viewport {
namespace {

/// The number of the face that a direction leads through.
std::size_t faceOf(double x, double y, double z) {
    const double ax = std::abs(x), ay = std::abs(y), az = std::abs(z);
    if (ax >= ay && ax >= az) return x > 0 ? 0 : 1;
    if (ay >= az) return y > 0 ? 2 : 3;
    return z > 0 ? 4 : 5;
}

/// The picture at a place between the middles of its pixels, which are whole numbers; bilinear.
void sample(const FloatPicture& from, double x, double y, float* to) {
    const int column = std::clamp(static_cast<int>(x), 0, from.width - 2);
    const int row = std::clamp(static_cast<int>(y), 0, from.height - 2);
    const float u = static_cast<float>(x - column), v = static_cast<float>(y - row);
    const float *a = from.at(column, row), *b = from.at(column, row + 1);
    for (int k = 0; k < from.channels; ++k) {
        const float above = a[k] + (a[k + from.channels] - a[k]) * u;
        const float below = b[k] + (b[k + from.channels] - b[k]) * u;
        to[k] = above + (below - above) * v;
    }
}

/// Does rows 0 to `count`, shared out among the processors.
template <class Work>
void forRows(int count, const Work& work) {
    const int threads = std::clamp(static_cast<int>(std::thread::hardware_concurrency()), 1, 16);
    std::vector<std::jthread> running;
    for (int t = 0; t < threads; ++t)
        running.emplace_back([&, t] {
            for (int row = t; row < count; row += threads) work(row);
        });
}

} // namespace

const std::array<CubeFace, 6>& cubeFaces(CubeLayout layout) {
    const MVector x(1, 0, 0), y(0, 1, 0), z(0, 0, 1);
    static const std::array<CubeFace, 6> texture{
        {{"px", x, y}, {"nx", -x, y}, {"py", y, -z}, {"ny", -y, z}, {"pz", z, y}, {"nz", -z, y}}};
    static const std::array<CubeFace, 6> openExr{
        {{"px", x, y}, {"nx", -x, y}, {"py", y, z}, {"ny", -y, -z}, {"pz", z, y}, {"nz", -z, y}}};
    return layout == CubeLayout::Texture ? texture : openExr;
}

FaceView faceView(const CubeFace& face, const MPoint& eye, const CameraOptics& camera, double reach) {
    CameraOptics optics;
    optics.horizontalFilmAperture = optics.verticalFilmAperture = 1;
    optics.nearClip = camera.nearClip;
    optics.farClip = camera.farClip;
    return {{eye, face.view, face.up, face.view ^ face.up},
            withHorizontalView(optics, 2 * std::atan(reach), 1, 1).value_or(optics)};
}

LatLongPicture::LatLongPicture(int width, int height, int channels, double azimuth, int margin)
    : picture_(width, height, channels), margin_(margin) {
    for (int column = 0; column < width; ++column) {
        const double at = azimuth + ((column + 0.5) / width - 0.5) * 2 * std::numbers::pi;
        sine_.push_back(std::sin(at));
        cosine_.push_back(std::cos(at));
    }
}

int LatLongPicture::faceSize(int width, int margin) {
    const int own = static_cast<int>(std::ceil(width / std::numbers::pi));
    return std::max(own, 2) + 2 * margin;
}

double LatLongPicture::reach(int faceSize, int margin) {
    return static_cast<double>(faceSize) / static_cast<double>(faceSize - 2 * margin);
}

void LatLongPicture::add(std::size_t face, const FloatPicture& view) {
    const CubeFace& side = cubeFaces(CubeLayout::OpenExr)[face];
    const MVector right = side.view ^ side.up;
    const double half = 0.5 * (view.width - 2 * margin_), middle = 0.5 * (view.width - 1);
    forRows(picture_.height, [&](int row) {
        const double elevation = (0.5 - (row + 0.5) / picture_.height) * std::numbers::pi;
        const double level = std::cos(elevation), y = std::sin(elevation);
        for (int column = 0; column < picture_.width; ++column) {
            const auto c = static_cast<std::size_t>(column);
            const double x = sine_[c] * level, z = -cosine_[c] * level;
            if (faceOf(x, y, z) != face) continue;
            const double depth = x * side.view.x + y * side.view.y + z * side.view.z;
            const double u = (x * right.x + y * right.y + z * right.z) / depth;
            const double v = (x * side.up.x + y * side.up.y + z * side.up.z) / depth;
            sample(view, middle + u * half, middle - v * half, picture_.at(column, row));
        }
    });
}

} // namespace host::viewport
