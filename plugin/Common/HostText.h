#pragma once

#include <maya/MString.h>
#include <string>

namespace orvo {

/// A text in UTF-8 as the host takes it. Texts of the host are read by MString::asUTF8: on Windows MString's own asChar
/// and its constructor speak the system's code page, which would end up in XML files and in paths.
inline MString hostText(const std::string& text) {
    MString result;
    result.setUTF8(text.c_str());
    return result;
}

} // namespace orvo
