#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace orvo {

/// What `problem` says of a file that gives or holds fewer bytes than it promises.
inline constexpr const char* badRead = "Bad Read";

/// The most that is read of a picture, so that no file takes the host's memory.
inline constexpr std::uint64_t maxFileBytes = std::uint64_t{512} << 20;
inline constexpr std::uint64_t maxPixels = std::uint64_t{1} << 27; ///< 16384 x 8192

/// All bytes of the file at `path`. Nothing when it cannot be opened or is not a file of known length; `problem`, when
/// given, is set for a short read, to `badRead`, and for a file of more than maxFileBytes.
std::optional<std::vector<std::uint8_t>> readFileBytes(const std::string& path, std::string* problem = nullptr);

/// Whether a file keeps to maxFileBytes, and a picture to maxPixels; `problem`, when given, is set where not.
bool fewEnoughBytes(std::uint64_t size, std::string* problem);
bool fewEnoughPixels(std::uint64_t width, std::uint64_t height, std::string* problem);

} // namespace orvo
