#pragma once

#include <maya/MString.h>

#include <string>

namespace host::api {

inline std::string toText(const MString& s) { return std::string(s.asChar(), s.length()); }
inline MString fromText(const std::string& s) { return MString(s.data(), static_cast<int>(s.size())); }

} // namespace host::api
