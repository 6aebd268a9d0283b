#include "viewport/FloatPicture.h"

#include "base/Letters.h"
#include "images/ImageCodec.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <fmt/format.h>

namespace host::viewport {

float linearFromDisplay(float value) {
    const float v = std::abs(value);
    return std::copysign(v <= 0.04045f ? v / 12.92f : std::pow((v + 0.055f) / 1.055f, 2.4f), value);
}

FloatPicture::FloatPicture(int width, int height, int channels)
    : width(width), height(height), channels(channels),
      pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * static_cast<std::size_t>(channels)) {}

FloatPicture::FloatPicture(const Picture& bytes) : FloatPicture(bytes.width, bytes.height, bytes.channels) {
    std::ranges::transform(bytes.pixels, pixels.begin(), [](std::uint8_t v) { return static_cast<float>(v) / 255; });
    origin = bytes.origin;
}

bool FloatPicture::holdsLight(const std::string& path) {
    const std::string ending = extensionOf(path);
    return ending == ".exr" || ending == ".hdr" || ending == ".rgbe";
}

void FloatPicture::makeLinear() {
    const auto step = static_cast<std::size_t>(channels);
    for (std::size_t i = 0; i < pixels.size(); i += step) {
        const float alpha = step == 4 ? pixels[i + 3] : 1;
        for (std::size_t k = i; k < i + 3; ++k)
            pixels[k] = alpha > 0 ? linearFromDisplay(pixels[k] / alpha) * alpha : linearFromDisplay(pixels[k]);
    }
}

FloatPicture FloatPicture::reduced(int side) const {
    if (side < 2) return *this;
    FloatPicture small(width / side, height / side, channels);
    small.origin = origin;
    const float share = 1 / static_cast<float>(side * side);
    for (int y = 0; y < small.height * side; ++y)
        for (int x = 0; x < small.width * side; ++x) {
            const float* from = at(x, y);
            float* to = small.at(x / side, y / side);
            for (int k = 0; k < channels; ++k) to[k] += from[k] * share;
        }
    return small;
}

FloatPicture FloatPicture::mirrored() const {
    FloatPicture turned = *this;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) std::copy_n(at(width - 1 - x, y), channels, turned.at(x, y));
    return turned;
}

Picture FloatPicture::bytes() const {
    Picture picture(width, height, channels);
    picture.origin = origin;
    const auto byte = [](float v) { return static_cast<std::uint8_t>(std::clamp(v, 0.0f, 1.0f) * 255 + 0.5f); };
    const auto step = static_cast<std::size_t>(channels);
    for (std::size_t i = 0; i < pixels.size(); i += step) {
        const float alpha = step == 4 ? pixels[i + 3] : 1;
        for (std::size_t k = i; k < i + 3; ++k)
            picture.pixels[k] = byte(step == 4 && alpha > 0 ? pixels[k] / alpha : pixels[k]);
        if (step == 4) picture.pixels[i + 3] = byte(alpha);
    }
    return picture;
}

bool FloatPicture::encode(const std::string& path, std::vector<unsigned char>& file, std::string* error) const {
    try {
        std::vector<images::Note> notes = {
            {"ColorSpace", "linear light, Rec. 709 primaries (linear sRGB)"},
            {"Exposure", "1"},
            {"ImageDescription", "unclipped linear light; 1.0 is the white of a display, encode as sRGB to show it"},
            {"Software", origin.software},
            {"DocumentName", origin.scene}};
        if (isCubeMap) notes.push_back({"textureformat", "CubeFace Environment"});
        const std::string reason =
            images::imageCodec().encode(path, {width, height, channels, true, pixels.data(), notes}, file);
        if (reason.empty()) return true;
        if (error) *error = fmt::format("Cannot write picture \"{}\": {}", path, reason);
    } catch (const std::exception& problem) {
        if (error) *error = fmt::format("Cannot write picture \"{}\": {}", path, problem.what());
    }
    return false;
}

} // namespace host::viewport
