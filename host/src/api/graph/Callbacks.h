#pragma once

#include "scene/Observer.h"
#include "scene/Scene.h"

#include <maya/MSceneMessage.h>

#include <array>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace host::api {

/// What callbacks are registered for.
enum class Topic : std::uint8_t {
    AttributeChanged,
    AttributeList,
    Dirty,
    DirtyPlug,
    Name,
    Uuid,
    AboutToDelete,
    PreRemoval,
    Destroyed,
    KeyableOverride,
    Time,
    NodeAdded,
    NodeRemoved,
    Connection,
    PreConnection,
    UuidCheck,
    Dag,
    WorldMatrix,
    Scene,
    SceneCheck,
    SceneStrings,
    Event,
    Never, ///< what does not happen here
    Count
};

/// The callbacks of plug-ins: one list for the process, told by the scene what happens.
class Callbacks final : public scene::Observer {
public:
    static Callbacks& shared();

    /// What a callback is given: what it knows its topic to hand over. `void*` is that topic's own record.
    using Call = std::function<void(void*)>;
    /// Registers a callback. `function` is the plug-in's, `node` null for all. Answers its id.
    MCallbackId add(Topic topic, const scene::Node* node, const void* function, Call call);
    bool remove(MCallbackId id);
    MCallbackId current() const { return running_.empty() ? 0 : running_.back(); }
    std::vector<MCallbackId> of(const scene::Node& node) const;
    bool running() const { return !running_.empty(); }
    /// Removes those whose function lies in the same module as an address, and answers how many those were.
    int removeOfModule(const void* address);

    /// @name Of the scene as a document. Each is called by who does what it tells of.
    /// @{
    void tell(MSceneMessage::Message message);
    void tell(MSceneMessage::Message message, const std::vector<std::string>& words);
    /// Whether all that are asked allow it; they may change the file's name.
    bool allowed(MSceneMessage::Message check, std::string* file = nullptr);
    /// An event by its name, such as "SceneOpened".
    void event(const std::string& name);
    static const std::vector<std::string>& eventNames();
    /// Whether a node may be given another identifier, and that it was.
    bool mayChangeUuid(scene::Node& node, std::string& uuid);
    void uuidChanged(scene::Node& node, const std::string& before);
    /// @}

    /// @name scene::Observer
    /// @{
    void nodeAdded(scene::Node& node) override;
    void nodeRemoved(scene::Node& node) override;
    void nodeAboutToGo(scene::Node& node) override;
    void sceneAboutToGo() override;
    void nodeDestroyed(const scene::Node& node) noexcept override;
    void nodeRenamed(scene::Node& node, const std::string& before) override;
    void attributeChanged(scene::Node& node, const scene::Attribute& attribute, AttributeEvent what) override;
    void valueSet(scene::Cell& cell) override;
    void evaluated(scene::Cell& cell) override;
    void lockChanged(scene::Cell& cell) override;
    void keyableChanged(scene::Cell& cell) override;
    bool mayChangeKeyable(scene::Cell& cell, bool keyable) override;
    void elementRemoved(scene::Cell& array, int index) override;
    void connectionChanged(scene::Cell& source, scene::Cell& destination, bool made, bool before) override;
    bool wantsDirt() const override { return counts(Topic::Dirty) + counts(Topic::DirtyPlug) > 0; }
    void dirtied(const std::vector<scene::Cell*>& cells) override;
    void worldMoved(scene::DagNode& node) override;
    void parentChanged(scene::DagNode& child, scene::DagNode& parent, bool added) override;
    void reordered(scene::DagNode& child) override;
    void selectionChanged() override { event("SelectionChanged"); }
    void timeChanged() override;
    /// @}

private:
    struct Entry {
        MCallbackId id;
        Topic topic;
        const scene::Node* node;
        const void* module;
        Call call;
        int depth = 0; ///< how often it is being called now
        bool removed = false;
    };
    using EntryPtr = std::shared_ptr<Entry>;
    struct Place {
        Topic topic;
        const scene::Node* node;
        bool operator==(const Place&) const = default;
    };
    struct PlaceHash {
        std::size_t operator()(const Place& p) const {
            return std::hash<const void*>()(p.node) * 31 + static_cast<std::size_t>(p.topic);
        }
    };
    int counts(Topic topic) const { return counts_[static_cast<std::size_t>(topic)]; }
    void fire(Topic topic, const scene::Node* node, void* what);
    void attribute(int message, scene::Cell& cell, scene::Cell* other = nullptr);
    void watch();

    std::map<MCallbackId, EntryPtr> all_;
    std::unordered_map<Place, std::vector<EntryPtr>, PlaceHash> places_;
    std::array<int, static_cast<std::size_t>(Topic::Count)> counts_{};
    std::unordered_map<const scene::Node*, int> watchedMatrices_; ///< nodes with callbacks of WorldMatrix, and how many
    std::vector<MCallbackId> running_;
    MCallbackId last_ = 0;
};

/// @name What the callbacks of a topic are given
/// @{
struct AttributeRecord { ///< AttributeChanged, AttributeList, KeyableOverride
    int message;
    MPlug plug, other;
    bool decision = true;
};
struct NodeRecord { ///< of a node, with a text: the name or identifier before
    MObject node;
    std::string text;
    MPlug plug;
    MDGModifier* modifier = nullptr;
    bool allowed = true;
};
struct ConnectionRecord {
    MPlug source, destination;
    bool made;
};
struct DagRecord {
    int message; ///< an MDagMessage::DagMessage
    const scene::Node *childNode, *parentNode;
    MDagPath child, parent;
};
struct SceneRecord { ///< Scene, SceneCheck, SceneStrings, Event
    int message;
    std::string text;
    std::vector<std::string> words;
    bool allowed = true;
};
/// @}

} // namespace host::api
