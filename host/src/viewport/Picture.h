#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace host::viewport {

/// An image of 8 bits a channel, RGB or RGBA, top row first, without padding between rows. Alpha is not
/// premultiplied, neither in memory nor in a file that allows the choice.
class Picture {
public:
    Picture() = default;
    /// A black, fully transparent picture; sizes of 0 or more, `channels` 3 or 4.
    Picture(int width, int height, int channels);

    /// What `write` tells of the picture in a file of floats, beside its colour space: its origin.
    struct Origin {
        std::string software; ///< name and version of the program that made it
        std::string scene;    ///< what it shows: a file's name
    };

    /// What keeps a picture from being written to `path`, as far as that can be known before there is one: an unknown
    /// extension, a folder that is missing or not writable, a file that cannot be replaced. Empty when nothing does.
    static std::string refusal(const std::string& path);

    /// Writes the picture in the format of the path's extension (png, jpg, tif, exr, and what else OpenImageIO
    /// writes; alpha is dropped where the format has none). The file takes its place
    /// when it is complete and on the disk, so a failure leaves an earlier picture as it was. False with a text in
    /// `error`, when given, for an empty picture, what refusal() says, or a full disk.
    ///
    /// The values are those of the 8 bits in every format, 255 being 1.0: made for a display, as sRGB has them. In exr
    /// and hdr files, which one would take for linear light, a note says so, and `origin` is told.
    bool write(const std::string& path, std::string* error = nullptr) const;

    /// @name The two steps of writing
    /// @{
    /// Makes the bytes of a file of that name; for any thread. False with a text in `error`, when given.
    bool encode(const std::string& path, std::vector<unsigned char>& file, std::string* error = nullptr) const;
    /// Puts them in place. False with a text in `error`, when given.
    static bool put(const std::string& path, const std::vector<unsigned char>& file, std::string* error = nullptr);
    /// @}

    /// Reads an image of any format that OpenImageIO knows; values are brought to 8 bits, one and two channels
    /// become grey, channels beyond the fourth are dropped. Nothing with a text in `error`, when given, when the file
    /// cannot be read, is damaged, or has more than 2^28 pixels.
    static std::optional<Picture> read(const std::string& path, std::string* error = nullptr);

    std::size_t rowBytes() const { return static_cast<std::size_t>(width) * static_cast<std::size_t>(channels); }
    std::uint8_t* row(int y) { return pixels.data() + rowBytes() * static_cast<std::size_t>(y); }
    const std::uint8_t* row(int y) const { return pixels.data() + rowBytes() * static_cast<std::size_t>(y); }
    /// The first channel of the pixel in column `x` of row `y`, counted from the top left.
    std::uint8_t* at(int x, int y) { return row(y) + static_cast<std::ptrdiff_t>(x) * channels; }
    const std::uint8_t* at(int x, int y) const { return row(y) + static_cast<std::ptrdiff_t>(x) * channels; }

    int width = 0, height = 0;
    int channels = 3;
    std::vector<std::uint8_t> pixels; ///< width x height x channels bytes
    Origin origin;
};

} // namespace host::viewport
