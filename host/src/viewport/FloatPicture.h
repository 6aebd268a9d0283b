#pragma once

#include "viewport/Picture.h"

#include <cstddef>
#include <string>
#include <vector>

namespace host::viewport {

/// @name The colours of a sky and light
/// What a view draws are display values, in which artists choose colours: a screen shows them as sRGB (IEC 61966-2-1).
/// Linear light is what sRGB says that they stand for, with its curve going on beyond 1, and below 0 the other way
/// round, as in scRGB.
/// @{
float linearFromDisplay(float value);
/// @}

/// An image of floats, RGB or RGBA, top row first, without padding between rows. Nothing is clipped.
class FloatPicture {
public:
    FloatPicture() = default;
    /// A black, fully transparent picture; sizes of 0 or more, `channels` 3 or 4.
    FloatPicture(int width, int height, int channels);
    /// The values of 8 bits, 255 as 1.
    explicit FloatPicture(const Picture& bytes);

    /// Whether files whose names end so hold light: exr and hdr.
    static bool holdsLight(const std::string& path);

    float* at(int x, int y) { return pixels.data() + offset(x, y); }
    const float* at(int x, int y) const { return pixels.data() + offset(x, y); }

    /// Turns the colours, which are display values multiplied by alpha, into linear light multiplied by alpha.
    void makeLinear();
    /// The mean of every square of `side` x `side` pixels; the sizes are multiples of it.
    FloatPicture reduced(int side) const;
    /// With the columns in the other order.
    FloatPicture mirrored() const;
    /// The colours, which are display values multiplied by alpha, as 8 bits: clipped, not multiplied.
    Picture bytes() const;

    /// Makes the bytes of an exr or hdr file of linear light: 16-bit floats in exr, or 32-bit ones where a value is too
    /// large for them. Notes in it say the colour space, the exposure, and `origin`. For any thread. False with a text
    /// in `error`, when given.
    bool encode(const std::string& path, std::vector<unsigned char>& file, std::string* error = nullptr) const;

    int width = 0, height = 0;
    int channels = 3;
    std::vector<float> pixels; ///< width x height x channels
    bool isCubeMap = false;    ///< the six faces above each other, as OpenEXR has them; an exr file says so
    Picture::Origin origin;

private:
    std::size_t offset(int x, int y) const {
        return (static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)) *
               static_cast<std::size_t>(channels);
    }
};

} // namespace host::viewport
