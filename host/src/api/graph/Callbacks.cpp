#include "api/graph/Callbacks.h"

#include "api/graph/Handle.h"
#include "base/Messages.h"
#include "base/Units.h"

#include <maya/MDagMessage.h>
#include <maya/MNodeMessage.h>

#include <dlfcn.h>

#include <algorithm>
#include <unordered_set>

namespace host::api {
namespace {

/// A callback that what it does calls again goes so deep and no deeper.
constexpr int mostDepth = 100;

/// Where the module begins that holds the address; null when that is not known.
const void* moduleOf(const void* address) {
    Dl_info info{};
    return dladdr(address, &info) ? info.dli_fbase : nullptr;
}

/// Holds a node for as long as it is told of.
scene::NodePtr held(scene::Node& node) { return node.weak_from_this().lock(); }

} // namespace

Callbacks& Callbacks::shared() {
    // Never destroyed: nodes end with the process, and tell of it.
    static Callbacks& callbacks = *new Callbacks;
    return callbacks;
}

void Callbacks::watch() { scene::Scene::current().observer = all_.empty() ? nullptr : this; }

MCallbackId Callbacks::add(Topic topic, const scene::Node* node, const void* function, Call call) {
    const auto entry = std::make_shared<Entry>(Entry{++last_, topic, node, moduleOf(function), std::move(call)});
    all_.emplace(entry->id, entry);
    places_[{topic, node}].push_back(entry);
    ++counts_[static_cast<std::size_t>(topic)];
    if (topic == Topic::WorldMatrix) ++watchedMatrices_[node];
    watch();
    return entry->id;
}

bool Callbacks::remove(MCallbackId id) {
    const auto at = all_.find(id);
    if (at == all_.end()) return false;
    const EntryPtr entry = at->second;
    all_.erase(at);
    entry->removed = true;
    --counts_[static_cast<std::size_t>(entry->topic)];
    if (entry->topic == Topic::WorldMatrix && --watchedMatrices_[entry->node] == 0) watchedMatrices_.erase(entry->node);
    const auto place = places_.find({entry->topic, entry->node});
    std::erase(place->second, entry);
    if (place->second.empty()) places_.erase(place);
    watch();
    return true;
}

std::vector<MCallbackId> Callbacks::of(const scene::Node& node) const {
    std::vector<MCallbackId> ids;
    for (std::size_t t = 0; t < static_cast<std::size_t>(Topic::Count); ++t)
        if (const auto at = places_.find({static_cast<Topic>(t), &node}); at != places_.end())
            for (const auto& entry : at->second) ids.push_back(entry->id);
    std::sort(ids.begin(), ids.end());
    return ids;
}

int Callbacks::removeOfModule(const void* address) {
    const void* module = moduleOf(address);
    std::vector<MCallbackId> ids;
    for (const auto& [id, entry] : all_)
        if (module && entry->module == module) ids.push_back(id);
    for (const MCallbackId id : ids) remove(id);
    return static_cast<int>(ids.size());
}

void Callbacks::fire(Topic topic, const scene::Node* node, void* what) {
    const auto place = places_.find({topic, node});
    if (place == places_.end()) return;
    // Those of this moment: what is added now is called from the next time on.
    const std::vector<EntryPtr> entries = place->second;
    for (const EntryPtr& entry : entries) {
        if (entry->removed) continue;
        if (entry->depth >= mostDepth) {
            showError("A callback calls itself again without end; it is not called any more this time.");
            continue;
        }
        struct Mark {
            Callbacks& all;
            Entry& entry;
            Mark(Callbacks& a, Entry& e) : all(a), entry(e) {
                ++entry.depth;
                all.running_.push_back(entry.id);
            }
            ~Mark() {
                --entry.depth;
                all.running_.pop_back();
            }
        } mark(*this, *entry);
        try {
            entry->call(what);
        } catch (const std::exception& e) {
            showError(std::string("Exception in a callback: ") + e.what());
        } catch (...) {
            showError("Exception in a callback.");
        }
    }
}

void Callbacks::tell(MSceneMessage::Message message) {
    if (counts(Topic::Scene) == 0) return;
    SceneRecord record{message, {}, {}};
    fire(Topic::Scene, nullptr, &record);
}

void Callbacks::tell(MSceneMessage::Message message, const std::vector<std::string>& words) {
    tell(message);
    if (counts(Topic::SceneStrings) == 0) return;
    SceneRecord record{message, {}, words};
    fire(Topic::SceneStrings, nullptr, &record);
}

bool Callbacks::allowed(MSceneMessage::Message check, std::string* file) {
    if (counts(Topic::SceneCheck) == 0) return true;
    SceneRecord record{check, file ? *file : std::string(), {}};
    fire(Topic::SceneCheck, nullptr, &record);
    if (file) *file = record.text;
    return record.allowed;
}

void Callbacks::event(const std::string& name) {
    if (counts(Topic::Event) == 0) return;
    SceneRecord record{0, name, {}};
    fire(Topic::Event, nullptr, &record);
}

const std::vector<std::string>& Callbacks::eventNames() {
    static const std::vector<std::string> names{"DagObjectCreated",   "NameChanged",
                                                "NewSceneOpened",     "PostSceneRead",
                                                "PreFileNewOrOpened", "Redo",
                                                "SceneImported",      "SceneOpened",
                                                "SceneSaved",         "SelectionChanged",
                                                "ToolChanged",        "Undo",
                                                "angularUnitChanged", "idle",
                                                "linearUnitChanged",  "playbackRangeChanged",
                                                "quitApplication",    "timeChanged",
                                                "timeUnitChanged",    "workspaceChanged"};
    return names;
}

bool Callbacks::mayChangeUuid(scene::Node& node, std::string& uuid) {
    if (counts(Topic::UuidCheck) == 0) return true;
    const auto keep = held(node);
    NodeRecord record{Access::object(&node), uuid, {}};
    fire(Topic::UuidCheck, nullptr, &record);
    uuid = record.text;
    return record.allowed;
}

void Callbacks::uuidChanged(scene::Node& node, const std::string& before) {
    if (counts(Topic::Uuid) == 0) return;
    const auto keep = held(node);
    NodeRecord record{Access::object(&node), before, {}};
    fire(Topic::Uuid, &node, &record);
}

void Callbacks::nodeAdded(scene::Node& node) {
    const auto keep = held(node);
    if (counts(Topic::NodeAdded) > 0) {
        NodeRecord record{Access::object(&node), {}, {}};
        fire(Topic::NodeAdded, nullptr, &record);
    }
    if (node.dag()) event("DagObjectCreated");
}

void Callbacks::nodeRemoved(scene::Node& node) {
    if (counts(Topic::NodeRemoved) == 0) return;
    const auto keep = held(node);
    NodeRecord record{Access::object(&node), {}, {}};
    fire(Topic::NodeRemoved, nullptr, &record);
}

void Callbacks::nodeAboutToGo(scene::Node& node) {
    const auto keep = held(node);
    if (counts(Topic::AboutToDelete) > 0 && places_.contains({Topic::AboutToDelete, &node})) {
        const auto modifier = std::make_shared<MDGModifier>();
        NodeRecord record{Access::object(&node), {}, {}, modifier.get()};
        fire(Topic::AboutToDelete, &node, &record);
        modifier->doIt();
        node.scene.record([modifier] { modifier->doIt(); }, [modifier] { modifier->undoIt(); });
    }
    if (counts(Topic::PreRemoval) > 0) {
        NodeRecord record{Access::object(&node), {}, {}};
        fire(Topic::PreRemoval, &node, &record);
    }
}

void Callbacks::sceneAboutToGo() {
    if (counts(Topic::PreRemoval) == 0) return;
    std::vector<scene::NodePtr> nodes;
    for (const auto& [serial, node] : scene::Scene::current().nodes())
        if (places_.contains({Topic::PreRemoval, node.get()})) nodes.push_back(node);
    for (const auto& node : nodes) {
        NodeRecord record{Access::object(node.get()), {}, {}};
        fire(Topic::PreRemoval, node.get(), &record);
    }
}

void Callbacks::nodeDestroyed(const scene::Node& node) noexcept {
    try {
        if (counts(Topic::Destroyed) > 0) {
            NodeRecord record{MObject(), {}, {}};
            fire(Topic::Destroyed, &node, &record);
        }
        for (const MCallbackId id : of(node)) remove(id);
    } catch (...) {
        // Without memory to list them they stay, and are never called: the node is gone.
    }
}

void Callbacks::nodeRenamed(scene::Node& node, const std::string& before) {
    const auto keep = held(node);
    if (counts(Topic::Name) > 0) {
        NodeRecord record{Access::object(&node), before, {}};
        fire(Topic::Name, &node, &record);
        fire(Topic::Name, nullptr, &record);
    }
    event("NameChanged");
}

void Callbacks::attribute(int message, scene::Cell& cell, scene::Cell* other) {
    if (counts(Topic::AttributeChanged) == 0 || !places_.contains({Topic::AttributeChanged, &cell.node})) return;
    const auto keep = held(cell.node);
    AttributeRecord record{message, Access::plug(cell), other ? Access::plug(*other) : MPlug()};
    fire(Topic::AttributeChanged, keep.get(), &record);
}

void Callbacks::attributeChanged(scene::Node& node, const scene::Attribute& attribute, AttributeEvent what) {
    const int message = what == AttributeEvent::Added     ? MNodeMessage::kAttributeAdded
                        : what == AttributeEvent::Removed ? MNodeMessage::kAttributeRemoved
                                                          : MNodeMessage::kAttributeRenamed;
    const auto keep = held(node);
    for (const Topic topic : {Topic::AttributeList, Topic::AttributeChanged}) {
        if (counts(topic) == 0) continue;
        AttributeRecord record{message, MPlug(Access::object(&node), Access::object(&attribute)), MPlug()};
        fire(topic, &node, &record);
    }
}

void Callbacks::valueSet(scene::Cell& cell) { attribute(MNodeMessage::kAttributeSet, cell); }
void Callbacks::evaluated(scene::Cell& cell) { attribute(MNodeMessage::kAttributeEval, cell); }

void Callbacks::lockChanged(scene::Cell& cell) {
    attribute(cell.locked ? MNodeMessage::kAttributeLocked : MNodeMessage::kAttributeUnlocked, cell);
}

void Callbacks::keyableChanged(scene::Cell& cell) {
    const bool keyable = cell.keyable.value_or(cell.attribute.keyable);
    attribute(keyable ? MNodeMessage::kAttributeKeyable : MNodeMessage::kAttributeUnkeyable, cell);
}

bool Callbacks::mayChangeKeyable(scene::Cell& cell, bool keyable) {
    if (counts(Topic::KeyableOverride) == 0) return true;
    const auto keep = held(cell.node);
    AttributeRecord record{keyable ? MNodeMessage::kMakeKeyable : MNodeMessage::kMakeUnkeyable, Access::plug(cell),
                           MPlug()};
    fire(Topic::KeyableOverride, &cell.node, &record);
    return record.decision;
}

void Callbacks::elementRemoved(scene::Cell& array, int index) {
    if (counts(Topic::AttributeChanged) == 0) return;
    const auto keep = held(array.node);
    AttributeRecord record{MNodeMessage::kAttributeArrayRemoved,
                           Access::plug(array).elementByLogicalIndex(static_cast<unsigned int>(index)), MPlug()};
    fire(Topic::AttributeChanged, &array.node, &record);
}

void Callbacks::connectionChanged(scene::Cell& source, scene::Cell& destination, bool made, bool before) {
    const Topic topic = before ? Topic::PreConnection : Topic::Connection;
    if (counts(topic) == 0 && (before || counts(Topic::AttributeChanged) == 0)) return;
    const auto keepSource = held(source.node), keepDestination = held(destination.node);
    ConnectionRecord record{Access::plug(source), Access::plug(destination), made};
    if (!before) {
        const int message = (made ? MNodeMessage::kConnectionMade : MNodeMessage::kConnectionBroken) |
                            static_cast<int>(MNodeMessage::kOtherPlugSet);
        AttributeRecord out{message, record.source, record.destination};
        AttributeRecord in{message | MNodeMessage::kIncomingDirection, record.destination, record.source};
        fire(Topic::AttributeChanged, keepSource.get(), &out);
        fire(Topic::AttributeChanged, keepDestination.get(), &in);
    }
    if (counts(topic) > 0) fire(topic, nullptr, &record);
}

void Callbacks::dirtied(const std::vector<scene::Cell*>& cells) {
    // The cells may go while they are told of.
    std::vector<NodeRecord> plugs;
    std::vector<scene::NodePtr> nodes;
    std::unordered_set<const scene::Node*> listed;
    for (scene::Cell* cell : cells) {
        if (places_.contains({Topic::DirtyPlug, &cell->node}))
            plugs.push_back({Access::object(&cell->node), {}, Access::plug(*cell)});
        if (!places_.contains({Topic::Dirty, &cell->node}) || !listed.insert(&cell->node).second) continue;
        if (auto node = held(cell->node)) nodes.push_back(std::move(node));
    }
    for (NodeRecord& record : plugs)
        if (const auto node = Access::node(record.node)) fire(Topic::DirtyPlug, node.get(), &record);
    for (const auto& node : nodes) {
        NodeRecord record{Access::object(node.get()), {}, {}};
        fire(Topic::Dirty, node.get(), &record);
    }
}

void Callbacks::worldMoved(scene::DagNode& moved) {
    if (counts(Topic::WorldMatrix) == 0) return;
    std::vector<scene::NodePtr> nodes;
    for (const auto& [watched, count] : watchedMatrices_) {
        auto* node = const_cast<scene::Node*>(watched)->dag();
        if (!node || (node != &moved && !node->isBelow(moved))) continue;
        if (auto keep = held(*node)) nodes.push_back(std::move(keep));
    }
    std::sort(nodes.begin(), nodes.end(), [](const auto& a, const auto& b) { return a->serial < b->serial; });
    for (const auto& node : nodes) {
        NodeRecord record{Access::object(node.get()), {}, {}};
        fire(Topic::WorldMatrix, node.get(), &record);
    }
}

void Callbacks::parentChanged(scene::DagNode& child, scene::DagNode& parent, bool added) {
    if (counts(Topic::Dag) == 0) return;
    const auto keepChild = held(child), keepParent = held(parent);
    const MObject childObject = Access::object(&child), parentObject = Access::object(&parent);
    DagRecord record{0, &child, &parent, {}, {}};
    MDagPath::getAPathTo(childObject, record.child);
    MDagPath::getAPathTo(parentObject, record.parent);
    for (const int message : {added ? MDagMessage::kParentAdded : MDagMessage::kParentRemoved,
                              added ? MDagMessage::kChildAdded : MDagMessage::kChildRemoved}) {
        record.message = message;
        for (const scene::Node* node : {static_cast<scene::DagNode*>(nullptr), &child, &parent})
            fire(Topic::Dag, node, &record);
    }
}

void Callbacks::reordered(scene::DagNode& child) {
    if (counts(Topic::Dag) == 0 || !child.parent) return;
    const auto keepChild = held(child), keepParent = held(*child.parent);
    DagRecord record{MDagMessage::kChildReordered, &child, child.parent, {}, {}};
    MDagPath::getAPathTo(Access::object(&child), record.child);
    MDagPath::getAPathTo(Access::object(child.parent), record.parent);
    fire(Topic::Dag, nullptr, &record);
    fire(Topic::Dag, keepParent.get(), &record);
}

void Callbacks::timeChanged() {
    if (counts(Topic::Time) > 0) fire(Topic::Time, nullptr, nullptr);
    event("timeChanged");
}

} // namespace host::api
