#include "WindowsPath.h"

#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <utility>

namespace orvo {
namespace {

std::wstring wideText(const std::string& text) {
    const int size = static_cast<int>(text.size());
    for (const auto& [codePage, flags] : {std::pair<UINT, DWORD>{CP_UTF8, MB_ERR_INVALID_CHARS}, {CP_ACP, 0}}) {
        const int length = MultiByteToWideChar(codePage, flags, text.data(), size, nullptr, 0);
        if (length <= 0) continue;
        std::wstring wide(static_cast<std::size_t>(length), L'\0');
        MultiByteToWideChar(codePage, flags, text.data(), size, wide.data(), length);
        return wide;
    }
    return {};
}

/// The longest path that the system takes, in UTF-16 units.
constexpr std::size_t longestPath = 32767;

} // namespace

std::wstring windowsPath(const std::string& path) {
    if (path.empty() || path.size() > longestPath * 3 || path.find('\0') != std::string::npos) return {};
    const std::wstring wide = wideText(path);
    // Also turns separators and takes "." and ".." out, which the form without a limit does not know.
    std::wstring full(wide.size() + MAX_PATH, L'\0');
    DWORD length = GetFullPathNameW(wide.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
    if (length >= full.size()) {
        full.resize(length);
        length = GetFullPathNameW(wide.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
    }
    if (length >= full.size()) return {};
    full.resize(length);

    if (full.starts_with(L"\\\\?\\")) return full;
    if (full.starts_with(L"\\\\.\\")) return {};
    if (full.starts_with(L"\\\\")) return L"\\\\?\\UNC\\" + full.substr(2);
    if (full.size() < 3 || full[1] != L':') return {};
    return L"\\\\?\\" + full;
}

std::string utf8Text(std::wstring_view text) {
    const int size = static_cast<int>(text.size());
    const int length = WideCharToMultiByte(CP_UTF8, 0, text.data(), size, nullptr, 0, nullptr, nullptr);
    std::string result(static_cast<std::size_t>(length > 0 ? length : 0), '\0');
    if (length > 0) WideCharToMultiByte(CP_UTF8, 0, text.data(), size, result.data(), length, nullptr, nullptr);
    return result;
}

} // namespace orvo
