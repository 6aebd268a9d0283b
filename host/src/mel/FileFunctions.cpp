#include "base/FileReplacement.h"
#include "base/Pattern.h"
#include "mel/Execution.h"
#include "mel/Numbers.h"
#include "mel/TextTools.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>

namespace host::mel {
namespace {

namespace fs = std::filesystem;

/// The path as the system takes it: scripts written elsewhere use backslashes.
fs::path systemPath(std::string text) {
    if (text.find('\0') != std::string::npos) throw Error("A path cannot contain a null character.");
#ifndef _WIN32
    std::replace(text.begin(), text.end(), '\\', '/');
#endif
    return text;
}

std::FILE* opened(Arguments& a, std::size_t i) {
    auto& files = a.interpreter.impl().files;
    auto found = files.find(a.integer(i));
    if (found == files.end()) throw Error(a.name + ": " + a.text(i) + " is no open file.");
    return found->second->stream.get();
}

/// fopen(path, [mode]): a handle, or 0 when the file cannot be opened.
Value open(Arguments& a) {
    a.expect(1, 2);
    auto& files = a.interpreter.impl().files;
    const std::string mode = a.count() == 2 ? a.text(1) : "w";
    if (mode.empty() || mode.find_first_not_of("rwab+t") != std::string::npos ||
        std::string_view("rwa").find(mode[0]) == std::string_view::npos)
        throw Error("fopen: unknown mode \"" + mode + "\".");
    const fs::path path = systemPath(a.text(0));
    std::error_code status;
    if (files.size() >= 256 || fs::is_directory(path, status)) return 0;
    auto file = std::make_unique<OpenFile>();
    file->stream.reset(std::fopen(path.string().c_str(), mode.c_str()));
    if (!file->stream) return 0;
    const int handle = files.empty() ? 1 : files.rbegin()->first + 1;
    files[handle] = std::move(file);
    return handle;
}

Value close(Arguments& a) {
    a.expect(1);
    opened(a, 0);
    auto& files = a.interpreter.impl().files;
    auto file = files.find(a.integer(0));
    const bool closed = std::fclose(file->second->stream.release()) == 0;
    files.erase(file);
    if (!closed) throw Error("fclose: the file could not be written in full.");
    return {};
}

Value writeText(Arguments& a) {
    a.expect(2);
    std::FILE* file = opened(a, 0);
    const std::string text = a[1].printed();
    if (std::fwrite(text.data(), 1, text.size(), file) != text.size())
        throw Error("fprint: the file cannot be written.");
    return {};
}

/// The next character, or nothing at the end.
std::optional<char> next(std::FILE* file) {
    const int c = std::fgetc(file);
    if (c == EOF) return std::nullopt;
    return static_cast<char>(c);
}

Value readLine(Arguments& a) {
    a.expect(1);
    std::FILE* file = opened(a, 0);
    std::string line;
    while (auto c = next(file)) {
        line += *c;
        if (*c == '\n') break;
    }
    return line;
}

Value readWord(Arguments& a) {
    a.expect(1, 2);
    std::FILE* file = opened(a, 0);
    const std::string separators = a.count() == 2 ? a.text(1) : " \t\r\n";
    std::string word;
    while (auto c = next(file)) {
        if (separators.find(*c) == std::string::npos)
            word += *c;
        else if (!word.empty())
            break;
    }
    return word;
}

/// fread(file, sample): a value of the sample's type. A text is all that is left up to a null character; a number is
/// the next word.
Value read(Arguments& a) {
    a.expect(2);
    std::FILE* file = opened(a, 0);
    const Value::Type type = a[1].type();
    std::string text;
    if (type == Value::Type::String) {
        while (auto c = next(file)) {
            if (*c == '\0') break;
            text += *c;
        }
        return text;
    }
    if (type != Value::Type::Int && type != Value::Type::Float && type != Value::Type::Vector)
        throw Error(std::string("fread cannot read data of type ") + typeName(type) + '.');
    Arguments one{a.interpreter, a.name, {a.values[0]}};
    const int words = type == Value::Type::Vector ? 3 : 1;
    for (int i = 0; i < words; ++i) text += readWord(one).toString() + ' ';
    return converted(text, type);
}

Value endReached(Arguments& a) {
    a.expect(1);
    std::FILE* file = opened(a, 0);
    if (std::feof(file)) return 1;
    const int c = std::fgetc(file);
    if (c == EOF) return 1;
    std::ungetc(c, file);
    return 0;
}

Value flush(Arguments& a) {
    a.expect(1);
    if (std::fflush(opened(a, 0)) != 0) throw Error("fflush: the file cannot be written.");
    return {};
}

Value rewind(Arguments& a) {
    a.expect(1);
    std::rewind(opened(a, 0));
    return {};
}

Value fileTest(Arguments& a) {
    const ParsedArguments p(
        a.asCall(),
        {{"r", "r"}, {"w", "w"}, {"x", "x"}, {"d", "d"}, {"f", "f"}, {"e", "e"}, {"s", "s"}, {"h", "h"}, {"L", "L"}});
    const StringArray names = p.names();
    if (names.size() != 1) throw Error("filetest needs one file name.");
    const fs::path path = systemPath(names[0]);
    std::error_code status;
    const fs::file_status state = fs::status(path, status);
    const bool there = fs::exists(state);
    auto allows = [&](fs::perms mask) { return there && (state.permissions() & mask) != fs::perms::none; };
    bool result = there;
    if (p.has("d")) result = fs::is_directory(state);
    if (p.has("f")) result = fs::is_regular_file(state);
    if (p.has("r")) result = allows(fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
    if (p.has("w")) result = allows(fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write);
    if (p.has("x")) result = allows(fs::perms::owner_exec | fs::perms::group_exec | fs::perms::others_exec);
    if (p.has("s")) result = fs::is_regular_file(state) && fs::file_size(path, status) > 0;
    if (p.has("h") || p.has("L")) result = fs::is_symlink(fs::symlink_status(path, status));
    return result;
}

// Names

std::size_t lastSeparator(const std::string& path) { return path.find_last_of("/\\"); }

/// basename(path, extension): the last part, without the extension when it ends with that.
Value baseName(Arguments& a) {
    a.expect(2);
    std::string path = a.text(0), extension = a.text(1);
    while (path.size() > 1 && (path.back() == '/' || path.back() == '\\')) path.pop_back();
    if (const std::size_t slash = lastSeparator(path); slash != std::string::npos && path.size() > 1)
        path.erase(0, slash + 1);
    if (!extension.empty() && path.size() > extension.size() && path.ends_with(extension))
        path.resize(path.size() - extension.size());
    return path;
}

/// The extension's dot within the last part; npos when there is none.
std::size_t extensionDot(const std::string& path) {
    const std::size_t dot = path.rfind('.'), slash = lastSeparator(path);
    return dot == std::string::npos || (slash != std::string::npos && dot < slash) ? std::string::npos : dot;
}

Value baseNameWithoutExtension(Arguments& a) {
    a.expect(1);
    Value none("");
    Arguments inner{a.interpreter, a.name, {a.values[0], &none}};
    std::string name = baseName(inner).toString();
    const std::size_t dot = extensionDot(name);
    return dot == std::string::npos || dot == 0 ? name : name.substr(0, dot);
}

Value directoryName(Arguments& a) {
    a.expect(1);
    std::string path = a.text(0);
    while (path.size() > 1 && (path.back() == '/' || path.back() == '\\')) path.pop_back();
    const std::size_t slash = lastSeparator(path);
    if (slash == std::string::npos) return "";
    return path.substr(0, std::max<std::size_t>(slash, 1));
}

Value fileExtension(Arguments& a) {
    a.expect(1);
    const std::string path = a.text(0);
    const std::size_t dot = extensionDot(path);
    return dot == std::string::npos ? std::string() : path.substr(dot + 1);
}

Value nativePath(Arguments& a) {
    a.expect(1);
    std::string path = a.text(0);
#ifdef _WIN32
    std::replace(path.begin(), path.end(), '/', '\\');
#else
    std::replace(path.begin(), path.end(), '\\', '/');
#endif
    return path;
}

Value scriptPathName(Arguments& a) {
    a.expect(1);
    std::string path = a.text(0);
    std::replace(path.begin(), path.end(), '\\', '/');
    return path;
}

// The file system

/// A copy that fails leaves what was there.
bool copied(const fs::path& from, const fs::path& to) {
    try {
        base::FileReplacement copy({to});
        fs::copy_file(from, copy.staged(0));
        copy.commit();
        return true;
    } catch (const base::ReplacementError&) {
        return false;
    } catch (const fs::filesystem_error&) {
        return false;
    }
}

Value systemFile(Arguments& a) {
    const ParsedArguments p(a.asCall(), {{"del", "delete"},
                                         {"cp", "copy", 1},
                                         {"mov", "move", 1},
                                         {"ren", "rename", 1},
                                         {"md", "makeDir"},
                                         {"red", "removeEmptyDir"}});
    const StringArray names = p.names();
    if (names.size() != 1) throw Error("sysFile needs one path.");
    const fs::path path = systemPath(names[0]);
    std::error_code status;
    if (p.has("del")) return fs::is_regular_file(path, status) && fs::remove(path, status);
    if (p.has("red")) return fs::is_directory(path, status) && fs::is_empty(path, status) && fs::remove(path, status);
    if (p.has("md")) {
        fs::create_directories(path, status);
        return !status && fs::is_directory(path, status);
    }
    if (p.has("cp")) return fs::is_regular_file(path, status) && copied(path, systemPath(p.text("cp")));
    if (p.has("mov") || p.has("ren")) {
        fs::rename(path, systemPath(p.text(p.has("mov") ? "mov" : "ren")), status);
        return !status;
    }
    throw Error("sysFile needs a flag that says what is to be done.");
}

Value fileList(Arguments& a) {
    const ParsedArguments p(a.asCall(), {{"fld", "folder", 1}, {"fs", "filespec", 1}});
    std::string folder = p.text("fld", "."), pattern = p.text("fs", "*");
    if (!p.has("fs") && p.has("fld") && folder.find('*') != std::string::npos) {
        const std::size_t slash = lastSeparator(folder);
        pattern = slash == std::string::npos ? folder : folder.substr(slash + 1);
        folder = slash == std::string::npos ? "." : folder.substr(0, slash + 1);
    }
    StringArray out;
    std::error_code status;
    for (fs::directory_iterator it(systemPath(folder), status), end; !status && it != end; it.increment(status)) {
        std::error_code ignored;
        const std::string name = it->path().filename().string();
        if (matchesFileName(pattern, name)) out.push_back(it->is_directory(ignored) ? name + '/' : name);
    }
    std::sort(out.begin(), out.end());
    return out;
}

std::string variable(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

/// The user's folders, each with a slash at its end.
Value internalVariable(Arguments& a) {
    const ParsedArguments p(a.asCall(), {{"utd", "userTmpDir"},
                                         {"uad", "userAppDir"},
                                         {"usd", "userScriptDir"},
                                         {"upd", "userPrefDir"},
                                         {"uwd", "userWorkspaceDir"},
                                         {"ups", "userPresetsDir"},
                                         {"ush", "userShelfDir"},
                                         {"umd", "userMarkingMenuDir"}});
    std::string application = variable("MAYA_APP_DIR");
    if (application.empty()) application = variable("HOME") + "/maya";
    if (application.back() != '/') application += '/';
    if (p.has("utd")) {
        std::error_code status;
        std::string temporary = fs::temp_directory_path(status).generic_string();
        if (temporary.empty() || temporary.back() != '/') temporary += '/';
        return temporary;
    }
    if (p.has("uad")) return application;
    if (p.has("usd")) return application + "2010/scripts/";
    if (p.has("upd")) return application + "2010/prefs/";
    if (p.has("uwd")) return application + "projects/";
    if (p.has("ups")) return application + "2010/presets/";
    if (p.has("ush")) return application + "2010/prefs/shelves/";
    if (p.has("umd")) return application + "2010/prefs/markingMenus/";
    throw Error("internalVar needs a flag that says what is asked for.");
}

} // namespace

void addFileFunctions(Interpreter::Impl& impl) {
    static constexpr std::pair<const char*, LanguageFunction> functions[] = {{"fopen", open},
                                                                             {"fclose", close},
                                                                             {"fprint", writeText},
                                                                             {"fgetline", readLine},
                                                                             {"fgetword", readWord},
                                                                             {"fread", read},
                                                                             {"feof", endReached},
                                                                             {"fflush", flush},
                                                                             {"frewind", rewind},
                                                                             {"basename", baseName},
                                                                             {"basenameEx", baseNameWithoutExtension},
                                                                             {"dirname", directoryName},
                                                                             {"fileExtension", fileExtension},
                                                                             {"toNativePath", nativePath},
                                                                             {"fromNativePath", scriptPathName}};
    static constexpr std::pair<const char*, LanguageFunction> withFlags[] = {
        {"filetest", fileTest}, {"sysFile", systemFile}, {"getFileList", fileList}, {"internalVar", internalVariable}};
    for (const auto& [name, function] : functions) impl.addLanguageFunction(name, function);
    for (const auto& [name, function] : withFlags) impl.addLanguageFunction(name, function, true);
}

} // namespace host::mel
