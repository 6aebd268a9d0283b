#include "images/ImageCodec.h"

#include "base/Modules.h"
#include "base/TextFile.h"

#include <fmt/format.h>

#include <filesystem>

namespace host::images {
namespace {

std::string reasonAgainst(const ImageReader& image, std::uint64_t fileBytes) {
    if (image.width < 1 || image.height < 1 || image.channels < 1 || image.depth > 1)
        return fmt::format("its size of {} x {} x {} pixels and {} channels is not one of a flat picture", image.width,
                           image.height, image.depth, image.channels);
    const std::uint64_t pixels = static_cast<std::uint64_t>(image.width) * static_cast<std::uint64_t>(image.height);
    if (image.width > kLongestSide || image.height > kLongestSide || pixels > kMostPixels)
        return fmt::format("it has {} x {} pixels; at most {} in all and {} a side are read", image.width, image.height,
                           kMostPixels, kLongestSide);
    if (!credible(fileBytes, pixels))
        return fmt::format("it is too short for the {} x {} pixels that it claims", image.width, image.height);
    return {};
}

} // namespace

ImageCodec& imageCodec() {
    using Function = ImageCodec* (*)();
    static ImageCodec& codec =
        *reinterpret_cast<Function>(moduleFunction("no images", "orvohost_images.so", "orvohost_imageCodec"))();
    return codec;
}

std::unique_ptr<ImageReader> openImage(const std::string& path, std::string& error) {
    namespace fs = std::filesystem;
    const auto fail = [&](std::string reason) {
        error = std::move(reason);
        return nullptr;
    };
    std::error_code code;
    if (!fs::is_regular_file(path, code)) return fail("there is no such file");
    if (const std::string formats = imageCodec().otherFormats(path); !formats.empty())
        return fail("its name does not end as one of the images that are read: " + formats);
    const std::uint64_t size = fs::file_size(path, code);
    if (code) return fail(code.message());
    if (size > kMostFileBytes)
        return fail(fmt::format("it has {} bytes; at most {} are read of an image", size, kMostFileBytes));
    try {
        return openImage(path, files::readFileBytes(path), error);
    } catch (const files::FileError&) {
        return fail("it cannot be read");
    }
}

std::unique_ptr<ImageReader> openImage(const std::string& path, std::vector<unsigned char> file, std::string& error) {
    const std::uint64_t size = file.size();
    if (size == 0) {
        error = "it is empty";
        return nullptr;
    }
    auto image = imageCodec().open(path, std::move(file), error);
    if (!image) return nullptr;
    error = reasonAgainst(*image, size);
    return error.empty() ? std::move(image) : nullptr;
}

} // namespace host::images
