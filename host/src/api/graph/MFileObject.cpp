#include <maya/MFileObject.h>

#include "mel/Interpreter.h"
#include "mel/Services.h"
#include "values/Text.h"

#include <filesystem>

using namespace host;
using host::api::fromText;
using host::api::toText;

namespace fs = std::filesystem;

namespace {

/// The part up to the last separator, and the rest.
std::pair<std::string, std::string> split(const std::string& full) {
    const auto slash = full.find_last_of("/\\");
    if (slash == std::string::npos) return {"", full};
    return {full.substr(0, slash + 1), full.substr(slash + 1)};
}

std::string withSlash(std::string path) {
    if (!path.empty() && path.back() != '/' && path.back() != '\\') path += '/';
    return path;
}

bool isAbsolute(const std::string& path) {
    return !path.empty() && (path[0] == '/' || path[0] == '\\' || (path.size() > 1 && path[1] == ':'));
}

bool isFile(const std::string& path) {
    std::error_code ignored;
    return !path.empty() && fs::exists(path, ignored);
}

/// Where the running project puts a relative name.
std::string inProject(const std::string& path) {
    if (path.empty() || isAbsolute(path)) return path;
    return Services::current().interpreter().call("workspace", {"-expandName", path}).toString();
}

std::string found(const std::string& full, MFileObject::MFileResolveMethod method) {
    const bool any = method == MFileObject::kNone;
    if (isAbsolute(full)) {
        if ((any || (method & MFileObject::kExact)) && isFile(full)) return full;
        const std::string base = inProject(split(full).second);
        return (method & MFileObject::kBaseName) && isFile(base) ? base : std::string();
    }
    if (!any && !(method & (MFileObject::kRelative | MFileObject::kExact))) return {};
    const std::string there = inProject(full);
    return isFile(there) ? there : std::string();
}

} // namespace

MFileObject::MFileObject() = default;
MFileObject::MFileObject(const MFileObject& other) = default;
MFileObject::~MFileObject() = default;
MFileObject& MFileObject::operator=(const MFileObject& other) = default;

MStatus MFileObject::setRawName(const MString& fileName) {
    name_ = fileName;
    override_ = MString();
    return MStatus::kSuccess;
}

MStatus MFileObject::setRawPath(const MString& filePath) {
    path_ = fromText(withSlash(toText(filePath)));
    override_ = MString();
    return MStatus::kSuccess;
}

MStatus MFileObject::setRawFullName(const MString& fullFileName) {
    const auto [path, name] = split(toText(fullFileName));
    path_ = fromText(path);
    return setRawName(fromText(name));
}

MStatus MFileObject::overrideResolvedFullName(const MString& fullFileName) {
    override_ = fullFileName;
    return MStatus::kSuccess;
}

MString MFileObject::rawName() const { return name_; }
MString MFileObject::rawPath() const { return path_; }
MString MFileObject::rawFullName() const { return path_ + name_; }
MString MFileObject::expandedPath() const { return path_.expandEnvironmentVariablesAndTilde(); }
MString MFileObject::expandedFullName() const { return expandedPath() + name_; }
MString MFileObject::resolvedName() const { return fromText(split(toText(resolvedFullName())).second); }
MString MFileObject::resolvedPath() const { return fromText(split(toText(resolvedFullName())).first); }

MString MFileObject::resolvedFullName() const {
    if (override_.length() > 0) return override_;
    auto& self = const_cast<MFileObject&>(*this);
    for (unsigned int i = 0; i < self.pathCount(); ++i)
        if (const auto full = found(toText(self.ithFullName(i)), method_); !full.empty()) return fromText(full);
    return MString();
}

unsigned int MFileObject::pathCount() {
    MStringArray folders;
    if (path_.length() == 0) return isSet() ? 1 : 0;
    expandedPath().split(':', folders);
    return folders.length();
}

MString MFileObject::ithPath(unsigned int index) {
    MStringArray folders;
    expandedPath().split(':', folders);
    return index < folders.length() ? fromText(withSlash(toText(folders[index]))) : MString();
}

MString MFileObject::ithFullName(unsigned int index) { return ithPath(index) + name_; }
bool MFileObject::exists() { return resolvedFullName().length() > 0 && isFile(toText(resolvedFullName())); }
bool MFileObject::exists(unsigned int index) {
    return index < pathCount() && !found(toText(ithFullName(index)), method_).empty();
}
bool MFileObject::isSet() const { return rawFullName().length() > 0; }
void MFileObject::setResolveMethod(MFileResolveMethod method) { method_ = method; }
MFileObject::MFileResolveMethod MFileObject::resolveMethod() const { return method_; }
MStatus MFileObject::setName(const MString& fileName) { return setRawName(fileName); }
MStatus MFileObject::setFullName(const MString& fileName) { return setRawFullName(fileName); }
MString MFileObject::name() const { return name_; }
MString MFileObject::path() const { return expandedPath(); }
MString MFileObject::fullName() const { return expandedFullName(); }
bool MFileObject::isAbsolutePath(const MString& fileName) { return isAbsolute(toText(fileName)); }

MString MFileObject::getResolvedFullName(const MString& rawFullName) {
    bool ignored = false;
    return getResolvedFullName(rawFullName, ignored, kInputFile);
}

MString MFileObject::getResolvedFullName(const MString& rawFullName, bool& exists, MFileResolveMethod method) {
    MFileObject file;
    file.setRawFullName(rawFullName);
    file.setResolveMethod(method);
    const MString full = file.resolvedFullName();
    exists = full.length() > 0;
    return exists ? full : file.expandedFullName();
}
