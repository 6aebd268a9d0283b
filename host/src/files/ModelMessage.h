#pragma once

#include "files/RawModel.h"

#include <cstdint>
#include <functional>
#include <span>
#include <stdexcept>
#include <string_view>

/// What the program that reads models tells the host through a pipe: a model, or why there is none. The numbers are
/// in the machine's own form; a word at the start and one at the end tell whether all of it came.
namespace host::files {

/// The most that the host takes.
inline constexpr std::uint64_t kMostMessageBytes = std::uint64_t{1} << 30;

/// Passes bytes on; false when that is no longer possible.
using SendBytes = std::function<bool(const void* data, std::size_t size)>;

bool sendModel(const RawModel& model, const SendBytes& send);
bool sendModelError(std::string_view text, const SendBytes& send);

/// Why there is no model: a text of one line for the user.
struct ModelError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Takes a whole message apart. It trusts no size in it, sets no more memory aside than a small multiple of the
/// message, and answers only a model that is sound: names of letters, digits and underscores, parents before their
/// children and at most kDeepestModel of them, meshes that exist, numbers that are finite. What polygons refer to is
/// for PolyMesh to check. Throws ModelError for anything else, and with the sender's text where there is one.
RawModel takeModel(std::span<const char> message);

} // namespace host::files
