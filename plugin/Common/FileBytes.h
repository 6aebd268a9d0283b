#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace orvo {

/// What `problem` says of a file that gives or holds fewer bytes than it promises.
inline constexpr const char* badRead = "Bad Read";

/// All bytes of the file at `path`, at most 2 GiB. Nothing when it cannot be opened or is not a file of known length;
/// a short read also sets `problem`, when given, to `badRead`.
std::optional<std::vector<std::uint8_t>> readFileBytes(const std::string& path, std::string* problem = nullptr);

} // namespace orvo
