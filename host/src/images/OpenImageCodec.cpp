#include "base/Letters.h"
#include "images/DdsHeader.h"
#include "images/ExrHeader.h"
#include "images/ImageCodec.h"

#include <OpenImageIO/filesystem.h>
#include <OpenImageIO/imagebuf.h>
#include <OpenImageIO/imagebufalgo.h>
#include <OpenImageIO/imageio.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <string_view>
#include <utility>

namespace host::images {
namespace {

/// Without this OpenImageIO multiplies colours by alpha.
void keepAlphaApart(OIIO::ImageSpec& spec) { spec.attribute("oiio:UnassociatedAlpha", 1); }

OIIO::TypeDesc typeOf(bool floats) { return floats ? OIIO::TypeDesc::FLOAT : OIIO::TypeDesc::UINT8; }

/// The first of the library's complaints; some formats add one for every row.
std::string reasonOf(std::string text) {
    text.resize(std::min(text.find('\n'), text.size()));
    while (!text.empty() && (text.back() == ' ' || text.back() == '.')) text.pop_back();
    return text.empty() ? "unknown reason" : text;
}

struct Format {
    const char* reader; ///< OpenImageIO's name
    std::vector<std::string_view> endings;
};

// Still images whose readers work on bytes in memory and stand damaged ones. (Those of gif and iff files do not: they
// take gigabytes, or write beyond their buffers.) OpenImageIO itself would go on to try every reader it has, among them
// those of films, play lists and medical records, which open other files or take minutes.
const std::vector<Format>& formats() {
    static const std::vector<Format> list{{"bmp", {"bmp", "dib"}},
                                          {"dds", {"dds"}},
                                          {"openexr", {"exr"}},
                                          {"hdr", {"hdr", "rgbe"}},
                                          {"jpeg", {"jpg", "jpeg", "jpe"}},
                                          {"png", {"png"}},
                                          {"pnm", {"pnm", "pbm", "pgm", "ppm", "pfm"}},
                                          {"targa", {"tga"}},
                                          {"tiff", {"tif", "tiff"}}};
    return list;
}

/// Null for a name that ends otherwise.
const Format* formatOf(const std::string& path) {
    const std::string ending = lowerCase(path.substr(std::min(path.find_last_of("./"), path.size() - 1) + 1));
    const auto at = std::ranges::find_if(
        formats(), [&](const Format& f) { return std::ranges::find(f.endings, ending) != f.endings.end(); });
    return at == formats().end() ? nullptr : &*at;
}

/// Only writers that can write into memory are taken: some of the others end the process, or say nothing, when the disk
/// is full.
std::unique_ptr<OIIO::ImageOutput> writerFor(const std::string& path) {
    auto output = OIIO::ImageOutput::create(path);
    if (!output) OIIO::geterror(); // taken off, or a later call would show it
    return output && output->supports("ioproxy") ? std::move(output) : nullptr;
}

/// Whether 16-bit floats can hold all of the values.
bool fitsHalf(const PixelRows& pixels) {
    constexpr float largest = 65504;
    const auto* values = static_cast<const float*>(pixels.data);
    const auto count = static_cast<std::size_t>(pixels.width) * static_cast<std::size_t>(pixels.height) *
                       static_cast<std::size_t>(pixels.channels);
    return std::all_of(values, values + count, [](float v) { return !(std::abs(v) > largest); });
}

/// Puts notes behind the first line of a Radiance picture, whose writer knows none.
void addNotes(std::span<const Note> notes, std::vector<unsigned char>& file) {
    std::string lines;
    for (const Note& note : notes) {
        lines += note.name == "Software"   ? "SOFTWARE="
                 : note.name == "Exposure" ? "EXPOSURE="
                                           : "# " + note.name + ": ";
        for (const char c : note.text) lines += static_cast<unsigned char>(c) < 0x20 ? ' ' : c;
        lines += '\n';
    }
    const auto end = std::find(file.begin(), file.end(), '\n');
    if (end != file.end()) file.insert(end + 1, lines.begin(), lines.end());
}

/// A file in memory. OpenImageIO's own reader of memory does not look whether a place lies before the beginning, where
/// damaged headers send the readers of some formats.
class FileInMemory final : public OIIO::Filesystem::IOMemReader {
public:
    using IOMemReader::IOMemReader;

    std::size_t read(void* to, std::size_t count) override {
        const std::size_t done = pread(to, count, m_pos);
        m_pos += static_cast<std::int64_t>(done);
        return done;
    }
    std::size_t pread(void* to, std::size_t count, std::int64_t offset) override {
        if (offset < 0 || static_cast<std::size_t>(offset) >= size()) return 0;
        return IOMemReader::pread(to, count, offset);
    }
};

class Reader final : public ImageReader {
public:
    explicit Reader(std::vector<unsigned char> file) : file_(std::move(file)), bytes_(file_.data(), file_.size()) {}

    bool open(const Format& format, const std::string& path, std::string& error) {
        input_ = OIIO::ImageInput::create(format.reader);
        OIIO::ImageSpec wishes, spec;
        keepAlphaApart(wishes);
        if (!input_ || !input_->set_ioproxy(&bytes_) || !input_->open(path, spec, wishes)) {
            error = reasonOf(input_ ? input_->geterror() : OIIO::geterror());
            return false;
        }
        width = spec.width;
        height = spec.height;
        depth = spec.depth;
        channels = spec.nchannels;
        floats = spec.format.is_floating_point();
        return true;
    }
    std::string read(int count, bool asFloats, void* to, std::ptrdiff_t pixelStep, std::ptrdiff_t rowStep) override {
        // Some readers answer success for a file that is cut off, and only leave the error's text.
        const bool done = input_->read_image(0, 0, 0, count, typeOf(asFloats), to, pixelStep, rowStep);
        return done && !input_->has_error() ? std::string() : reasonOf(input_->geterror());
    }

private:
    // The input goes before what it reads from.
    std::vector<unsigned char> file_;
    FileInMemory bytes_;
    std::unique_ptr<OIIO::ImageInput> input_;
};

class OpenImageCodec final : public ImageCodec {
public:
    std::string otherFormats(const std::string& path) override {
        std::string names;
        if (formatOf(path)) return names;
        for (const Format& format : formats())
            for (const std::string_view ending : format.endings) (names += names.empty() ? "" : ", ") += ending;
        return names;
    }

    std::unique_ptr<ImageReader> open(const std::string& path, std::vector<unsigned char> file,
                                      std::string& error) override {
        const Format* format = formatOf(path);
        if (!format) {
            error = "unknown format";
            return nullptr;
        }
        if (format->reader == std::string_view("dds") && !mendDdsHeader(file)) {
            error = "its pixels are in a layout that is not read";
            return nullptr;
        }
        if (format->reader == std::string_view("openexr") && !(error = problemInExrHeader(file)).empty())
            return nullptr;
        auto reader = std::make_unique<Reader>(std::move(file));
        return reader->open(*format, path, error) ? std::move(reader) : nullptr;
    }

    bool canWrite(const std::string& path, Alpha& alpha) override {
        const auto output = writerFor(path);
        if (output) alpha = output->supports("alpha") ? Alpha::Kept : Alpha::Dropped;
        return output != nullptr;
    }

    std::string encode(const std::string& path, const PixelRows& pixels, std::vector<unsigned char>& file) override {
        OIIO::Filesystem::IOVecOutput memory(file); // outlives the writer, which may still write as it is destroyed
        const auto output = writerFor(path);
        if (!output) return "unknown format";
        const bool dropAlpha = pixels.channels % 2 == 0 && !output->supports("alpha");
        OIIO::ImageSpec spec(pixels.width, pixels.height, pixels.channels - (dropAlpha ? 1 : 0), typeOf(pixels.floats));
        keepAlphaApart(spec);
        const std::string_view format = output->format_name();
        if (format == "openexr") {
            for (const Note& note : pixels.notes) spec.attribute(note.name, note.text);
            if (pixels.floats && fitsHalf(pixels)) spec.set_format(OIIO::TypeDesc::HALF);
            spec.attribute("DateTime", ""); // else the time of writing, and the same picture has other bytes each time
        }
        if (format == "png") { // of skies, as many bytes as the default's, in a fifth of its time
            spec.attribute("png:compressionLevel", 4);
            spec.attribute("compression", "rle");
        }
        if (!output->set_ioproxy(&memory) || !output->open(path, spec)) return reasonOf(output->geterror());
        const auto pixelStep = static_cast<OIIO::stride_t>(pixels.channels * (pixels.floats ? sizeof(float) : 1));
        const bool written =
            output->write_image(typeOf(pixels.floats), pixels.data, pixelStep, pixelStep * pixels.width);
        std::string reason = written ? "" : reasonOf(output->geterror());
        if (!output->close() && reason.empty()) reason = reasonOf(output->geterror());
        if (format == "hdr") addNotes(pixels.notes, file);
        return reason;
    }

    bool resize(const PixelRows& from, int width, int height, void* to, std::ptrdiff_t pixelStep,
                std::ptrdiff_t rowStep) override {
        const OIIO::ImageBuf source(OIIO::ImageSpec(from.width, from.height, from.channels, typeOf(from.floats)),
                                    const_cast<void*>(from.data)); // only read
        const OIIO::ROI area(0, width, 0, height, 0, 1, 0, from.channels);
        // A triangle filter has no negative lobes, which would ring around bright pixels.
        const OIIO::ImageBuf scaled = OIIO::ImageBufAlgo::resize(source, "triangle", 0.0f, area, 1);
        return scaled.get_pixels(area, typeOf(from.floats), to, pixelStep, rowStep);
    }
};

} // namespace
} // namespace host::images

/// What the host looks for when it has loaded this module.
extern "C" __attribute__((visibility("default"))) host::images::ImageCodec* orvohost_imageCodec() {
    static host::images::OpenImageCodec codec;
    return &codec;
}
