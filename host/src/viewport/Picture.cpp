#include "viewport/Picture.h"

#include "images/ImageCodec.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fmt/format.h>
#include <memory>
#include <system_error>
#include <unistd.h>

namespace host::viewport {
namespace {

namespace fs = std::filesystem;

/// A name beside `path`, unlike that of any other writer.
fs::path neighbourOf(const fs::path& path) {
    static std::atomic<unsigned> serial{0};
    fs::path name = path.filename();
    name += fmt::format(".part-{}-{}", ::getpid(), serial++);
    return path.parent_path() / name;
}

/// Writes a whole file; the answer is empty when all of it reached the disk's hands.
std::string store(const std::vector<unsigned char>& bytes, const fs::path& place) {
    std::FILE* file = std::fopen(place.c_str(), "wb");
    if (!file) return std::generic_category().message(errno);
    errno = 0;
    const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size() && std::fflush(file) == 0;
    const int problem = errno;
    if (std::fclose(file) == 0 && written) return {};
    return std::generic_category().message(written ? errno : problem);
}

} // namespace

Picture::Picture(int width, int height, int channels)
    : width(width), height(height), channels(channels),
      pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * static_cast<std::size_t>(channels)) {}

bool Picture::write(const std::string& path, std::string* error) const {
    const auto fail = [&](std::string_view reason) {
        if (error) *error = fmt::format("Cannot write picture \"{}\": {}", path, reason);
        return false;
    };
    if (width < 1 || height < 1 || (channels != 3 && channels != 4) ||
        pixels.size() != rowBytes() * static_cast<std::size_t>(height))
        return fail("it holds no pixels");
    const fs::path target(path);
    if (target.extension().empty()) return fail("its name has no extension that tells the format");
    std::error_code code;
    if (fs::is_directory(target, code)) return fail("a folder of that name is there");
    const fs::path folder = target.has_parent_path() ? target.parent_path() : fs::path(".");
    if (!fs::is_directory(folder, code)) return fail("its folder does not exist");

    const fs::path part = neighbourOf(target);
    std::string reason;
    try {
        auto& codec = images::imageCodec();
        images::ImageCodec::Alpha alpha{};
        if (!codec.canWrite(path, alpha))
            return fail(fmt::format("unknown format \"{}\"", target.extension().string()));
        std::vector<unsigned char> file;
        reason = codec.encode(path, {width, height, channels, false, pixels.data()}, file);
        if (reason.empty()) reason = store(file, part);
    } catch (const std::exception& problem) {
        reason = problem.what();
    }
    if (reason.empty()) {
        fs::rename(part, target, code);
        if (!code) return true;
        reason = code.message();
    }
    std::error_code ignored;
    fs::remove(part, ignored);
    return fail(reason);
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
