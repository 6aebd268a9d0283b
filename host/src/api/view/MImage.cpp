#include <maya/MImage.h>

#include "base/FileReplacement.h"
#include "base/Letters.h"
#include "base/Messages.h"
#include "images/ImageCodec.h"
#include "values/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <new>
#include <stdexcept>
#include <vector>

namespace fs = std::filesystem;
using host::images::ImageCodec;

/// The pixels are bytes or floats, so one of the lists is empty.
struct MImage::Pixels {
    unsigned int width = 0, height = 0, channels = 0;
    MPixelType type = kUnknown;
    bool rgba = true;
    std::vector<unsigned char> bytes;
    std::vector<float> floats;

    std::size_t rowValues() const { return static_cast<std::size_t>(width) * channels; }
    std::size_t valueSize() const { return type == kFloat ? sizeof(float) : 1; }
    char* data() {
        return type == kFloat ? reinterpret_cast<char*>(floats.data()) : reinterpret_cast<char*>(bytes.data());
    }
    const char* data() const { return const_cast<Pixels*>(this)->data(); }
    char* row(unsigned int y) { return data() + y * rowValues() * valueSize(); }
    const char* row(unsigned int y) const { return const_cast<Pixels*>(this)->row(y); }
    host::images::PixelRows rows() const {
        return {static_cast<int>(width), static_cast<int>(height), static_cast<int>(channels), type == kFloat, data()};
    }

    /// Zeros of that size; the flag for the order of the channels is kept.
    static std::unique_ptr<Pixels> make(unsigned int width, unsigned int height, unsigned int channels, MPixelType type,
                                        bool rgba) {
        auto p = std::make_unique<Pixels>();
        p->width = width;
        p->height = height;
        p->channels = channels;
        p->type = type;
        p->rgba = rgba;
        const std::size_t size = p->rowValues() * height;
        if (type == kFloat)
            p->floats.resize(size);
        else
            p->bytes.resize(size);
        return p;
    }
};

namespace {

constexpr unsigned int maxSide = host::images::kLongestSide;
constexpr std::uint64_t maxBytes = std::uint64_t{1} << 31;

/// Null, after telling the user, when images cannot be had.
ImageCodec* imageCodec() {
    try {
        return &host::images::imageCodec();
    } catch (const std::runtime_error& e) {
        host::showError(e.what());
        return nullptr;
    }
}

bool possible(std::uint64_t width, std::uint64_t height, unsigned int channels, MImage::MPixelType type) {
    if (type != MImage::kByte && type != MImage::kFloat) return false;
    const std::uint64_t valueSize = type == MImage::kFloat ? sizeof(float) : 1;
    return width >= 1 && width <= maxSide && height >= 1 && height <= maxSide && channels >= 1 && channels <= 4 &&
           width * height * channels * valueSize <= maxBytes;
}

/// Spreads `stored` channels of every pixel over four, in place.
template <class Value>
void spread(std::vector<Value>& values, int stored, Value full) {
    for (std::size_t i = 0; i < values.size(); i += 4) {
        Value* p = values.data() + i;
        if (stored < 4) p[3] = stored == 2 ? p[1] : full;
        if (stored < 3) p[1] = p[2] = p[0];
    }
}

} // namespace

MImage::MImage() : pixels_(std::make_unique<Pixels>()) {}
MImage::~MImage() = default;
const char* MImage::className() { return "MImage"; }

MStatus MImage::create(unsigned int width, unsigned int height, unsigned int channels, MPixelType type) {
    if (!possible(width, height, channels, type)) return MStatus::kInvalidParameter;
    try {
        pixels_ = Pixels::make(width, height, channels, type, pixels_->rgba);
        return MStatus::kSuccess;
    } catch (const std::bad_alloc&) {
        return MStatus::kInsufficientMemory;
    }
}

MStatus MImage::readFromFile(MString pathname, MPixelType type) {
    const std::string path = host::api::toText(pathname);
    const auto fail = [&](std::string_view reason) {
        host::showError(fmt::format("Cannot read image \"{}\": {}.", path, reason));
        return MStatus::kFailure;
    };
    try {
        std::error_code code;
        if (!fs::exists(path, code)) return MStatus::kFailure;
        std::string reason;
        const auto input = host::images::openImage(path, reason);
        if (!input) return fail(reason);
        if (type == kUnknown) type = input->floats ? kFloat : kByte;
        const int stored = std::min(input->channels, 4);
        auto read = Pixels::make(static_cast<unsigned int>(input->width), static_cast<unsigned int>(input->height), 4,
                                 type, true);
        // The file's first row is the top one, which is the last one here.
        const auto pixelStep = static_cast<std::ptrdiff_t>(4 * read->valueSize());
        reason = input->read(stored, type == kFloat, read->row(read->height - 1), pixelStep, -pixelStep * input->width);
        if (!reason.empty()) return fail(reason);
        spread(read->bytes, stored, static_cast<unsigned char>(255));
        spread(read->floats, stored, 1.0f);
        pixels_ = std::move(read);
        return MStatus::kSuccess;
    } catch (const std::bad_alloc&) {
        return fail("there is not enough memory for it");
    } catch (const std::exception& e) {
        return fail(e.what());
    }
}

MStatus MImage::getSize(unsigned int& width, unsigned int& height) const {
    width = pixels_->width;
    height = pixels_->height;
    return pixels_->type == kUnknown ? MStatus::kFailure : MStatus::kSuccess;
}

MImage::MPixelType MImage::pixelType() const { return pixels_->type; }
unsigned char* MImage::pixels() const { return pixels_->type == kByte ? pixels_->bytes.data() : nullptr; }
float* MImage::floatPixels() const { return pixels_->type == kFloat ? pixels_->floats.data() : nullptr; }
unsigned int MImage::depth() const { return pixels_->channels; }

void MImage::setPixels(unsigned char* inPixelPtr, unsigned int width, unsigned int height) {
    if (!inPixelPtr || !possible(width, height, 4, kByte)) return;
    // The source may be the picture's own pixels, so those must live on until they are copied.
    auto made = Pixels::make(width, height, 4, kByte, pixels_->rgba);
    std::copy_n(inPixelPtr, made->bytes.size(), made->bytes.begin());
    pixels_ = std::move(made);
}

void MImage::setFloatPixels(float* inPixelPtr, unsigned int width, unsigned int height, unsigned int channels) {
    if (!inPixelPtr || !possible(width, height, channels, kFloat)) return;
    auto made = Pixels::make(width, height, channels, kFloat, pixels_->rgba);
    std::copy_n(inPixelPtr, made->floats.size(), made->floats.begin());
    pixels_ = std::move(made);
}

MStatus MImage::resize(int width, int height, bool preserveAspectRatio) {
    Pixels& from = *pixels_;
    if (from.type == kUnknown) return MStatus::kFailure;
    if (width < 1 || height < 1 ||
        !possible(static_cast<unsigned int>(width), static_cast<unsigned int>(height), from.channels, from.type))
        return MStatus::kInvalidParameter;
    try {
        int w = width, h = height;
        if (preserveAspectRatio) {
            const double scale =
                std::min(static_cast<double>(width) / from.width, static_cast<double>(height) / from.height);
            w = std::clamp(static_cast<int>(from.width * scale + 0.5), 1, width);
            h = std::clamp(static_cast<int>(from.height * scale + 0.5), 1, height);
        }
        auto made = Pixels::make(static_cast<unsigned int>(width), static_cast<unsigned int>(height), from.channels,
                                 from.type, from.rgba);
        const auto pixelStep = static_cast<std::ptrdiff_t>(from.channels * from.valueSize());
        char* corner = made->row(static_cast<unsigned int>((height - h) / 2)) + pixelStep * ((width - w) / 2);
        ImageCodec* codec = imageCodec();
        if (!codec || !codec->resize(from.rows(), w, h, corner, pixelStep, pixelStep * width)) return MStatus::kFailure;
        pixels_ = std::move(made);
        return MStatus::kSuccess;
    } catch (const std::exception&) {
        return MStatus::kInsufficientMemory;
    }
}

MStatus MImage::writeToFile(MString pathname, MString outputFormat) const {
    const Pixels& p = *pixels_;
    if (p.type == kUnknown) return MStatus::kFailure;
    try {
        const fs::path path(host::api::toText(pathname));
        std::string format = host::lowerCase(host::api::toText(outputFormat));
        if (format.empty()) format = host::extensionOf(path);
        if (!format.empty() && format.front() == '.') format.erase(0, 1);
        const std::string named = "image." + format;
        ImageCodec* codec = imageCodec();
        ImageCodec::Alpha alpha{};
        if (!codec) return MStatus::kFailure;
        if (!codec->canWrite(named, alpha)) return MStatus::kInvalidParameter;

        // The top row comes first in files, and red before green and blue.
        const bool swapped = !p.rgba && p.channels >= 3;
        auto top = Pixels::make(p.width, p.height, p.channels, p.type, true);
        const std::size_t size = p.valueSize();
        for (unsigned int y = 0; y < p.height; ++y) {
            const char* from = p.row(p.height - 1 - y);
            char* to = top->row(y);
            for (unsigned int x = 0; x < p.width; ++x, from += p.channels * size)
                for (unsigned int c = 0; c < p.channels; ++c, to += size)
                    std::copy_n(from + (swapped && c < 3 ? 2 - c : c) * size, size, to);
        }
        std::vector<unsigned char> file;
        if (!codec->encode(named, top->rows(), file).empty()) return MStatus::kFailure;
        host::base::replaceFile(path, {reinterpret_cast<const char*>(file.data()), file.size()});
        return MStatus::kSuccess;
    } catch (const std::exception&) {
        return MStatus::kFailure;
    }
}

MStatus MImage::release() {
    const bool rgba = pixels_->rgba;
    pixels_ = std::make_unique<Pixels>();
    pixels_->rgba = rgba;
    return MStatus::kSuccess;
}

void MImage::setRGBA(bool rgbaFormat) { pixels_->rgba = rgbaFormat; }
bool MImage::isRGBA() const { return pixels_->rgba; }
