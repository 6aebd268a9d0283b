#include <maya/MFileIO.h>

#include "api/graph/FileOperation.h"
#include "base/Messages.h"
#include "mel/Interpreter.h"
#include "mel/Services.h"
#include "scene/Scene.h"
#include "values/StatusOut.h"
#include "values/Text.h"

using namespace host;
using host::api::FileOperation;
using host::api::fromText;
using host::api::toText;
using Action = FileOperation::Action;

namespace {

bool lastFailed = false;
bool renameFirst = false;
std::string renameMessage;

/// Runs the command `file`. What fails is shown.
MStatus file(std::vector<mel::Value> arguments, mel::Value* answer = nullptr) {
    try {
        mel::Value value = Services::current().interpreter().call("file", std::move(arguments));
        if (answer) *answer = std::move(value);
        lastFailed = false;
        return MStatus::kSuccess;
    } catch (const mel::Error& e) {
        if (!e.silent) showError(e.what());
    } catch (const UserError& e) {
        showError(e.what());
    }
    lastFailed = true;
    return MStatus::kFailure;
}

std::vector<mel::Value> typed(std::vector<mel::Value> arguments, const char* type) {
    if (type && *type) arguments.insert(arguments.end(), {mel::Value("-type"), mel::Value(type)});
    return arguments;
}

MStatus withFile(const char* flag, const MString& name, const char* type, const char* nameSpace = nullptr) {
    auto arguments = typed({flag, "-force"}, type);
    if (nameSpace && *nameSpace) arguments.insert(arguments.end(), {mel::Value("-namespace"), mel::Value(nameSpace)});
    arguments.emplace_back(toText(name));
    return file(std::move(arguments));
}

MString lastFile(Action action, MStatus* status) {
    setStatus(status, MStatus::kSuccess);
    return fromText(FileOperation::file(action));
}

} // namespace

MFileIO::MFileIO() = default;
MFileIO::MFileIO(const MString&) {}
MFileIO::~MFileIO() = default;

MString MFileIO::currentFile() {
    mel::Value name;
    return file({"-query", "-location"}, &name) ? fromText(name.toString()) : MString();
}

MStatus MFileIO::setCurrentFile(const MString& fileName) { return file({"-rename", toText(fileName)}); }
MString MFileIO::fileType() { return "mayaAscii"; }

MStatus MFileIO::getFileTypes(MStringArray& types) {
    types.clear();
    for (const char* type : {"mayaAscii", "OBJ", "FBX", "glTF", "GLB"}) types.append(type);
    return MStatus::kSuccess;
}

MStatus MFileIO::newFile(bool) { return file({"-newFile", "-force"}); }

MStatus MFileIO::open(const MString& fileName, const char* type, bool, ReferenceMode, bool) {
    return withFile("-open", fileName, type);
}

MStatus MFileIO::save(bool force) {
    if (renameFirst && !force) {
        showError(renameMessage.empty() ? "The scene has to be given another name before it is saved." : renameMessage);
        lastFailed = true;
        return MStatus::kFailure;
    }
    return file({"-save"});
}

MStatus MFileIO::saveAs(const MString& fileName, const char* type, bool) {
    const std::string before = scene::Scene::current().fileName;
    MStatus status = setCurrentFile(fileName);
    if (status) status = file(typed({"-save"}, type));
    // A scene that could not be saved keeps the name that it has on the disk.
    if (!status) scene::Scene::current().fileName = before;
    if (status) renameFirst = false;
    return status;
}

MStatus MFileIO::importFile(const MString& fileName, const char* type, bool, const char* nameSpace, bool) {
    return withFile("-import", fileName, type, nameSpace);
}

MStatus MFileIO::import(const MString& fileName, const char* type, bool preserveReferences, const char* nameSpace) {
    return importFile(fileName, type, preserveReferences, nameSpace);
}

MStatus MFileIO::exportAll(const MString& fileName, const char* type, bool) {
    return withFile("-exportAll", fileName, type);
}

MStatus MFileIO::getFiles(MStringArray& files, bool, bool wantReferencesOnly) {
    files.clear();
    mel::Value names;
    const MStatus status = file({"-query", "-list"}, &names);
    if (!status) return status;
    bool first = true;
    for (const auto& name : names.toStringArray())
        if (!std::exchange(first, false) || !wantReferencesOnly) files.append(fromText(name));
    return status;
}

bool MFileIO::isReadingFile() { return FileOperation::going(Action::Open) || FileOperation::going(Action::Import); }
bool MFileIO::isWritingFile() { return FileOperation::going(Action::Save) || FileOperation::going(Action::Export); }
bool MFileIO::isOpeningFile() { return FileOperation::going(Action::Open); }
bool MFileIO::isNewingFile() { return FileOperation::going(Action::New); }
bool MFileIO::isImportingFile() { return FileOperation::going(Action::Import); }

bool MFileIO::mustRenameToSave(MStatus* ReturnStatus) {
    setStatus(ReturnStatus, MStatus::kSuccess);
    return renameFirst;
}

MStatus MFileIO::setMustRenameToSave(bool mustRename) {
    renameFirst = mustRename;
    return MStatus::kSuccess;
}

MString MFileIO::mustRenameToSaveMsg(MStatus* ReturnStatus) {
    setStatus(ReturnStatus, MStatus::kSuccess);
    return fromText(renameMessage);
}

MStatus MFileIO::setMustRenameToSaveMsg(const MString& message) {
    renameMessage = toText(message);
    return MStatus::kSuccess;
}

MString MFileIO::beforeOpenFilename(MStatus* s) { return lastFile(Action::Open, s); }
MString MFileIO::beforeImportFilename(MStatus* s) { return lastFile(Action::Import, s); }
MString MFileIO::beforeSaveFilename(MStatus* s) { return lastFile(Action::Save, s); }
MString MFileIO::beforeExportFilename(MStatus* s) { return lastFile(Action::Export, s); }

bool MFileIO::getErrorStatus(MStatus* ReturnStatus) {
    setStatus(ReturnStatus, MStatus::kSuccess);
    return lastFailed;
}

MStatus MFileIO::resetError() {
    lastFailed = false;
    return MStatus::kSuccess;
}

MString MFileIO::fileCurrentlyLoading() {
    if (FileOperation::going(Action::Import)) return fromText(FileOperation::file(Action::Import));
    return FileOperation::going(Action::Open) ? fromText(FileOperation::file(Action::Open)) : MString();
}

const char* MFileIO::className() { return "MFileIO"; }
