#pragma once

#include <cstddef>
#include <limits>
#include <string>
#include <utility>

namespace host::mesh {

/// Indices are ints: a mesh has no more points, edges or corners than that.
constexpr std::size_t kMostElements = std::numeric_limits<int>::max();

/// False, with the reason for who wants it.
inline bool fail(std::string* error, std::string reason) {
    if (error) *error = std::move(reason);
    return false;
}

} // namespace host::mesh
