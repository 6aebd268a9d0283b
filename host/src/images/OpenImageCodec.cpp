#include "images/ImageCodec.h"

#include <OpenImageIO/filesystem.h>
#include <OpenImageIO/imagebuf.h>
#include <OpenImageIO/imagebufalgo.h>
#include <OpenImageIO/imageio.h>

#include <algorithm>

namespace host::images {
namespace {

/// Without this OpenImageIO multiplies colours by alpha.
void keepAlphaApart(OIIO::ImageSpec& spec) { spec.attribute("oiio:UnassociatedAlpha", 1); }

OIIO::TypeDesc typeOf(bool floats) { return floats ? OIIO::TypeDesc::FLOAT : OIIO::TypeDesc::UINT8; }

/// The first of the library's complaints; some formats add one for every row.
std::string reasonOf(std::string text) {
    text.resize(std::min(text.find('\n'), text.size()));
    while (!text.empty() && text.back() == ' ') text.pop_back();
    return text.empty() ? "unknown reason" : text;
}

/// Only writers that can write into memory are taken: some of the others end the process, or say nothing, when the disk
/// is full.
std::unique_ptr<OIIO::ImageOutput> writerFor(const std::string& path) {
    auto output = OIIO::ImageOutput::create(path);
    if (!output) OIIO::geterror(); // taken off, or a later call would show it
    return output && output->supports("ioproxy") ? std::move(output) : nullptr;
}

class Reader final : public ImageReader {
public:
    explicit Reader(std::unique_ptr<OIIO::ImageInput> input) : input_(std::move(input)) {
        const OIIO::ImageSpec& spec = input_->spec();
        width = spec.width;
        height = spec.height;
        depth = spec.depth;
        channels = spec.nchannels;
        floats = spec.format.is_floating_point();
    }
    std::string read(int count, bool asFloats, void* to, std::ptrdiff_t pixelStep, std::ptrdiff_t rowStep) override {
        // Some readers answer success for a file that is cut off, and only leave the error's text.
        const bool done = input_->read_image(0, 0, 0, count, typeOf(asFloats), to, pixelStep, rowStep);
        return done && !input_->has_error() ? std::string() : reasonOf(input_->geterror());
    }

private:
    std::unique_ptr<OIIO::ImageInput> input_;
};

class OpenImageCodec final : public ImageCodec {
public:
    std::unique_ptr<ImageReader> open(const std::string& path, std::string& error) override {
        OIIO::ImageSpec wishes;
        keepAlphaApart(wishes);
        auto input = OIIO::ImageInput::open(path, &wishes);
        if (input) return std::make_unique<Reader>(std::move(input));
        error = reasonOf(OIIO::geterror());
        return nullptr;
    }

    bool canWrite(const std::string& path, Alpha& alpha) override {
        const auto output = writerFor(path);
        if (output) alpha = output->supports("alpha") ? Alpha::Kept : Alpha::Dropped;
        return output != nullptr;
    }

    std::string encode(const std::string& path, const PixelRows& pixels, std::vector<unsigned char>& file) override {
        const auto output = writerFor(path);
        if (!output) return "unknown format";
        OIIO::Filesystem::IOVecOutput memory(file);
        const bool dropAlpha = pixels.channels % 2 == 0 && !output->supports("alpha");
        OIIO::ImageSpec spec(pixels.width, pixels.height, pixels.channels - (dropAlpha ? 1 : 0), typeOf(pixels.floats));
        keepAlphaApart(spec);
        if (!output->set_ioproxy(&memory) || !output->open(path, spec)) return reasonOf(output->geterror());
        const auto pixelStep = static_cast<OIIO::stride_t>(pixels.channels * (pixels.floats ? sizeof(float) : 1));
        const bool written =
            output->write_image(typeOf(pixels.floats), pixels.data, pixelStep, pixelStep * pixels.width);
        std::string reason = written ? "" : reasonOf(output->geterror());
        if (!output->close() && reason.empty()) reason = reasonOf(output->geterror());
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
