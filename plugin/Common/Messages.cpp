#include "Messages.h"

#include "HostText.h"

#include <array>
#include <maya/MGlobal.h>
#include <maya/MString.h>
#include <string_view>

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
    const std::string_view file = where.file;
    const std::size_t name = file.find_last_of("/\\");
    if (name == std::string_view::npos) return std::string(file.substr(0, file.rfind('.')));
    const std::size_t before = name == 0 ? std::string_view::npos : file.find_last_of("/\\", name - 1);
    const std::size_t folder = before == std::string_view::npos ? 0 : before + 1;
    const std::string_view base = file.substr(name + 1);
    return std::string(file.substr(folder, name - folder)) + '\\' + std::string(base.substr(0, base.rfind('.')));
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
