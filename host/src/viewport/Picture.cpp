#include "viewport/Picture.h"

#include "base/FileReplacement.h"
#include "images/ImageCodec.h"

#include <algorithm>
#include <exception>
#include <filesystem>
#include <fmt/format.h>
#include <system_error>
#include <utility>

namespace host::viewport {
namespace {

namespace fs = std::filesystem;

} // namespace

Picture::Picture(int width, int height, int channels)
    : width(width), height(height), channels(channels),
      pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * static_cast<std::size_t>(channels)) {}

std::string Picture::refusal(const std::string& path) {
    const auto refused = [&](std::string_view reason) {
        return fmt::format("Cannot write picture \"{}\": {}", path, reason);
    };
    try {
        const std::string extension = fs::path(path).extension().string();
        if (extension.empty()) return refused("its name has no extension that tells the format");
        base::requireReplaceable(path);
        images::ImageCodec::Alpha alpha{};
        if (images::imageCodec().canWrite(path, alpha)) return {};
        return refused(fmt::format("unknown format \"{}\"", extension));
    } catch (const std::exception& problem) {
        return refused(problem.what());
    }
}

bool Picture::write(const std::string& path, std::string* error) const {
    std::vector<unsigned char> file;
    return encode(path, file, error) && put(path, file, error);
}

bool Picture::encode(const std::string& path, std::vector<unsigned char>& file, std::string* error) const {
    const auto fail = [&](std::string_view reason) {
        if (error) *error = fmt::format("Cannot write picture \"{}\": {}", path, reason);
        return false;
    };
    if (width < 1 || height < 1 || (channels != 3 && channels != 4) ||
        pixels.size() != rowBytes() * static_cast<std::size_t>(height))
        return fail("it holds no pixels");
    if (std::string reason = refusal(path); !reason.empty()) {
        if (error) *error = std::move(reason);
        return false;
    }
    try {
        const images::Note notes[] = {
            {"ColorSpace", "sRGB"},
            {"ImageDescription", "display-referred picture of 8 bits a channel, 255 stored as 1.0; not linear light"},
            {"Software", origin.software},
            {"DocumentName", origin.scene}};
        const std::string reason =
            images::imageCodec().encode(path, {width, height, channels, false, pixels.data(), notes}, file);
        return reason.empty() || fail(reason);
    } catch (const std::exception& problem) {
        return fail(problem.what());
    }
}

bool Picture::put(const std::string& path, const std::vector<unsigned char>& file, std::string* error) {
    try {
        base::replaceFile(path, {reinterpret_cast<const char*>(file.data()), file.size()});
        return true;
    } catch (const std::exception& problem) {
        if (error) *error = fmt::format("Cannot write picture \"{}\": {}", path, problem.what());
        return false;
    }
}

std::optional<Picture> Picture::read(const std::string& path, std::string* error) {
    const auto fail = [&](std::string_view reason) {
        if (error) *error = fmt::format("Cannot read picture \"{}\": {}", path, reason);
        return std::nullopt;
    };
    try {
        std::string reason;
        const auto input = images::openImage(path, reason);
        if (!input) return fail(reason);
        const int stored = std::min(input->channels, 4);
        const bool grey = stored < 3;
        Picture picture(input->width, input->height, stored == 2 || stored == 4 ? 4 : 3);
        std::vector<std::uint8_t> values(static_cast<std::size_t>(input->width) *
                                         static_cast<std::size_t>(input->height) * static_cast<std::size_t>(stored));
        reason = input->read(stored, false, values.data(), stored, std::ptrdiff_t{stored} * input->width);
        if (!reason.empty()) return fail(reason);
        if (!grey) {
            picture.pixels = std::move(values);
            return picture;
        }
        auto out = picture.pixels.begin();
        for (std::size_t i = 0; i < values.size(); i += static_cast<std::size_t>(stored)) {
            out = std::fill_n(out, 3, values[i]);
            if (stored == 2) *out++ = values[i + 1];
        }
        return picture;
    } catch (const std::exception& problem) {
        return fail(problem.what());
    }
}

} // namespace host::viewport
