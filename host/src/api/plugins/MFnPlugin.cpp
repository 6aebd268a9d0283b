#include <maya/MFnPlugin.h>

#include "api/fn/FnSupport.h"
#include "api/plugins/PluginManager.h"
#include "api/px/CommandRunner.h"
#include "api/px/PxNode.h"
#include "base/Messages.h"
#include "mel/Interpreter.h"
#include "mel/Services.h"
#include "values/Text.h"

#include <maya/MTypeId.h>

#include <algorithm>

using namespace host;
using host::api::Access;
using host::api::fromText;
using host::api::Plugin;
using host::api::toText;

MFnPlugin::MFnPlugin() = default;
MFnPlugin::~MFnPlugin() = default;

MFnPlugin::MFnPlugin(MObject& object, const char* vendor, const char* version, const char* requiredApiVersion,
                     MStatus* ReturnStatus) {
    const MStatus status = attach(object, MFn::kPlugin);
    if (ReturnStatus) *ReturnStatus = status;
    // At unload the names of the load stay.
    Plugin* p = Access::plugin(object_);
    if (!p || !p->loading) return;
    p->vendor = vendor ? vendor : "";
    p->version = version ? version : "";
    p->apiVersion = requiredApiVersion ? requiredApiVersion : "";
}

MFn::Type MFnPlugin::type() const { return MFn::kPlugin; }

namespace {

MString field(const MObject& object, std::string Plugin::*member, MStatus* out) {
    const Plugin* p = Access::plugin(object);
    setStatus(out, p ? MStatus::kSuccess : MStatus::kFailure);
    return p ? fromText(p->*member) : MString();
}

} // namespace

MString MFnPlugin::vendor(MStatus* s) const { return field(object_, &Plugin::vendor, s); }
MString MFnPlugin::version(MStatus* s) const { return field(object_, &Plugin::version, s); }
MString MFnPlugin::apiVersion(MStatus* s) const { return field(object_, &Plugin::apiVersion, s); }
MString MFnPlugin::name(MStatus* s) const { return field(object_, &Plugin::name, s); }

MString MFnPlugin::loadPath(MStatus* ReturnStatus) const {
    const Plugin* p = Access::plugin(object_);
    setStatus(ReturnStatus, p ? MStatus::kSuccess : MStatus::kFailure);
    return p ? fromText(p->path.parent_path().generic_string()) : MString();
}

MStatus MFnPlugin::setName(const MString& newName, bool) {
    Plugin* p = Access::plugin(object_);
    if (!p || newName.length() == 0) return MStatus::kFailure;
    p->name = toText(newName);
    return MStatus::kSuccess;
}

MStatus MFnPlugin::setVersion(const MString& newVersion) {
    Plugin* p = Access::plugin(object_);
    if (!p) return MStatus::kFailure;
    p->version = toText(newVersion);
    return MStatus::kSuccess;
}

MStatus MFnPlugin::registerCommand(const MString& commandName, MCreatorFunction creatorFunction,
                                   MCreateSyntaxFunction createSyntaxFunction) {
    Plugin* p = Access::plugin(object_);
    const std::string name = toText(commandName);
    if (!p) return MStatus::kFailure;
    if (name.empty() || !creatorFunction) return MStatus::kInvalidParameter;
    auto& mel = Services::current().interpreter();
    if (mel.hasCommand(name)) {
        showError("A command with the name '" + name + "' is registered already.");
        return MStatus::kFailure;
    }
    std::shared_ptr<const MSyntax> syntax;
    if (createSyntaxFunction) {
        try {
            syntax = std::make_shared<const MSyntax>(createSyntaxFunction());
        } catch (const std::exception& e) {
            showError(p->name + ": exception in the syntax of '" + name + "': " + e.what());
            return MStatus::kFailure;
        } catch (...) {
            showError(p->name + ": exception in the syntax of '" + name + "'.");
            return MStatus::kFailure;
        }
    }
    mel.registerCommand(name, [name, creatorFunction, syntax](mel::Call& call) {
        return api::runPluginCommand(name, creatorFunction, syntax, call);
    });
    p->commands.push_back(name);
    return MStatus::kSuccess;
}

MStatus MFnPlugin::deregisterCommand(const MString& commandName) {
    Plugin* p = Access::plugin(object_);
    if (!p) return MStatus::kFailure;
    const auto at = std::find(p->commands.begin(), p->commands.end(), toText(commandName));
    if (at == p->commands.end()) return MStatus::kInvalidParameter;
    // Undo entries may hold objects of the command.
    scene::Scene::current().undo.clear();
    Services::current().interpreter().unregisterCommand(*at);
    p->commands.erase(at);
    return MStatus::kSuccess;
}

MStatus MFnPlugin::registerNode(const MString& typeName, const MTypeId& typeId, MCreatorFunction creatorFunction,
                                MInitializeFunction initFunction, MPxNode::Type type, const MString* classification) {
    Plugin* p = Access::plugin(object_);
    if (!p) return MStatus::kFailure;
    return api::registerPluginType(*p, toText(typeName), typeId.id(), creatorFunction, initFunction, type,
                                   classification ? toText(*classification) : std::string());
}

MStatus MFnPlugin::deregisterNode(const MTypeId& typeId) {
    Plugin* p = Access::plugin(object_);
    if (!p) return MStatus::kFailure;
    auto& scene = scene::Scene::current();
    scene::NodeType* type = scene.findType(typeId.id());
    if (!type || type->plugin != p->name) return MStatus::kInvalidParameter;
    if (type->liveNodes > 0) {
        scene.undo.clear();
        scene.forgetDeleted();
    }
    const std::string name = type->name;
    if (!scene.unregisterType(*type)) return MStatus::kFailure;
    std::erase(p->nodeTypes, name);
    return MStatus::kSuccess;
}

MObject MFnPlugin::findPlugin(const MString& pluginName) {
    Plugin* p = api::PluginManager::shared().find(toText(pluginName));
    return p ? Access::object(std::make_shared<api::PluginHandle>(p)) : MObject();
}

bool MFnPlugin::isNodeRegistered(const MString& typeName) {
    return scene::Scene::current().findType(toText(typeName)) != nullptr;
}

ORVO_CLASS_NAME(MFnPlugin)
