#include "viewport/Picture.h"

#include <OpenImageIO/filesystem.h>
#include <OpenImageIO/imageio.h>

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

constexpr std::int64_t maxPixels = std::int64_t{1} << 28;

/// Keep alpha as it is stored; without this OpenImageIO multiplies the colours by it.
void keepAlphaApart(OIIO::ImageSpec& spec) { spec.attribute("oiio:UnassociatedAlpha", 1); }

/// A name beside `path`, unlike that of any other writer.
fs::path neighbourOf(const fs::path& path) {
    static std::atomic<unsigned> serial{0};
    fs::path name = path.filename();
    name += fmt::format(".part-{}-{}", ::getpid(), serial++);
    return path.parent_path() / name;
}

/// The first of the library's complaints; some formats add one for every row.
std::string reasonOf(std::string text) {
    text.resize(std::min(text.find('\n'), text.size()));
    while (!text.empty() && text.back() == ' ') text.pop_back();
    return text.empty() ? "unknown reason" : text;
}

/// The writer of the format that the path's extension names; null when there is none. Only writers that can write
/// into memory are taken: some of the others end the process, or say nothing, when the disk is full.
std::unique_ptr<OIIO::ImageOutput> writerFor(const std::string& path) {
    auto output = OIIO::ImageOutput::create(path);
    if (!output) OIIO::geterror(); // the caller has a clearer text
    return output && output->supports("ioproxy") ? std::move(output) : nullptr;
}

/// Puts `picture` into `file` as the bytes of a file named `path`; the answer is empty when all went well.
std::string encode(const Picture& picture, const std::string& path, std::vector<unsigned char>& file) {
    auto output = writerFor(path);
    OIIO::Filesystem::IOVecOutput memory(file);
    const bool dropAlpha = picture.channels == 4 && !output->supports("alpha");
    OIIO::ImageSpec spec(picture.width, picture.height, dropAlpha ? 3 : picture.channels, OIIO::TypeDesc::UINT8);
    keepAlphaApart(spec);
    if (!output->set_ioproxy(&memory) || !output->open(path, spec)) return reasonOf(output->geterror());
    const bool written = output->write_image(OIIO::TypeDesc::UINT8, picture.pixels.data(), picture.channels,
                                             static_cast<OIIO::stride_t>(picture.rowBytes()));
    std::string reason = written ? "" : reasonOf(output->geterror());
    if (!output->close() && reason.empty()) reason = reasonOf(output->geterror());
    return reason;
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
    if (!writerFor(path)) return fail(fmt::format("unknown format \"{}\"", target.extension().string()));

    std::error_code code;
    if (fs::is_directory(target, code)) return fail("a folder of that name is there");
    const fs::path folder = target.has_parent_path() ? target.parent_path() : fs::path(".");
    if (!fs::is_directory(folder, code)) return fail("its folder does not exist");

    const fs::path part = neighbourOf(target);
    std::string reason;
    try {
        std::vector<unsigned char> file;
        reason = encode(*this, path, file);
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
        std::error_code code;
        if (!fs::is_regular_file(path, code)) return fail("there is no such file");
        OIIO::ImageSpec wishes;
        keepAlphaApart(wishes);
        auto input = OIIO::ImageInput::open(path, &wishes);
        if (!input) return fail(reasonOf(OIIO::geterror()));
        const OIIO::ImageSpec& spec = input->spec();
        if (spec.width < 1 || spec.height < 1 || spec.nchannels < 1 || spec.depth > 1 ||
            std::int64_t{spec.width} * spec.height > maxPixels)
            return fail(fmt::format("its size of {} x {} x {} pixels and {} channels is not one of a flat picture",
                                    spec.width, spec.height, spec.depth, spec.nchannels));
        const int stored = std::min(spec.nchannels, 4);
        const bool grey = stored < 3;
        Picture picture(spec.width, spec.height, stored == 2 || stored == 4 ? 4 : 3);
        std::vector<std::uint8_t> values(static_cast<std::size_t>(spec.width) * static_cast<std::size_t>(spec.height) *
                                         static_cast<std::size_t>(stored));
        // Some readers answer success for a file that is cut off, and only leave the error's text.
        if (!input->read_image(0, 0, 0, stored, OIIO::TypeDesc::UINT8, values.data()) || input->has_error())
            return fail(reasonOf(input->geterror()));
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
