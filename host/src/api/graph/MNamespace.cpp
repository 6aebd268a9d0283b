#include <maya/MNamespace.h>

#include "api/graph/Handle.h"
#include "base/Letters.h"
#include "scene/Namespaces.h"
#include "values/StatusOut.h"
#include "values/Text.h"

using namespace host;
using host::api::Access;
using host::api::fromText;
using host::api::guarded;
using host::api::toText;
using scene::NamespaceContents;
using scene::Scene;

namespace {

/// Carries out what may be refused; nothing that a plug-in does this way is a step of undo.
template <class F>
MStatus changed(F&& f) {
    const scene::UndoQueue::Suspend quiet(Scene::current().undo);
    return guarded(f);
}

/// What a look-up gives, or an empty answer with the status that says why.
template <class F>
auto found(MStatus* status, F&& f) -> decltype(f(Scene::current())) {
    decltype(f(Scene::current())) answer{};
    const MStatus did = guarded([&] { answer = f(Scene::current()); });
    if (status) *status = did;
    return answer;
}

std::string existing(const MString& name) { return scene::existingNamespace(Scene::current(), toText(name)); }

MString shown(const std::string& name) { return name.empty() ? MString(":") : fromText(name); }

std::string& current() { return scene::References::of(Scene::current()).current; }

} // namespace

MStatus MNamespace::addNamespace(const MString& name, const MString* parent) {
    return changed(
        [&] { scene::addNamespace(Scene::current(), toText(name), parent ? existing(*parent) : current()); });
}

MString MNamespace::validateName(const MString& name, MStatus* ReturnStatus) {
    std::string valid = toText(name);
    for (char& c : valid)
        if (!Scene::isValidName(std::string("a") + c)) c = '_';
    if (!valid.empty() && host::isDigit(valid.front())) valid.insert(valid.begin(), '_');
    setStatus(ReturnStatus, valid.empty() ? MStatus::kInvalidParameter : MStatus::kSuccess);
    return fromText(valid);
}

MString MNamespace::currentNamespace(MStatus* ReturnStatus) {
    setStatus(ReturnStatus, MStatus::kSuccess);
    return shown(current());
}

MStatus MNamespace::setCurrentNamespace(const MString& name) {
    return guarded([&] { current() = existing(name); });
}

MStringArray MNamespace::getNamespaces(const bool recurse, MStatus* ReturnStatus) {
    return getNamespaces(MString(":") + fromText(current()), recurse, ReturnStatus);
}

MStringArray MNamespace::getNamespaces(const MString& parentNamespace, const bool recurse, MStatus* ReturnStatus) {
    return found(ReturnStatus, [&](Scene& scene) {
        MStringArray names;
        for (const std::string& name : namespacesIn(scene, existing(parentNamespace), recurse))
            names.append(fromText(name));
        return names;
    });
}

bool MNamespace::namespaceExists(const MString& name, MStatus* ReturnStatus) {
    return found(ReturnStatus, [&](Scene& scene) {
        return scene::References::of(scene).exists(scene::namespaceNamed(scene, toText(name)));
    });
}

MString MNamespace::parentNamespace(MStatus* ReturnStatus) {
    setStatus(ReturnStatus, MStatus::kSuccess);
    return shown(std::string(scene::namespaceOf(current())));
}

MStatus MNamespace::removeNamespace(const MString& name, bool removeContents) {
    return changed([&] {
        scene::removeNamespace(Scene::current(), existing(name),
                               removeContents ? NamespaceContents::Delete : NamespaceContents::MustBeNone);
    });
}

MStatus MNamespace::renameNamespace(const MString& oldName, const MString& newName, const MString* parent) {
    return changed([&] {
        const MString whole = parent ? MString(":") + fromText(existing(*parent)) + ":" + oldName : oldName;
        scene::renameNamespace(Scene::current(), existing(whole), toText(newName));
    });
}

MObjectArray MNamespace::getNamespaceObjects(const MString& parentNamespace, const bool recurse,
                                             MStatus* ReturnStatus) {
    return found(ReturnStatus, [&](Scene& scene) {
        MObjectArray objects;
        for (scene::Node* node : nodesInNamespace(scene, existing(parentNamespace), recurse))
            objects.append(Access::object(node));
        return objects;
    });
}

MStatus MNamespace::moveNamespace(const MString& src, const MString& dst, const bool force) {
    return changed([&] { scene::moveNamespace(Scene::current(), existing(src), existing(dst), force); });
}

MString MNamespace::rootNamespace(MStatus* ReturnStatus) {
    setStatus(ReturnStatus, MStatus::kSuccess);
    return MString(":");
}

bool MNamespace::relativeNames(MStatus* ReturnStatus) {
    setStatus(ReturnStatus, MStatus::kSuccess);
    return false;
}

MStatus MNamespace::setRelativeNames(bool newState) { return newState ? MStatus::kNotImplemented : MStatus::kSuccess; }

MString MNamespace::getNamespaceFromName(const MString& fullName, MStatus* ReturnStatus) {
    setStatus(ReturnStatus, MStatus::kSuccess);
    return fromText(std::string(scene::namespaceOf(toText(fullName))));
}

MString MNamespace::stripNamespaceFromName(const MString& fullName, MStatus* ReturnStatus) {
    setStatus(ReturnStatus, MStatus::kSuccess);
    const std::string name = toText(fullName);
    return fromText(name.substr(name.rfind(':') + 1)); // all of it without a colon
}

MString MNamespace::makeNamepathAbsolute(const MString& name, MStatus* ReturnStatus) {
    setStatus(ReturnStatus, MStatus::kSuccess);
    return MString(":") + fromText(scene::namespaceNamed(Scene::current(), toText(name)));
}

const char* MNamespace::className() { return "MNamespace"; }
