#pragma once

#include "scene/Node.h"
#include "scene/Scene.h"

#include <maya/MDataHandle.h>
#include <maya/MObject.h>
#include <maya/MPlug.h>
#include <maya/MStatus.h>

#include <memory>

class MDataBlock;
class MPxNode;
class MSelectionList;
class MSyntax;

class M3dView;

namespace host::api {

struct Plugin;
struct SyntaxTable;

/// What an MObject refers to.
struct Handle {
    enum class Kind { Node, Attribute, Data, Plugin, Component };
    explicit Handle(Kind k) : kind(k) {}
    virtual ~Handle() = default;
    const Kind kind;
};

/// A node; all handles of one node are the same object. It does not keep the node alive.
struct NodeHandle final : Handle {
    explicit NodeHandle(std::weak_ptr<scene::Node> n) : Handle(Kind::Node), node(std::move(n)) {}
    std::weak_ptr<scene::Node> node;
};

struct AttributeHandle final : Handle {
    explicit AttributeHandle(scene::AttributePtr a) : Handle(Kind::Attribute), attribute(std::move(a)) {}
    scene::AttributePtr attribute;
};

/// Data outside of any plug: what plugs give and take as an object.
struct DataObject final : Handle {
    explicit DataObject(scene::Value v) : Handle(Kind::Data), value(std::move(v)) {}
    scene::Value value;
};

/// Components of some mesh. What is added one by one is sorted in when somebody asks, and an index is found at once.
struct ComponentObject final : Handle {
    explicit ComponentObject(scene::Components c) : Handle(Kind::Component), set_(std::move(c)) {}
    scene::ComponentKind type() const { return set_.kind(); }
    const scene::Components& components() const;
    const std::vector<int>& indices() const; ///< ascending
    void replace(scene::Components components);
    void add(int index) { added_.push_back(index); }
    bool complete = false; ///< stands for all that a mesh has

private:
    mutable scene::Components set_;
    mutable std::vector<int> added_, indices_;
};

struct PluginHandle final : Handle {
    explicit PluginHandle(Plugin* p) : Handle(Kind::Plugin), plugin(p) {}
    Plugin* plugin;
};

/// The way between the API's objects and the rooms behind them.
struct Access {
    static MObject object(scene::Node* node);
    static MObject object(const scene::Attribute* attribute);
    static MObject object(scene::Value value);
    static MObject object(std::shared_ptr<Handle> handle);
    static Handle* handle(const MObject& o) { return o.handle_.get(); }

    static std::shared_ptr<scene::Node> node(const MObject& o);
    static std::shared_ptr<scene::Node> dagNode(const MObject& o); ///< null for nodes outside the DAG, too
    static scene::AttributePtr attribute(const MObject& o);
    static DataObject* data(const MObject& o);
    static Plugin* plugin(const MObject& o);
    static ComponentObject* component(const MObject& o);

    /// The items of a selection list, which may hold nodes that are gone, and the reverse.
    static std::vector<scene::Selected> items(const MSelectionList& list);
    static void append(MSelectionList& list, const scene::Selected& item);

    static MPlug plug(scene::Cell& cell);
    /// The plug's cell, made if need be; null when the plug is null, its node gone, or an array on the way has no
    /// element chosen. `keep` holds the node.
    static scene::Cell* cell(const MPlug& plug, std::shared_ptr<scene::Node>& keep);
    static int index(const MPlug& plug, const scene::Attribute& array); ///< -1 when none is chosen
    static void setIndex(MPlug& plug, const scene::Attribute& array, int index);

    static MDataHandle dataHandle(scene::Cell& cell);
    static MDataHandle dataHandle(scene::Value value);
    static scene::Cell* cell(const MDataHandle& handle);
    static scene::Value value(const MDataHandle& handle);
    static MDataBlock dataBlock(scene::Node& node);

    static M3dView view(unsigned long serial);

    static const SyntaxTable& table(const MSyntax& syntax);

    static MPxNode* userNode(scene::Node& node);
    static void setUserNode(MPxNode& user, scene::Node& node);
};

/// Whether a node type brings the attribute.
bool belongsToType(const scene::Attribute& root);

/// Takes a text changed through a reference that a data handle gave into the cell.
void takeText(scene::Cell& cell);

/// Runs something that may be refused, and answers a status.
template <class F>
MStatus guarded(F&& f) {
    try {
        f();
        return MStatus::kSuccess;
    } catch (const scene::SceneError&) {
        return MStatus::kFailure;
    }
}

} // namespace host::api
