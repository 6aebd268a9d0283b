#include "images/ExrHeader.h"

#include "images/ImageCodec.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

namespace host::images {
namespace {

// Flags beside the version.
constexpr std::uint32_t kDeep = 0x800, kManyParts = 0x1000;
constexpr std::size_t kLongestName = 255;
constexpr std::uint64_t kLongestTile = 4096, kMostChannels = 1024;

struct Wrong {
    std::string reason;
};

[[noreturn]] void damaged() { throw Wrong{"its header is damaged"}; }

/// Takes what is left of a file apart from its front.
class Bytes {
public:
    explicit Bytes(std::span<const unsigned char> bytes) : rest_(bytes) {}
    std::size_t size() const { return rest_.size(); }
    Bytes part(std::size_t size) {
        if (size > rest_.size()) damaged();
        const Bytes front(rest_.first(size));
        rest_ = rest_.subspan(size);
        return front;
    }
    std::uint32_t word() {
        const auto b = part(4).rest_;
        return b[0] | std::uint32_t{b[1]} << 8 | std::uint32_t{b[2]} << 16 | std::uint32_t{b[3]} << 24;
    }
    /// Up to a zero byte, which goes with it.
    std::string_view name() {
        const auto end = std::ranges::find(rest_, 0);
        const auto size = static_cast<std::size_t>(end - rest_.begin());
        if (end == rest_.end() || size > kLongestName) damaged();
        return {reinterpret_cast<const char*>(part(size + 1).rest_.data()), size};
    }

private:
    std::span<const unsigned char> rest_;
};

std::uint64_t extent(std::uint32_t first, std::uint32_t last) {
    const std::int64_t size = std::int64_t{static_cast<std::int32_t>(last)} - static_cast<std::int32_t>(first) + 1;
    if (size < 1 || size > kLongestSide)
        throw Wrong{"its sides have " + std::to_string(size) + " pixels; at most " + std::to_string(kLongestSide) +
                    " are read"};
    return static_cast<std::uint64_t>(size);
}

/// One part's attributes. False for an empty header, which ends those of several parts.
bool checkPart(Bytes& rest, std::uint64_t fileBytes) {
    std::uint64_t width = 0, height = 0, tileWidth = 0, tileHeight = 0, channels = 0, attributes = 0;
    for (std::string_view name = rest.name(); !name.empty(); name = rest.name(), ++attributes) {
        const std::string_view type = rest.name();
        const std::uint32_t size = rest.word();
        Bytes value = rest.part(size);
        if (name == "dataWindow") {
            const std::uint32_t left = value.word(), top = value.word();
            width = extent(left, value.word());
            height = extent(top, value.word());
        } else if (type == "tiledesc") {
            tileWidth = value.word();
            tileHeight = value.word();
            if (std::min(tileWidth, tileHeight) < 1 || std::max(tileWidth, tileHeight) > kLongestTile)
                throw Wrong{"its tiles have a size that is not read"};
        } else if (type == "chlist") {
            for (channels = 0; !value.name().empty(); ++channels) value.part(16);
        } else if (type == "preview") {
            const std::uint64_t pixels = std::uint64_t{value.word()} * value.word();
            if (pixels != value.size() / 4) damaged();
        } else if (type == "stringvector") {
            while (value.size() > 0) value.part(value.word());
        } else if (name == "chunkCount" && value.word() > fileBytes / 8) {
            damaged();
        }
    }
    if (attributes == 0) return false;
    if (width == 0 || channels == 0) damaged();
    const std::uint64_t pixels = width * height;
    if (pixels > kMostPixels || channels > kMostChannels || pixels * channels > 4 * kMostPixels)
        throw Wrong{"it has " + std::to_string(width) + " x " + std::to_string(height) + " pixels of " +
                    std::to_string(channels) + " channels; at most " + std::to_string(kMostPixels) +
                    " of 4 channels are read"};
    if (!credible(fileBytes, pixels * channels)) throw Wrong{"it is too short for the pixels that it claims"};
    if (tileWidth > 0 && (width + tileWidth - 1) / tileWidth * ((height + tileHeight - 1) / tileHeight) > fileBytes / 8)
        damaged();
    return true;
}

} // namespace

std::string problemInExrHeader(std::span<const unsigned char> file) try {
    Bytes rest(file);
    if (rest.word() != 0x01312f76) return "it is no OpenEXR file";
    const std::uint32_t version = rest.word();
    if ((version & kDeep) != 0) return "it holds deep pixels, which are not read";
    if ((version & kManyParts) == 0) {
        if (!checkPart(rest, file.size())) damaged();
    } else {
        while (checkPart(rest, file.size())) {}
    }
    return {};
} catch (const Wrong& e) {
    return e.reason;
}

} // namespace host::images
