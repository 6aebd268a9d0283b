#include "api/graph/Callbacks.h"
#include "api/graph/Handle.h"
#include "values/StatusOut.h"
#include "values/Text.h"
#include "values/TimeTicks.h"

#include <maya/MDGMessage.h>
#include <maya/MDagMessage.h>
#include <maya/MEventMessage.h>
#include <maya/MNodeMessage.h>

#include <algorithm>

using namespace host;
using host::api::Access;
using host::api::AttributeRecord;
using host::api::Callbacks;
using host::api::ConnectionRecord;
using host::api::DagRecord;
using host::api::fromText;
using host::api::NodeRecord;
using host::api::SceneRecord;
using host::api::Topic;
using host::api::toText;

namespace {

/// Registers a function; one that is null gives kInvalidParameter.
template <class Function>
MCallbackId add(Topic topic, const scene::Node* node, Function function, Callbacks::Call call, MStatus* status) {
    setStatus(status, function ? MStatus::kSuccess : MStatus::kInvalidParameter);
    if (!function) return 0;
    return Callbacks::shared().add(topic, node, reinterpret_cast<const void*>(function), std::move(call));
}

/// The same for a node, which has to be there.
template <class Function>
MCallbackId addTo(Topic topic, const MObject& object, Function function, Callbacks::Call call, MStatus* status) {
    const auto node = Access::node(object);
    if (!node) {
        setStatus(status, MStatus::kInvalidParameter);
        return 0;
    }
    return add(topic, node.get(), function, std::move(call), status);
}

template <class Record>
Record& as(void* what) {
    return *static_cast<Record*>(what);
}

} // namespace

MStatus MMessage::removeCallback(MCallbackId id) {
    return Callbacks::shared().remove(id) ? MStatus::kSuccess : MStatus::kInvalidParameter;
}

MStatus MMessage::removeCallbacks(MCallbackIdArray& ids) {
    MStatus status;
    for (const MCallbackId id : ids)
        if (!removeCallback(id)) status = MStatus::kInvalidParameter;
    return status;
}

MCallbackId MMessage::currentCallbackId(MStatus* ReturnStatus) {
    setStatus(ReturnStatus, Callbacks::shared().running() ? MStatus::kSuccess : MStatus::kFailure);
    return Callbacks::shared().current();
}

MStatus MMessage::nodeCallbacks(MObject& node, MCallbackIdArray& ids) {
    ids.clear();
    const auto n = Access::node(node);
    if (!n) return MStatus::kInvalidParameter;
    for (const MCallbackId id : Callbacks::shared().of(*n)) ids.append(id);
    return MStatus::kSuccess;
}

MStatus MMessage::removeCallbacks(MIntArray& ids) {
    MCallbackIdArray all;
    for (const int id : ids) all.append(static_cast<MCallbackId>(id));
    return removeCallbacks(all);
}

MStatus MMessage::nodeCallbacks(MObject& node, MIntArray& ids) {
    MCallbackIdArray all;
    const MStatus status = nodeCallbacks(node, all);
    ids.clear();
    for (const MCallbackId id : all) ids.append(static_cast<int>(id));
    return status;
}

namespace {
bool callableScript = false;
}

void MMessage::setRegisteringCallableScript() { callableScript = true; }
bool MMessage::registeringCallableScript() { return callableScript; }
const char* MMessage::className() { return "MMessage"; }

MCallbackId MNodeMessage::addAttributeChangedCallback(MObject& node, MAttr2PlugFunction func, void* data, MStatus* s) {
    return addTo(
        Topic::AttributeChanged, node, func,
        [func, data](void* what) {
            AttributeRecord record = as<AttributeRecord>(what);
            func(static_cast<AttributeMessage>(record.message), record.plug, record.other, data);
        },
        s);
}

MCallbackId MNodeMessage::addAttributeAddedOrRemovedCallback(MObject& node, MAttrPlugFunction func, void* data,
                                                             MStatus* s) {
    return addTo(
        Topic::AttributeList, node, func,
        [func, data](void* what) {
            AttributeRecord record = as<AttributeRecord>(what);
            func(static_cast<AttributeMessage>(record.message), record.plug, data);
        },
        s);
}

MCallbackId MNodeMessage::addNodeDirtyCallback(MObject& node, MNodeFunction func, void* data, MStatus* s) {
    return addTo(
        Topic::Dirty, node, func,
        [func, data](void* what) {
            MObject object = as<NodeRecord>(what).node;
            func(object, data);
        },
        s);
}

MCallbackId MNodeMessage::addNodeDirtyPlugCallback(MObject& node, MNodePlugFunction func, void* data, MStatus* s) {
    return addTo(
        Topic::DirtyPlug, node, func,
        [func, data](void* what) {
            NodeRecord record = as<NodeRecord>(what);
            func(record.node, record.plug, data);
        },
        s);
}

MCallbackId MNodeMessage::addNameChangedCallback(MObject& node, MNodeStringFunction func, void* data, MStatus* s) {
    const auto call = [func, data](void* what) {
        NodeRecord record = as<NodeRecord>(what);
        func(record.node, fromText(record.text), data);
    };
    return node.isNull() ? add(Topic::Name, nullptr, func, call, s) : addTo(Topic::Name, node, func, call, s);
}

MCallbackId MNodeMessage::addUuidChangedCallback(MObject& node, MNodeUuidFunction func, void* data, MStatus* s) {
    return addTo(
        Topic::Uuid, node, func,
        [func, data](void* what) {
            NodeRecord record = as<NodeRecord>(what);
            func(record.node, MUuid(fromText(record.text)), data);
        },
        s);
}

MCallbackId MNodeMessage::addNodeAboutToDeleteCallback(MObject& node, MNodeModifierFunction func, void* data,
                                                       MStatus* s) {
    return addTo(
        Topic::AboutToDelete, node, func,
        [func, data](void* what) {
            NodeRecord record = as<NodeRecord>(what);
            func(record.node, *record.modifier, data);
        },
        s);
}

MCallbackId MNodeMessage::addNodePreRemovalCallback(MObject& node, MNodeFunction func, void* data, MStatus* s) {
    return addTo(
        Topic::PreRemoval, node, func,
        [func, data](void* what) {
            MObject object = as<NodeRecord>(what).node;
            func(object, data);
        },
        s);
}

MCallbackId MNodeMessage::addNodeDestroyedCallback(MObject& node, MBasicFunction func, void* data, MStatus* s) {
    return addTo(
        Topic::Destroyed, node, func, [func, data](void*) { func(data); }, s);
}

MCallbackId MNodeMessage::addKeyableChangeOverride(MPlug& plug, MKeyableFunction func, void* data, MStatus* s) {
    return addTo(
        Topic::KeyableOverride, plug.node(), func,
        [func, data, own = plug](void* what) {
            auto& record = as<AttributeRecord>(what);
            MPlug asked = record.plug;
            if (asked == own) func(asked, data, static_cast<KeyableChangeMsg>(record.message), record.decision);
        },
        s);
}

const char* MNodeMessage::className() { return "MNodeMessage"; }

namespace {

MCallbackId addTime(MMessage::MTimeFunction func, void* data, MStatus* s) {
    return add(
        Topic::Time, nullptr, func,
        [func, data](void*) {
            MTime time = timeOf(scene::Scene::current().time());
            func(time, data);
        },
        s);
}

MCallbackId addNode(Topic topic, MMessage::MNodeFunction func, const MString& nodeType, void* data, MStatus* s) {
    const std::string type = toText(nodeType);
    const bool all = type == kDefaultNodeType || type == "node";
    if (!all && !scene::Scene::current().findType(type)) {
        setStatus(s, MStatus::kInvalidParameter);
        return 0;
    }
    return add(
        topic, nullptr, func,
        [func, data, type, all](void* what) {
            MObject object = as<NodeRecord>(what).node;
            const auto node = Access::node(object);
            if (node && (all || node->type.isA(type))) func(object, data);
        },
        s);
}

MCallbackId addConnection(Topic topic, MMessage::MPlugFunction func, void* data, MStatus* s) {
    return add(
        topic, nullptr, func,
        [func, data](void* what) {
            ConnectionRecord record = as<ConnectionRecord>(what);
            func(record.source, record.destination, record.made, data);
        },
        s);
}

} // namespace

MCallbackId MDGMessage::addTimeChangeCallback(MTimeFunction f, void* d, MStatus* s) { return addTime(f, d, s); }
MCallbackId MDGMessage::addDelayedTimeChangeCallback(MTimeFunction f, void* d, MStatus* s) { return addTime(f, d, s); }
MCallbackId MDGMessage::addForceUpdateCallback(MTimeFunction f, void* d, MStatus* s) { return addTime(f, d, s); }
MCallbackId MDGMessage::addDelayedTimeChangeRunupCallback(MTimeFunction f, void*, MStatus* s) {
    // There is no simulation that would run up to a time.
    return add(
        Topic::Never, nullptr, f, [](void*) {}, s);
}

MCallbackId MDGMessage::addNodeAddedCallback(MNodeFunction f, const MString& type, void* d, MStatus* s) {
    return addNode(Topic::NodeAdded, f, type, d, s);
}
MCallbackId MDGMessage::addNodeRemovedCallback(MNodeFunction f, const MString& type, void* d, MStatus* s) {
    return addNode(Topic::NodeRemoved, f, type, d, s);
}
MCallbackId MDGMessage::addConnectionCallback(MPlugFunction f, void* d, MStatus* s) {
    return addConnection(Topic::Connection, f, d, s);
}
MCallbackId MDGMessage::addPreConnectionCallback(MPlugFunction f, void* d, MStatus* s) {
    return addConnection(Topic::PreConnection, f, d, s);
}

MCallbackId MDGMessage::addNodeChangeUuidCheckCallback(MCheckNodeUuidFunction func, void* data, MStatus* s) {
    return add(
        Topic::UuidCheck, nullptr, func,
        [func, data](void* what) {
            auto& record = as<NodeRecord>(what);
            MObject node = record.node;
            MUuid uuid(fromText(record.text));
            const Action action = func(record.allowed, node, uuid, data);
            if (action != kDefaultAction) record.allowed = action == kDoAction;
            record.text = toText(uuid.asString());
        },
        s);
}

const char* MDGMessage::className() { return "MDGMessage"; }

namespace {

/// Whether a message tells of the path's node: as the child, or as the parent.
bool concerns(const DagRecord& record, const scene::Node* node) {
    const bool asChild = record.message == MDagMessage::kParentAdded || record.message == MDagMessage::kParentRemoved;
    return !node || (asChild ? record.childNode : record.parentNode) == node;
}

/// `message` is kInvalidMsg for all.
template <class Function, class Give>
MCallbackId addDag(int message, const MDagPath* path, Function func, Give give, MStatus* s) {
    const auto node = path ? Access::node(path->node()) : nullptr;
    const bool known = message >= MDagMessage::kInvalidMsg && message < MDagMessage::kLast && (!path || node);
    if (!known) {
        setStatus(s, MStatus::kInvalidParameter);
        return 0;
    }
    return add(
        Topic::Dag, node.get(), func,
        [message, own = node.get(), give](void* what) {
            DagRecord record = as<DagRecord>(what);
            if (message != MDagMessage::kInvalidMsg && message != record.message) return;
            if (concerns(record, own)) give(record);
        },
        s);
}

MCallbackId addParentChild(int message, const MDagPath* path, MMessage::MParentChildFunction func, void* data,
                           MStatus* s) {
    return addDag(
        message, path, func, [func, data](DagRecord& r) { func(r.child, r.parent, data); }, s);
}

MCallbackId addChanges(int message, const MDagPath* path, MDagMessage::MMessageParentChildFunction func, void* data,
                       MStatus* s) {
    return addDag(
        message, path, func,
        [func, data](DagRecord& r) { func(static_cast<MDagMessage::DagMessage>(r.message), r.child, r.parent, data); },
        s);
}

} // namespace

#define ORVO_DAG_CALLBACK(Name)                                                                                        \
    MCallbackId MDagMessage::add##Name##Callback(MParentChildFunction f, void* d, MStatus* s) {                        \
        return addParentChild(k##Name, nullptr, f, d, s);                                                              \
    }                                                                                                                  \
    MCallbackId MDagMessage::add##Name##Callback(MDagPath& node, MParentChildFunction f, void* d, MStatus* s) {        \
        return addParentChild(k##Name, &node, f, d, s);                                                                \
    }                                                                                                                  \
    MCallbackId MDagMessage::add##Name##DagPathCallback(MDagPath& node, MParentChildFunction f, void* d, MStatus* s) { \
        return addParentChild(k##Name, &node, f, d, s);                                                                \
    }

ORVO_DAG_CALLBACK(ParentAdded)
ORVO_DAG_CALLBACK(ParentRemoved)
ORVO_DAG_CALLBACK(ChildAdded)
ORVO_DAG_CALLBACK(ChildRemoved)
ORVO_DAG_CALLBACK(ChildReordered)
ORVO_DAG_CALLBACK(InstanceAdded)
ORVO_DAG_CALLBACK(InstanceRemoved)

MCallbackId MDagMessage::addDagCallback(DagMessage m, MMessageParentChildFunction f, void* d, MStatus* s) {
    return addChanges(m, nullptr, f, d, s);
}
MCallbackId MDagMessage::addDagCallback(DagMessage m, MParentChildFunction f, void* d, MStatus* s) {
    return addParentChild(m, nullptr, f, d, s);
}
MCallbackId MDagMessage::addDagCallback(MDagPath& node, DagMessage m, MParentChildFunction f, void* d, MStatus* s) {
    return addParentChild(m, &node, f, d, s);
}
MCallbackId MDagMessage::addDagCallback(MDagPath& node, DagMessage m, MMessageParentChildFunction f, void* d,
                                        MStatus* s) {
    return addChanges(m, &node, f, d, s);
}
MCallbackId MDagMessage::addDagDagPathCallback(MDagPath& node, DagMessage m, MMessageParentChildFunction f, void* d,
                                               MStatus* s) {
    return addChanges(m, &node, f, d, s);
}
MCallbackId MDagMessage::addAllDagChangesCallback(MMessageParentChildFunction f, void* d, MStatus* s) {
    return addChanges(kInvalidMsg, nullptr, f, d, s);
}
MCallbackId MDagMessage::addAllDagChangesCallback(MDagPath& node, MMessageParentChildFunction f, void* d, MStatus* s) {
    return addChanges(kInvalidMsg, &node, f, d, s);
}
MCallbackId MDagMessage::addAllDagChangesDagPathCallback(MDagPath& node, MMessageParentChildFunction f, void* d,
                                                         MStatus* s) {
    return addChanges(kInvalidMsg, &node, f, d, s);
}

MCallbackId MDagMessage::addWorldMatrixModifiedCallback(MDagPath& node, MWorldMatrixModifiedFunction func, void* data,
                                                        MStatus* s) {
    return addTo(
        Topic::WorldMatrix, node.node(), func,
        [func, data](void* what) {
            MObject object = as<NodeRecord>(what).node;
            MatrixModifiedFlags modified = kAll;
            func(object, modified, data);
        },
        s);
}

const char* MDagMessage::className() { return "MDagMessage"; }

namespace {

bool isCheck(MSceneMessage::Message m) {
    return m == MSceneMessage::kBeforeNewCheck || m == MSceneMessage::kBeforeOpenCheck ||
           m == MSceneMessage::kBeforeSaveCheck || m == MSceneMessage::kBeforeImportCheck ||
           m == MSceneMessage::kBeforeExportCheck || m == MSceneMessage::kBeforeLoadReferenceCheck ||
           m == MSceneMessage::kBeforeReferenceCheck;
}

bool isOfPlugins(MSceneMessage::Message m) {
    return m == MSceneMessage::kBeforePluginLoad || m == MSceneMessage::kAfterPluginLoad ||
           m == MSceneMessage::kBeforePluginUnload || m == MSceneMessage::kAfterPluginUnload;
}

MCallbackId refused(MStatus* s) {
    setStatus(s, MStatus::kInvalidParameter);
    return 0;
}

} // namespace

MCallbackId MSceneMessage::addCallback(Message msg, MBasicFunction func, void* data, MStatus* s) {
    if (msg < kSceneUpdate || msg >= kLast || isCheck(msg)) return refused(s);
    return add(
        Topic::Scene, nullptr, func,
        [func, data, msg](void* what) {
            if (as<SceneRecord>(what).message == msg) func(data);
        },
        s);
}

MCallbackId MSceneMessage::addCheckCallback(Message msg, MCheckFunction func, void* data, MStatus* s) {
    if (!isCheck(msg)) return refused(s);
    return add(
        Topic::SceneCheck, nullptr, func,
        [func, data, msg](void* what) {
            auto& record = as<SceneRecord>(what);
            if (record.message != msg) return;
            bool allowed = true;
            func(&allowed, data);
            record.allowed &= allowed;
        },
        s);
}

MCallbackId MSceneMessage::addCheckFileCallback(Message msg, MCheckFileFunction func, void* data, MStatus* s) {
    if (!isCheck(msg) || msg == kBeforeNewCheck) return refused(s);
    return add(
        Topic::SceneCheck, nullptr, func,
        [func, data, msg](void* what) {
            auto& record = as<SceneRecord>(what);
            if (record.message != msg) return;
            MFileObject file;
            file.setRawFullName(fromText(record.text));
            bool allowed = true;
            func(&allowed, file, data);
            record.allowed &= allowed;
            record.text = toText(file.rawFullName());
        },
        s);
}

MCallbackId MSceneMessage::addStringArrayCallback(Message msg, MStringArrayFunction func, void* data, MStatus* s) {
    if (!isOfPlugins(msg)) return refused(s);
    return add(
        Topic::SceneStrings, nullptr, func,
        [func, data, msg](void* what) {
            const auto& record = as<SceneRecord>(what);
            if (record.message != msg) return;
            MStringArray words;
            for (const auto& word : record.words) words.append(fromText(word));
            func(words, data);
        },
        s);
}

MCallbackId MSceneMessage::addReferenceCallback(Message, MObjectFileFunction f, void*, MStatus* s) {
    return add(
        Topic::Never, nullptr, f, [](void*) {}, s);
}
MCallbackId MSceneMessage::addCheckReferenceCallback(Message, MCheckObjectFileFunction f, void*, MStatus* s) {
    return add(
        Topic::Never, nullptr, f, [](void*) {}, s);
}
MCallbackId MSceneMessage::addConnectionFailedCallback(MConnFailFunction f, void*, MStatus* s) {
    return add(
        Topic::Never, nullptr, f, [](void*) {}, s);
}
MCallbackId MSceneMessage::addNamespaceRenamedCallback(MTwoStringFunction f, void*, MStatus* s) {
    return add(
        Topic::Never, nullptr, f, [](void*) {}, s);
}
MCallbackId MSceneMessage::addCallback(Message msg, void (*func)(bool*, void*), void* data, MStatus* s) {
    return addCheckCallback(msg, func, data, s);
}
MCallbackId MSceneMessage::addCallback(Message msg, void (*func)(bool*, MFileObject&, void*), void* data, MStatus* s) {
    return addCheckFileCallback(msg, func, data, s);
}
MCallbackId MSceneMessage::addCallback(Message msg, void (*func)(const MStringArray&, void*), void* data, MStatus* s) {
    return addStringArrayCallback(msg, func, data, s);
}

const char* MSceneMessage::className() { return "MSceneMessage"; }

MCallbackId MEventMessage::addEventCallback(const MString& event, MBasicFunction func, void* data, MStatus* s) {
    const std::string name = toText(event);
    const auto& known = Callbacks::eventNames();
    if (std::find(known.begin(), known.end(), name) == known.end()) return refused(s);
    return add(
        Topic::Event, nullptr, func,
        [func, data, name](void* what) {
            if (as<SceneRecord>(what).text == name) func(data);
        },
        s);
}

MStatus MEventMessage::getEventNames(MStringArray& names) {
    names.clear();
    for (const auto& name : Callbacks::eventNames()) names.append(fromText(name));
    return MStatus::kSuccess;
}

const char* MEventMessage::className() { return "MEventMessage"; }
