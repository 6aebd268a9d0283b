#include "Messages.h"

#include "HostText.h"

#include <array>
#include <maya/MGlobal.h>
#include <maya/MString.h>
#include <string_view>
#include <vector>

namespace orvo {
namespace {

std::size_t errors = 0;

} // namespace

std::size_t errorsShown() { return errors; }

void showMessage(MessageLevel level, const std::string& text) {
    std::array<char, 20480> buffer;
    const std::size_t length = text.copy(buffer.data(), buffer.size() - 1);
    buffer[length] = '\0';
    const MString message = hostText(buffer.data());
    switch (level) {
    case MessageLevel::Info:
    case MessageLevel::Notice: MGlobal::displayInfo(message); break;
    case MessageLevel::Warning: MGlobal::displayWarning(message); break;
    case MessageLevel::Error:
        ++errors;
        MGlobal::displayError(message);
        break;
    }
}

std::string sourcePath(const SourcePlace& where) {
    // The room and the name of the file: the folders within a room are not told.
    std::vector<std::string_view> parts;
    for (std::string_view rest = where.file; !rest.empty();) {
        const std::size_t end = rest.find_first_of("/\\");
        parts.push_back(rest.substr(0, end));
        rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
    }
    const std::string_view file = parts.empty() ? std::string_view() : parts.back();
    std::string name(file.substr(0, file.rfind('.')));
    if (parts.size() < 2) return name;
    if (parts.size() > 2 && parts[parts.size() - 3] == "SkyTool") return "SkyTool\\" + name;
    return std::string(parts[parts.size() - 2]) + '\\' + name;
}

void reportPlace(const SourcePlace& where, MessageLevel level) {
    showMessage(level, formatText("In %s, line %d", sourcePath(where), static_cast<int>(where.line)));
}

void reportFailure(const MStatus& status, const std::string& message, const SourcePlace& where) {
    reportPlace(where);
    reportError("Maya Reports: %s", status.errorString().asUTF8());
    reportPlace(where);
    reportError("%s", message);
}

} // namespace orvo
