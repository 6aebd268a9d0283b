#include "OutputFile.h"

#include "FileSystem.h"

namespace orvo {

OutputFile::OutputFile(const std::string& path, const char* mode) : file_(openFile(path, mode)) {}

OutputFile::~OutputFile() {
    if (file_) std::fclose(file_);
}

void OutputFile::write(const void* data, std::size_t size) {
    if (size == 0) return;
    if (!file_ || std::fwrite(data, 1, size, file_) != size) failed_ = true;
}

bool OutputFile::close() {
    if (!file_) return false;
    if (std::fflush(file_) != 0) failed_ = true;
    if (std::fclose(file_) != 0) failed_ = true;
    file_ = nullptr;
    return !failed_;
}

std::string xmlEscaped(std::string_view text) {
    std::string escaped;
    escaped.reserve(text.size());
    for (const char c : text) {
        switch (c) {
        case '&': escaped += "&amp;"; break;
        case '<': escaped += "&lt;"; break;
        case '>': escaped += "&gt;"; break;
        case '"': escaped += "&quot;"; break;
        default: escaped += c;
        }
    }
    return escaped;
}

} // namespace orvo
