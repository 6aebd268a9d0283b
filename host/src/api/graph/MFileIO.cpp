#include <maya/MFileIO.h>

#include "api/graph/FileOperation.h"
#include "api/graph/Handle.h"
#include "base/Messages.h"
#include "mel/Interpreter.h"
#include "mel/Services.h"
#include "scene/Namespaces.h"
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

scene::References& references() { return scene::References::of(scene::Scene::current()); }

/// The reference to a file, by the name that the scene has for it or by its place; null for none.
scene::Reference* referenceTo(const MString& file) {
    const std::string name = toText(file);
    for (const auto& r : references().all())
        if (r->file == name || r->path == name) return r.get();
    return nullptr;
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

MStatus MFileIO::exportSelected(const MString& fileName, const char* type, bool) {
    return withFile("-exportSelected", fileName, type);
}

MStatus MFileIO::getReferences(MStringArray& files, bool wantUnresolvedNames) {
    files.clear();
    for (const auto& r : references().all())
        if (!r->nested)
            files.append(fromText(wantUnresolvedNames || r->path.empty() ? r->file : r->path.generic_string()));
    return MStatus::kSuccess;
}

MStatus MFileIO::getReferenceNodes(const MString& fileName, MSelectionList& list) {
    list.clear();
    const scene::Reference* r = referenceTo(fileName);
    if (!r) return MStatus::kInvalidParameter;
    for (const auto& kept : r->contents)
        if (const scene::NodePtr node = kept.lock(); node && node->inScene) list.add(api::Access::object(node.get()));
    return MStatus::kSuccess;
}

MStatus MFileIO::getReferenceNodes(const MString& fileName, MStringArray& nodes) {
    MSelectionList list;
    const MStatus status = getReferenceNodes(fileName, list);
    list.getSelectionStrings(nodes);
    return status;
}

MString MFileIO::getReferenceFileByNode(MObject& referenceNode, MStatus* returnStatus) {
    const auto node = api::Access::node(referenceNode);
    const scene::Reference* r = node ? references().named(node->name) : nullptr;
    setStatus(returnStatus, r ? MStatus::kSuccess : MStatus::kFailure);
    return r ? fromText(r->path.empty() ? r->file : r->path.generic_string()) : MString();
}

MStatus MFileIO::reference(const MString& fileName, bool deferReference, bool, const MString& nameSpace) {
    if (deferReference) return MStatus::kFailure;
    return withFile("-reference", fileName, nullptr, nameSpace.asChar());
}

MStatus MFileIO::removeReference(const MString& fileName, NamespaceMergeMethod namespaceMergeMethod) {
    const scene::Reference* r = referenceTo(fileName);
    if (!r) return MStatus::kInvalidParameter;
    const std::string space = r->nameSpace;
    const MStatus status = file({"-removeReference", "-referenceNode", r->name});
    auto& scene = scene::Scene::current();
    if (!status || space.empty() || !references().exists(space)) return status;
    using scene::NamespaceContents;
    const scene::UndoQueue::Suspend quiet(scene.undo);
    const MStatus removed = api::guarded([&] {
        switch (namespaceMergeMethod) {
        case kRemoveNamespaceIfEmpty:
            if (nodesInNamespace(scene, space, true).empty())
                scene::removeNamespace(scene, space, NamespaceContents::MustBeNone);
            break;
        case kMergeNamespaceWithRootNamespace: scene::removeNamespace(scene, space, NamespaceContents::ToRoot); break;
        case kMergeNamespaceWithParentNamespace:
            scene::removeNamespace(scene, space, NamespaceContents::ToParent);
            break;
        case kForceDeleteNamespaceContent: scene::removeNamespace(scene, space, NamespaceContents::Delete); break;
        }
    });
    return removed;
}

namespace {

/// Loads or unloads the reference that has the node; without one there is none.
MString load(const char* flag, const std::string& node, MStatus* status) {
    mel::Value name;
    const MStatus done = references().named(node) ? file({flag, node}, &name) : MStatus::kInvalidParameter;
    setStatus(status, done.statusCode());
    return done ? fromText(name.toString()) : MString();
}

std::string nodeOf(const scene::Reference* reference) { return reference ? reference->name : std::string(); }
std::string nodeOf(const MObject& object) {
    const auto node = api::Access::node(object);
    return node ? node->name : std::string();
}

} // namespace

MString MFileIO::loadReference(const MString& referenceFileName, MStatus* s) {
    return load("-loadReference", nodeOf(referenceTo(referenceFileName)), s);
}
MString MFileIO::loadReferenceByNode(const MString& referenceNodeName, MStatus* s) {
    return load("-loadReference", toText(referenceNodeName), s);
}
MString MFileIO::loadReferenceByNode(MObject& referenceNode, MStatus* s) {
    return load("-loadReference", nodeOf(referenceNode), s);
}
MString MFileIO::unloadReference(const MString& referenceFileName, MStatus* s) {
    return load("-unloadReference", nodeOf(referenceTo(referenceFileName)), s);
}
MString MFileIO::unloadReferenceByNode(const MString& referenceNodeName, MStatus* s) {
    return load("-unloadReference", toText(referenceNodeName), s);
}
MString MFileIO::unloadReferenceByNode(MObject& referenceNode, MStatus* s) {
    return load("-unloadReference", nodeOf(referenceNode), s);
}

MStatus MFileIO::getFiles(MStringArray& files, bool wantUnresolvedNames, bool wantReferencesOnly) {
    MStringArray others;
    const MStatus status = getReferences(others, wantUnresolvedNames);
    files.clear();
    if (!wantReferencesOnly) files.append(currentFile());
    for (unsigned int i = 0; i < others.length(); ++i) files.append(others[i]);
    return status;
}

bool MFileIO::isReadingFile() { return FileOperation::going(Action::Open) || FileOperation::going(Action::Import); }
bool MFileIO::isWritingFile() { return FileOperation::going(Action::Save) || FileOperation::going(Action::Export); }
bool MFileIO::isOpeningFile() { return FileOperation::going(Action::Open); }
bool MFileIO::isNewingFile() { return FileOperation::going(Action::New); }
bool MFileIO::isReferencingFile() { return references().isReading(); }
bool MFileIO::isSavingReference() { return false; }
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
