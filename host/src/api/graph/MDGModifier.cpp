#include <maya/MDGModifier.h>

#include "api/fn/FnSupport.h"
#include "mel/Interpreter.h"
#include "mel/Services.h"
#include "values/Text.h"

#include <maya/MAngle.h>
#include <maya/MDagModifier.h>
#include <maya/MDistance.h>
#include <maya/MPlug.h>
#include <maya/MTime.h>
#include <maya/MTypeId.h>

#include <vector>

using namespace host;
using host::api::Access;
using host::api::toText;
using scene::Scene;

/// The steps, and what doing them recorded: a small undo queue of the modifier's own.
struct MDGModifier::Steps {
    std::vector<std::function<void()>> waiting;
    std::vector<std::vector<scene::Edit>> done; ///< one list of edits for each doIt
    std::vector<scene::Edit> creations;         ///< of nodes made before the next doIt
    bool undone = false;

    /// Does something, with the changes going to `edits` in place of the scene's own queue.
    template <class F>
    static MStatus capture(std::vector<scene::Edit>& edits, F&& f) {
        auto& queue = Scene::current().undo;
        const scene::UndoQueue::Capture on(queue, edits);
        return api::guarded(f);
    }
};

MDGModifier::MDGModifier() : steps_(std::make_unique<Steps>()) {}
MDGModifier::~MDGModifier() = default;

MStatus MDGModifier::gather(std::function<void()> step) {
    steps_->waiting.push_back(std::move(step));
    return MStatus::kSuccess;
}

namespace {

MObject make(std::vector<scene::Edit>& edits, const scene::NodeType* type, const MObject& parent, MStatus* out,
             bool dag) {
    const auto above = Access::dagNode(parent);
    if (!type || type->isDag() != dag || (!parent.isNull() && !above)) {
        setStatus(out, MStatus::kInvalidParameter);
        return MObject();
    }
    MObject made;
    const scene::UndoQueue::Capture on(Scene::current().undo, edits);
    const MStatus status = api::guarded([&] {
        auto node = Scene::current().createNode(*type, {}, above ? above->dag() : nullptr);
        const bool ownTransform = dag && !above && type->kind == scene::NodeType::Kind::Shape;
        made = Access::object(ownTransform ? node->dag()->parent : node.get());
    });
    if (out) *out = status;
    return made;
}

} // namespace

MObject MDGModifier::createNode(const MTypeId& typeId, MStatus* s) {
    return make(steps_->creations, Scene::current().findType(typeId.id()), MObject(), s, false);
}

MObject MDGModifier::createNode(const MString& type, MStatus* s) {
    return make(steps_->creations, Scene::current().findType(toText(type)), MObject(), s, false);
}

MStatus MDGModifier::deleteNode(const MObject& node) {
    if (!Access::node(node)) return MStatus::kInvalidParameter;
    return gather([node] {
        if (const auto n = Access::node(node)) n->scene.deleteNodes({n.get()});
    });
}

MStatus MDGModifier::renameNode(const MObject& node, const MString& newName) {
    if (!Access::node(node)) return MStatus::kInvalidParameter;
    return gather([node, name = toText(newName)] {
        if (const auto n = Access::node(node)) n->scene.rename(*n, name);
    });
}

MStatus MDGModifier::setNodeLockState(const MObject& node, bool newState) {
    if (!Access::node(node)) return MStatus::kInvalidParameter;
    return gather([node, newState] { MFnDependencyNode(node).setLocked(newState); });
}

namespace {

/// The cells of two plugs; throws when one is gone.
template <class F>
void withCells(const MPlug& a, const MPlug& b, F&& f) {
    std::shared_ptr<scene::Node> keepA, keepB;
    scene::Cell* ca = Access::cell(a, keepA);
    scene::Cell* cb = Access::cell(b, keepB);
    if (!ca || !cb) throw scene::SceneError("A plug of the modifier does not exist any more.");
    f(*ca, *cb);
}

} // namespace

MStatus MDGModifier::connect(const MPlug& source, const MPlug& dest) {
    if (source.isNull() || dest.isNull()) return MStatus::kInvalidParameter;
    return gather([source, dest] {
        withCells(source, dest, [](scene::Cell& a, scene::Cell& b) { a.node.scene.connect(a, b); });
    });
}

MStatus MDGModifier::disconnect(const MPlug& source, const MPlug& dest) {
    if (source.isNull() || dest.isNull()) return MStatus::kInvalidParameter;
    return gather([source, dest] {
        withCells(source, dest, [](scene::Cell& a, scene::Cell& b) { a.node.scene.disconnect(a, b); });
    });
}

MStatus MDGModifier::connect(const MObject& sourceNode, const MObject& sourceAttr, const MObject& destNode,
                             const MObject& destAttr) {
    return connect(MPlug(sourceNode, sourceAttr), MPlug(destNode, destAttr));
}

MStatus MDGModifier::disconnect(const MObject& sourceNode, const MObject& sourceAttr, const MObject& destNode,
                                const MObject& destAttr) {
    return disconnect(MPlug(sourceNode, sourceAttr), MPlug(destNode, destAttr));
}

MStatus MDGModifier::addAttribute(const MObject& node, const MObject& attribute) {
    if (!Access::node(node) || !Access::attribute(attribute)) return MStatus::kInvalidParameter;
    return gather([node, attribute] {
        if (!MFnDependencyNode(node).addAttribute(attribute)) throw scene::SceneError("The attribute cannot be added.");
    });
}

MStatus MDGModifier::addAttribute(const MObject& node, const MObject& attribute, MFnDependencyNode::MAttrClass type) {
    return type == MFnDependencyNode::kLocalDynamicAttr ? addAttribute(node, attribute)
                                                        : MStatus(MStatus::kInvalidParameter);
}

MStatus MDGModifier::removeAttribute(const MObject& node, const MObject& attribute) {
    if (!Access::node(node) || !Access::attribute(attribute)) return MStatus::kInvalidParameter;
    return gather([node, attribute] {
        if (!MFnDependencyNode(node).removeAttribute(attribute))
            throw scene::SceneError("The attribute cannot be removed.");
    });
}

MStatus MDGModifier::removeAttribute(const MObject& node, const MObject& attribute, MFnDependencyNode::MAttrClass) {
    return removeAttribute(node, attribute);
}

MStatus MDGModifier::commandToExecute(const MString& command) {
    return gather([text = toText(command)] {
        try {
            Services::current().interpreter().execute(text);
        } catch (const mel::Error& e) {
            throw scene::SceneError(e.what());
        }
    });
}

namespace {

template <class T>
std::function<void()> setter(const MPlug& plug, T value) {
    return [plug, value]() mutable {
        if (!MPlug(plug).setValue(value))
            throw scene::SceneError("The value of '" + toText(plug.name()) + "' cannot be set.");
    };
}

} // namespace

MStatus MDGModifier::newPlugValue(const MPlug& p, MObject& v) { return gather(setter(p, MObject(v))); }
MStatus MDGModifier::newPlugValueBool(const MPlug& p, bool v) { return gather(setter(p, v)); }
MStatus MDGModifier::newPlugValueChar(const MPlug& p, char v) { return gather(setter(p, v)); }
MStatus MDGModifier::newPlugValueDouble(const MPlug& p, double v) { return gather(setter(p, v)); }
MStatus MDGModifier::newPlugValueFloat(const MPlug& p, float v) { return gather(setter(p, v)); }
MStatus MDGModifier::newPlugValueInt(const MPlug& p, int v) { return gather(setter(p, v)); }
MStatus MDGModifier::newPlugValueInt64(const MPlug& p, MInt64 v) { return gather(setter(p, v)); }
MStatus MDGModifier::newPlugValueMAngle(const MPlug& p, const MAngle& v) { return gather(setter(p, MAngle(v))); }
MStatus MDGModifier::newPlugValueMDistance(const MPlug& p, const MDistance& v) {
    return gather(setter(p, MDistance(v)));
}
MStatus MDGModifier::newPlugValueMTime(const MPlug& p, const MTime& v) { return gather(setter(p, MTime(v))); }
MStatus MDGModifier::newPlugValueShort(const MPlug& p, short v) { return gather(setter(p, v)); }
MStatus MDGModifier::newPlugValueString(const MPlug& p, const MString& v) { return gather(setter(p, MString(v))); }

MStatus MDGModifier::removeMultiInstance(const MPlug& plug, bool breakConnections) {
    if (!plug.isElement()) return MStatus::kInvalidParameter;
    return gather([plug, breakConnections] {
        withCells(plug, plug, [&](scene::Cell& c, scene::Cell&) { c.node.scene.removeElement(c, breakConnections); });
    });
}

MStatus MDGModifier::doIt() {
    Steps& s = *steps_;
    const scene::UndoQueue::Suspend quiet(Scene::current().undo);
    if (s.undone) {
        for (auto& edits : s.done)
            for (auto& e : edits) e.redo();
        s.undone = false;
    }
    std::vector<scene::Edit> edits = std::exchange(s.creations, {});
    const auto steps = std::exchange(s.waiting, {});
    const MStatus status = Steps::capture(edits, [&] {
        for (const auto& step : steps) step();
    });
    s.done.push_back(std::move(edits));
    return status;
}

MStatus MDGModifier::undoIt() {
    Steps& s = *steps_;
    if (s.undone) return MStatus::kFailure;
    const scene::UndoQueue::Suspend quiet(Scene::current().undo);
    for (auto list = s.done.rbegin(); list != s.done.rend(); ++list)
        for (auto e = list->rbegin(); e != list->rend(); ++e) e->undo();
    s.undone = true;
    return MStatus::kSuccess;
}

ORVO_CLASS_NAME(MDGModifier)

MDagModifier::MDagModifier() = default;
MDagModifier::~MDagModifier() = default;

MObject MDagModifier::createNode(const MTypeId& typeId, const MObject& parent, MStatus* s) {
    return make(steps_->creations, Scene::current().findType(typeId.id()), parent, s, true);
}

MObject MDagModifier::createNode(const MString& type, const MObject& parent, MStatus* s) {
    return make(steps_->creations, Scene::current().findType(toText(type)), parent, s, true);
}

MStatus MDagModifier::reparentNode(const MObject& node, const MObject& newParent) {
    if (!Access::dagNode(node) || (!newParent.isNull() && !Access::dagNode(newParent)))
        return MStatus::kInvalidParameter;
    return gather([node, newParent] {
        const auto child = Access::dagNode(node), parent = Access::dagNode(newParent);
        if (child) child->scene.reparent(*child->dag(), parent ? parent->dag() : nullptr);
    });
}

ORVO_CLASS_NAME(MDagModifier)
