#pragma once

#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MTypes.h>

#include <memory>

#define kIffStringDefault "iff"

/// A picture in memory: 8-bit or float channels side by side, the bottom row first, without padding between rows.
///
/// Pictures have at most 32768 pixels a side and 2 GiB of pixels.
class OPENMAYA_EXPORT MImage {
public:
    enum MPixelType { kUnknown, kByte, kFloat };

    /// Without pixels.
    MImage();
    ~MImage();
    MImage(const MImage&) = delete;
    MImage& operator=(const MImage&) = delete;

    /// A picture of zeros, with 1 to 4 channels. kInvalidParameter, with the old pixels kept, for sizes that are not
    /// possible and for kUnknown.
    MStatus create(unsigned int width, unsigned int height, unsigned int channels = 4, MPixelType type = kByte);
    /// Reads a file as RGBA. Its ending tells the format: bmp, dds, exr, hdr, jpg, png, pnm, tga, tif. Grey
    /// becomes red, green and blue, absent alpha is full. Bytes are 0 to 255, float pixels of integer formats 0 to 1,
    /// kUnknown takes what the file has. kFailure, with the old pixels kept, for a file that is missing; and with an
    /// error that names the file for one that is damaged or cut off, has more than 512 MiB or 2^27 pixels, or ends
    /// otherwise.
    MStatus readFromFile(MString pathname, MPixelType type = kByte);
    MStatus getSize(unsigned int& width, unsigned int& height) const;
    /// kUnknown when there are no pixels.
    MImage::MPixelType pixelType() const;
    /// The pixels, valid until the next change of size; null when there are none or they are not bytes (or floats).
    unsigned char* pixels() const;
    float* floatPixels() const;
    /// Copies width x height pixels of 4 bytes, or of `channels` floats. Does nothing for impossible sizes.
    void setPixels(unsigned char* inPixelPtr, unsigned int width, unsigned int height);
    void setFloatPixels(float* inPixelPtr, unsigned int width, unsigned int height, unsigned int channels = 4);
    /// The number of channels; 0 when there are no pixels.
    unsigned int depth() const;
    /// Resamples to a new size. With the aspect ratio preserved the picture is fitted into it, centred, and what is
    /// left over is 0.
    MStatus resize(int width, int height, bool preserveAspectRatio = true);
    /// Writes the picture in a format given by its usual extension ("png", "tga"), or by that of the path when the
    /// format is empty. Alpha is dropped where the format has none. A failure leaves an earlier file as it was.
    /// kInvalidParameter for a format that is not known, kFailure for a place that cannot be written.
    MStatus writeToFile(MString pathname, MString outputFormat = kIffStringDefault) const;
    /// Forgets the pixels.
    MStatus release();
    /// Says that the channels are in the order red, green, blue (the default) or blue, green, red; no pixel is touched.
    void setRGBA(bool rgbaFormat);
    bool isRGBA() const;
    static const char* className();

private:
    struct Pixels;
    std::unique_ptr<Pixels> pixels_;
};
