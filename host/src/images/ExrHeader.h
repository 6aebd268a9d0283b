#pragma once

#include <span>
#include <string>

namespace host::images {

/// What keeps an OpenEXR file from being opened: empty, or a text of one line. The library that reads such files sets
/// memory aside for what their headers claim, several GiB where they lie; this goes through the headers before it. It
/// asks that each attribute lies in the file, that the parts are flat pictures within the limits of ImageCodec.h, that
/// tiles have at most 4096 x 4096 pixels, and that the file can hold its tables and be credible for its samples.
std::string problemInExrHeader(std::span<const unsigned char> file);

} // namespace host::images
