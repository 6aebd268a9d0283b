#include "api/px/PxNode.h"

#include "api/plugins/PluginManager.h"
#include "base/Messages.h"
#include "values/StatusOut.h"
#include "values/Text.h"

#include <maya/MFnAttribute.h>
#include <maya/MPlugArray.h>
#include <maya/MPxLocatorNode.h>
#include <maya/MTypeId.h>

using namespace host;
using host::api::Access;
using host::api::fromText;
using host::api::toText;
using scene::Cell;
using scene::Scene;

namespace {

/// The type whose initialisation function runs now.
scene::NodeType* initialising = nullptr;

/// Runs plug-in code. What it throws is reported and answered as a failure.
template <class F>
MStatus shielded(scene::Node& node, const char* what, F&& f) {
    try {
        return f();
    } catch (const std::exception& e) {
        showError(node.scene.displayName(node) + ": exception in " + what + ": " + e.what());
    } catch (...) {
        showError(node.scene.displayName(node) + ": exception in " + std::string(what) + ".");
    }
    return MStatus::kFailure;
}

} // namespace

namespace host::api {

MPxNode* Access::userNode(scene::Node& node) {
    auto* b = dynamic_cast<PxBehavior*>(node.behavior.get());
    return b ? b->user() : nullptr;
}

void Access::setUserNode(MPxNode& user, scene::Node& node) { user.node_ = object(&node); }

PxBehavior::PxBehavior(scene::Node& node, std::unique_ptr<MPxNode> user) : node_(node), user_(std::move(user)) {
    if (node.dag()) base_ = scene::makeDagBehavior(node);
    Access::setUserNode(*user_, node);
}

PxBehavior::~PxBehavior() = default;

bool PxBehavior::compute(Cell& cell) {
    const MStatus status = shielded(node_, "compute", [&] {
        MDataBlock block = Access::dataBlock(node_);
        return user_->compute(Access::plug(cell), block);
    });
    if (status == MStatus::kUnknownParameter && base_) return base_->compute(cell);
    return status != MStatus::kUnknownParameter;
}

void PxBehavior::postConstructor() {
    shielded(node_, "postConstructor", [&] {
        user_->postConstructor();
        return MStatus();
    });
}

void PxBehavior::dependents(Cell& cell, std::vector<Cell*>& more) {
    shielded(node_, "setDependentsDirty", [&] {
        MPlugArray affected;
        const MStatus status = user_->setDependentsDirty(Access::plug(cell), affected);
        for (unsigned int i = 0; i < affected.length(); ++i) {
            std::shared_ptr<scene::Node> keep;
            if (Cell* c = Access::cell(affected[i], keep)) more.push_back(c);
        }
        return status;
    });
}

std::optional<bool> PxBehavior::legal(Cell& cell, Cell& other, bool asSource, bool making) {
    bool isLegal = true;
    const MStatus status = shielded(node_, "legalConnection", [&] {
        return making ? user_->legalConnection(Access::plug(cell), Access::plug(other), asSource, isLegal)
                      : user_->legalDisconnection(Access::plug(cell), Access::plug(other), asSource, isLegal);
    });
    if (status == MStatus::kUnknownParameter) return std::nullopt;
    return status && isLegal;
}

void PxBehavior::connectionChanged(Cell& cell, Cell& other, bool asSource, bool made) {
    shielded(node_, "connectionMade", [&] {
        return made ? user_->connectionMade(Access::plug(cell), Access::plug(other), asSource)
                    : user_->connectionBroken(Access::plug(cell), Access::plug(other), asSource);
    });
}

bool PxBehavior::setInternal(Cell& cell, const scene::Value& value) {
    bool taken = false;
    shielded(node_, "setInternalValueInContext", [&] {
        MDGContext context;
        taken = user_->setInternalValueInContext(Access::plug(cell), Access::dataHandle(value), context);
        return MStatus();
    });
    return taken;
}

bool PxBehavior::getInternal(Cell& cell) {
    bool given = false;
    shielded(node_, "getInternalValueInContext", [&] {
        MDGContext context;
        MDataHandle handle = Access::dataHandle(cell);
        given = user_->getInternalValueInContext(Access::plug(cell), handle, context);
        return MStatus();
    });
    return given;
}

void PxBehavior::copyFrom(scene::Node& other) {
    MPxNode* from = Access::userNode(other);
    if (!from) return;
    shielded(node_, "copyInternalData", [&] {
        user_->copyInternalData(from);
        return MStatus();
    });
}

std::optional<std::array<double, 6>> PxBehavior::box() {
    std::optional<std::array<double, 6>> found;
    auto* locator = dynamic_cast<MPxLocatorNode*>(user_.get());
    if (!locator) return found;
    shielded(node_, "boundingBox", [&] {
        if (!locator->isBounded()) return MStatus();
        const MBoundingBox b = locator->boundingBox();
        const MPoint low = b.min(), high = b.max();
        found = {low.x, low.y, low.z, high.x, high.y, high.z};
        return MStatus();
    });
    return found;
}

std::optional<scene::NodeBehavior::Drawing> PxBehavior::drawing() {
    auto* locator = dynamic_cast<MPxLocatorNode*>(user_.get());
    if (!locator) return std::nullopt;
    return Drawing{locator->drawLast(), locator->excludeAsLocator()};
}

void PxBehavior::draw(unsigned long view) {
    const MDagPath path = MDagPath::getAPathTo(Access::object(&node_));
    M3dView apiView = Access::view(view);
    static_cast<MPxLocatorNode*>(user_.get())
        ->draw(apiView, path, M3dView::kGouraudShaded, M3dView::displayStatus(path));
}

MStatus registerPluginType(Plugin& plugin, const std::string& name, unsigned id, MCreatorFunction create,
                           MInitializeFunction initialize, MPxNode::Type kind, const std::string& classification) {
    if (!create || name.empty()) return MStatus::kInvalidParameter;
    Scene& s = Scene::current();
    std::unique_ptr<scene::NodeType> made;
    if (kind == MPxNode::kDependNode)
        made = std::make_unique<scene::NodeType>(name, s.findType("node"), scene::NodeType::Kind::Dependency,
                                                 MFn::kPluginDependNode);
    else if (kind == MPxNode::kLocatorNode)
        made = std::make_unique<scene::NodeType>(name, s.findType("locator"), scene::NodeType::Kind::Shape,
                                                 MFn::kPluginLocatorNode);
    else
        return MStatus::kNotImplemented;
    made->id = id;
    made->plugin = plugin.name;
    made->classification = classification;
    made->tellsDependents = true;
    made->makeBehavior = [create, name](scene::Node& node) -> std::unique_ptr<scene::NodeBehavior> {
        std::unique_ptr<MPxNode> user;
        shielded(node, "the creator", [&] {
            user.reset(static_cast<MPxNode*>(create()));
            return MStatus();
        });
        if (!user) throw scene::SceneError("The plug-in could not create a node of type '" + name + "'.");
        return std::make_unique<PxBehavior>(node, std::move(user));
    };
    scene::NodeType* type = s.registerType(std::move(made));
    if (!type) {
        showError("A node type with the name '" + name + "' or its id is registered already.");
        return MStatus::kFailure;
    }
    MStatus status;
    if (initialize) {
        scene::NodeType* const outer = std::exchange(initialising, type);
        try {
            status = initialize();
        } catch (const std::exception& e) {
            showError("Exception in the initialisation of node type '" + name + "': " + e.what());
            status = MStatus::kFailure;
        } catch (...) {
            showError("Exception in the initialisation of node type '" + name + "'.");
            status = MStatus::kFailure;
        }
        initialising = outer;
    }
    if (!status) {
        s.unregisterType(*type);
        return status;
    }
    plugin.nodeTypes.push_back(name);
    return MStatus::kSuccess;
}

} // namespace host::api

MObject MPxNode::message;
MObject MPxNode::isHistoricallyInteresting;
MObject MPxNode::caching;
MObject MPxNode::state;

namespace {

/// The attribute objects of the base types that the headers promise as static members.
void fillBaseAttributes() {
    if (!MPxNode::message.isNull()) return;
    const auto* base = Scene::current().findType("node");
    MPxNode::message = Access::object(base->find("message"));
    MPxNode::isHistoricallyInteresting = Access::object(base->find("isHistoricallyInteresting"));
    MPxNode::caching = Access::object(base->find("caching"));
    MPxNode::state = Access::object(base->find("nodeState"));
    const auto* locator = Scene::current().findType("locator");
    MPxLocatorNode::worldMatrix = Access::object(locator->find("worldMatrix"));
    MPxLocatorNode::visibility = Access::object(locator->find("visibility"));
    MPxLocatorNode::localPosition = Access::object(locator->find("localPosition"));
    MPxLocatorNode::localScale = Access::object(locator->find("localScale"));
}

} // namespace

MPxNode::MPxNode() { fillBaseAttributes(); }
MPxNode::~MPxNode() = default;
void MPxNode::postConstructor() {}
MStatus MPxNode::compute(const MPlug&, MDataBlock&) { return MStatus::kUnknownParameter; }
bool MPxNode::getInternalValueInContext(const MPlug& plug, MDataHandle& handle, MDGContext&) {
    return getInternalValue(plug, handle);
}
bool MPxNode::setInternalValueInContext(const MPlug& plug, const MDataHandle& handle, MDGContext&) {
    return setInternalValue(plug, handle);
}
bool MPxNode::getInternalValue(const MPlug&, MDataHandle&) { return false; }
bool MPxNode::setInternalValue(const MPlug&, const MDataHandle&) { return false; }
int MPxNode::internalArrayCount(const MPlug&, const MDGContext&) const { return -1; }
void MPxNode::copyInternalData(MPxNode*) {}
MStatus MPxNode::legalConnection(const MPlug&, const MPlug&, bool, bool&) const { return MStatus::kUnknownParameter; }
MStatus MPxNode::legalDisconnection(const MPlug&, const MPlug&, bool, bool&) const {
    return MStatus::kUnknownParameter;
}
MStatus MPxNode::setDependentsDirty(const MPlug&, MPlugArray&) { return MStatus::kSuccess; }
MStatus MPxNode::connectionMade(const MPlug&, const MPlug&, bool) { return MStatus::kUnknownParameter; }
MStatus MPxNode::connectionBroken(const MPlug&, const MPlug&, bool) { return MStatus::kUnknownParameter; }
bool MPxNode::isPassiveOutput(const MPlug&) const { return false; }
MStatus MPxNode::shouldSave(const MPlug&, bool& isSaving) {
    isSaving = true;
    return MStatus::kUnknownParameter;
}
MPlug MPxNode::passThroughToOne(const MPlug&) const { return MPlug(); }
bool MPxNode::passThroughToMany(const MPlug&, MPlugArray&) const { return false; }
MPxNode::Type MPxNode::type() const { return kDependNode; }
bool MPxNode::isAbstractClass() const { return false; }

MStatus MPxNode::addAttribute(const MObject& attr) {
    const auto a = Access::attribute(attr);
    if (!initialising) return MStatus::kFailure;
    if (!a) return MStatus::kInvalidParameter;
    // A child may be added by itself, too; it is there with its parent already.
    if (a->parent) return initialising->find(a->longName) == a.get() ? MStatus::kSuccess : MStatus::kInvalidParameter;
    if (initialising->add(a)) return MStatus::kSuccess;
    showError("An attribute named '" + a->longName + "' (" + a->shortName + ") exists already on node type '" +
              initialising->name + "'.");
    return MStatus::kFailure;
}

MStatus MPxNode::inheritAttributesFrom(const MString& parentClassName) {
    if (!initialising) return MStatus::kFailure;
    const auto* from = Scene::current().findType(toText(parentClassName));
    if (!from) return MStatus::kInvalidParameter;
    for (const auto& a : from->ownAttributes())
        if (!initialising->add(a)) return MStatus::kFailure;
    return MStatus::kSuccess;
}

MStatus MPxNode::attributeAffects(const MObject& whenChanges, const MObject& isAffected) {
    const auto in = Access::attribute(whenChanges), out = Access::attribute(isAffected);
    if (!initialising) return MStatus::kFailure;
    if (!in || !out || initialising->find(in->longName) != in.get() || initialising->find(out->longName) != out.get())
        return MStatus::kInvalidParameter;
    initialising->affects(*in, *out);
    return MStatus::kSuccess;
}

MTypeId MPxNode::typeId() const {
    const auto n = Access::node(node_);
    return n ? MTypeId(n->type.id) : MTypeId();
}

MString MPxNode::typeName() const {
    const auto n = Access::node(node_);
    return n ? fromText(n->type.name) : MString();
}

MString MPxNode::name() const {
    const auto n = Access::node(node_);
    return n ? fromText(n->name) : MString();
}

MObject MPxNode::thisMObject() const { return node_; }

MStatus MPxNode::setExistWithoutInConnections(bool flag) {
    withoutIn_ = flag;
    return MStatus::kSuccess;
}
bool MPxNode::existWithoutInConnections(MStatus* ReturnStatus) const {
    setStatus(ReturnStatus, MStatus::kSuccess);
    return withoutIn_;
}
MStatus MPxNode::setExistWithoutOutConnections(bool flag) {
    withoutOut_ = flag;
    return MStatus::kSuccess;
}
bool MPxNode::existWithoutOutConnections(MStatus* ReturnStatus) const {
    setStatus(ReturnStatus, MStatus::kSuccess);
    return withoutOut_;
}

const char* MPxNode::className() { return "MPxNode"; }

MDataBlock MPxNode::forceCache(MDGContext&) {
    const auto n = Access::node(node_);
    return n ? Access::dataBlock(*n) : MDataBlock();
}

void MPxNode::setMPSafe(bool) {}

MStatus MPxNode::setDoNotWrite(bool flag) {
    const auto n = Access::node(node_);
    if (!n) return MStatus::kFailure;
    n->doNotWrite = flag;
    return MStatus::kSuccess;
}

bool MPxNode::doNotWrite(MStatus* ReturnStatus) const {
    const auto n = Access::node(node_);
    setStatus(ReturnStatus, n ? MStatus::kSuccess : MStatus::kFailure);
    return n && n->doNotWrite;
}

MObject MPxLocatorNode::worldMatrix;
MObject MPxLocatorNode::visibility;
MObject MPxLocatorNode::localPosition;
MObject MPxLocatorNode::localScale;

MPxLocatorNode::MPxLocatorNode() = default;
MPxLocatorNode::~MPxLocatorNode() = default;
MPxNode::Type MPxLocatorNode::type() const { return kLocatorNode; }
void MPxLocatorNode::draw(M3dView&, const MDagPath&, M3dView::DisplayStyle, M3dView::DisplayStatus) {}
bool MPxLocatorNode::isBounded() const { return false; }
MBoundingBox MPxLocatorNode::boundingBox() const { return MBoundingBox(MPoint(-1, -1, -1), MPoint(1, 1, 1)); }

unsigned int MPxLocatorNode::color(M3dView::DisplayStatus displayStatus) {
    switch (displayStatus) {
    case M3dView::kLead: return 18;
    case M3dView::kActive: return 15;
    case M3dView::kTemplate: return 2;
    default: return 4;
    }
}

MColor MPxLocatorNode::colorRGB(M3dView::DisplayStatus displayStatus) {
    switch (displayStatus) {
    case M3dView::kLead: return MColor(0.26f, 1.0f, 0.64f);
    case M3dView::kActive: return MColor(1.0f, 1.0f, 1.0f);
    case M3dView::kTemplate: return MColor(0.47f, 0.47f, 0.47f);
    default: return MColor(0.0f, 0.02f, 0.38f);
    }
}

bool MPxLocatorNode::excludeAsLocator() const { return true; }
bool MPxLocatorNode::isTransparent() const { return false; }
bool MPxLocatorNode::drawLast() const { return false; }
const char* MPxLocatorNode::className() { return "MPxLocatorNode"; }
