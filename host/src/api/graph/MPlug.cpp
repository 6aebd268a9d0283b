#include <maya/MPlug.h>

#include "api/graph/Handle.h"
#include "scene/AnimCurve.h"
#include "scene/Evaluation.h"
#include "values/StatusOut.h"
#include "values/Text.h"
#include "values/TimeTicks.h"

#include <maya/MAngle.h>
#include <maya/MDataBlock.h>
#include <maya/MDataHandle.h>
#include <maya/MDistance.h>
#include <maya/MIntArray.h>
#include <maya/MPlugArray.h>
#include <maya/MString.h>
#include <maya/MTime.h>

#include <algorithm>

using namespace host;
using host::api::Access;
using scene::Cell;

namespace host::api {

int Access::index(const MPlug& plug, const scene::Attribute& array) {
    for (const auto& [attribute, i] : plug.indices_)
        if (attribute == &array) return i;
    return -1;
}

void Access::setIndex(MPlug& plug, const scene::Attribute& array, int index) {
    for (auto& [attribute, i] : plug.indices_) {
        if (attribute != &array) continue;
        i = index;
        return;
    }
    plug.indices_.emplace_back(&array, index);
}

Cell* Access::cell(const MPlug& plug, std::shared_ptr<scene::Node>& keep) {
    keep = node(plug.node_);
    const auto attribute = Access::attribute(plug.attribute_);
    if (!keep || !attribute) return nullptr;
    std::vector<const scene::Attribute*> way;
    for (const scene::Attribute* a = attribute.get(); a; a = a->parent) way.push_back(a);
    const auto roots = keep->findAttribute(way.back()->longName);
    if (roots != way.back()) return nullptr; // an attribute of another kind of node
    Cell* c = nullptr;
    for (auto it = way.rbegin(); it != way.rend(); ++it) {
        const scene::Attribute& a = **it;
        c = c ? &c->child(a.childIndex) : &keep->cell(a);
        if (!a.array) continue;
        const int i = index(plug, a);
        if (i >= 0)
            c = &c->element(i);
        else if (std::next(it) != way.rend())
            return nullptr;
    }
    return c;
}

MPlug Access::plug(Cell& cell) {
    MPlug p;
    p.node_ = object(&cell.node);
    p.attribute_ = object(&cell.attribute);
    for (const Cell* c = &cell; c; c = c->parent)
        if (c->index >= 0) p.indices_.emplace_back(&c->attribute, c->index);
    return p;
}

} // namespace host::api

namespace {

/// The cell of a plug, held together with its node for the length of a call.
struct Target {
    std::shared_ptr<scene::Node> node;
    Cell* cell;
    explicit Target(const MPlug& plug) : cell(Access::cell(plug, node)) {}
    explicit operator bool() const { return cell != nullptr; }
    Cell* operator->() const { return cell; }
    Cell& operator*() const { return *cell; }
};

/// Makes cells for elements that the node keeps in another way.
void showElements(Cell& array) {
    if (array.attribute.internal) scene::evaluate(array);
}

MStatus fail(MStatus* out) {
    setStatus(out, MStatus::kFailure);
    return MStatus::kFailure;
}

/// Brings a value up to date at the context's time.
void bring(Cell& cell, const MDGContext& ctx) {
    MTime at;
    if (!ctx.getTime(at)) {
        scene::evaluate(cell);
        return;
    }
    auto& s = cell.node.scene;
    const scene::UndoQueue::Suspend quiet(s.undo);
    const double now = s.time();
    s.setTime(ticksOf(at));
    scene::evaluate(cell);
    s.setTime(now);
}

MStatus setNumber(const MPlug& plug, double value) {
    const Target t(plug);
    if (!t) return MStatus::kFailure;
    if (!t->attribute.isNumber() || t->isArray()) return MStatus::kInvalidParameter;
    return api::guarded([&] { t->node.scene.setNumber(*t, value, scene::Scene::LimitPolicy::Ignore); });
}

} // namespace

MPlug::MPlug() = default;
MPlug::MPlug(const MPlug& other) = default;
MPlug& MPlug::operator=(const MPlug& other) = default;
MPlug::MPlug(const MObject& node, const MObject& attribute) : node_(node), attribute_(attribute) {}

MStatus MPlug::setAttribute(MObject& attribute) {
    if (!Access::attribute(attribute)) return MStatus::kInvalidParameter;
    attribute_ = attribute;
    return MStatus::kSuccess;
}

MObject MPlug::attribute(MStatus* ReturnStatus) const {
    setStatus(ReturnStatus, attribute_.isNull() ? MStatus::kFailure : MStatus::kSuccess);
    return attribute_;
}

MObject MPlug::node(MStatus* ReturnStatus) const {
    setStatus(ReturnStatus, node_.isNull() ? MStatus::kFailure : MStatus::kSuccess);
    return node_;
}

MString MPlug::name(MStatus* ReturnStatus) const {
    return partialName(true, true, true, false, false, true, ReturnStatus);
}

MString MPlug::partialName(bool includeNodeName, bool, bool, bool, bool useFullAttributePath, bool useLongNames,
                           MStatus* ReturnStatus) const {
    const auto n = Access::node(node_);
    const auto a = Access::attribute(attribute_);
    if (!n || !a) {
        fail(ReturnStatus);
        return MString();
    }
    setStatus(ReturnStatus, MStatus::kSuccess);
    std::string path;
    for (const scene::Attribute* x = a.get(); x; x = x->parent) {
        // Beyond its own name a plug needs only the elements that it is in; the compounds between on request.
        if (x != a.get() && !x->array && !useFullAttributePath) continue;
        std::string part = useLongNames ? x->longName : x->shortName;
        if (x->array) {
            const int i = Access::index(*this, *x);
            if (i >= 0 || x != a.get()) part += "[" + std::to_string(i) + "]";
        }
        path = path.empty() ? part : part + "." + path;
    }
    if (includeNodeName) path = n->scene.displayName(*n) + "." + path;
    return MString(path.c_str());
}

bool MPlug::isNetworked(MStatus* ReturnStatus) const {
    setStatus(ReturnStatus, MStatus::kSuccess);
    return false;
}

bool MPlug::isArray(MStatus* ReturnStatus) const {
    const auto a = Access::attribute(attribute_);
    setStatus(ReturnStatus, a ? MStatus::kSuccess : MStatus::kFailure);
    return a && a->array && Access::index(*this, *a) < 0;
}

bool MPlug::isElement(MStatus* ReturnStatus) const {
    const auto a = Access::attribute(attribute_);
    setStatus(ReturnStatus, a ? MStatus::kSuccess : MStatus::kFailure);
    return a && a->array && Access::index(*this, *a) >= 0;
}

bool MPlug::isCompound(MStatus* ReturnStatus) const {
    const auto a = Access::attribute(attribute_);
    setStatus(ReturnStatus, a ? MStatus::kSuccess : MStatus::kFailure);
    return a && a->isCompound();
}

bool MPlug::isChild(MStatus* ReturnStatus) const {
    const auto a = Access::attribute(attribute_);
    setStatus(ReturnStatus, a ? MStatus::kSuccess : MStatus::kFailure);
    return a && a->parent && !isElement();
}

bool MPlug::isProcedural(MStatus* ReturnStatus) const {
    setStatus(ReturnStatus, MStatus::kSuccess);
    return false;
}

unsigned int MPlug::logicalIndex(MStatus* ReturnStatus) const {
    const auto a = Access::attribute(attribute_);
    const int i = a && a->array ? Access::index(*this, *a) : -1;
    setStatus(ReturnStatus, i >= 0 ? MStatus::kSuccess : MStatus::kInvalidParameter);
    return static_cast<unsigned int>(i);
}

MStatus MPlug::selectAncestorLogicalIndex(unsigned int index, const MObject& attribute) {
    const auto a = Access::attribute(attribute.isNull() ? attribute_ : attribute);
    if (!a || !a->array || index > static_cast<unsigned int>(scene::Scene::maxArrayIndex))
        return MStatus::kInvalidParameter;
    Access::setIndex(*this, *a, static_cast<int>(index));
    return MStatus::kSuccess;
}

unsigned int MPlug::getExistingArrayAttributeIndices(MIntArray& indices, MStatus* ReturnStatus) {
    indices.clear();
    const Target t(*this);
    if (!t || !t->isArray()) {
        setStatus(ReturnStatus, MStatus::kInvalidParameter);
        return 0;
    }
    setStatus(ReturnStatus, MStatus::kSuccess);
    showElements(*t);
    for (const auto& [i, e] : t->elements) indices.append(i);
    return indices.length();
}

unsigned int MPlug::numElements(MStatus* ReturnStatus) const {
    const Target t(*this);
    if (!t || !t->isArray()) {
        setStatus(ReturnStatus, MStatus::kInvalidParameter);
        return 0;
    }
    setStatus(ReturnStatus, MStatus::kSuccess);
    showElements(*t);
    return static_cast<unsigned int>(t->elements.size());
}

unsigned int MPlug::evaluateNumElements(MStatus* ReturnStatus) {
    const Target t(*this);
    if (t && t->isArray()) scene::evaluate(*t);
    return numElements(ReturnStatus);
}

unsigned int MPlug::numChildren(MStatus* ReturnStatus) const {
    const auto a = Access::attribute(attribute_);
    setStatus(ReturnStatus, a && a->isCompound() ? MStatus::kSuccess : MStatus::kInvalidParameter);
    return a ? static_cast<unsigned int>(a->children.size()) : 0;
}

unsigned int MPlug::numConnectedElements(MStatus* ReturnStatus) const {
    const Target t(*this);
    if (!t || !t->isArray()) {
        setStatus(ReturnStatus, MStatus::kInvalidParameter);
        return 0;
    }
    setStatus(ReturnStatus, MStatus::kSuccess);
    return static_cast<unsigned int>(std::count_if(t->elements.begin(), t->elements.end(), [](const auto& e) {
        return e.second->source || !e.second->destinations.empty();
    }));
}

unsigned int MPlug::numConnectedChildren(MStatus* ReturnStatus) const {
    const Target t(*this);
    if (!t || !t->attribute.isCompound()) {
        setStatus(ReturnStatus, MStatus::kInvalidParameter);
        return 0;
    }
    setStatus(ReturnStatus, MStatus::kSuccess);
    return static_cast<unsigned int>(std::count_if(t->children.begin(), t->children.end(), [](const auto& c) {
        return c && (c->source || !c->destinations.empty());
    }));
}

MPlug MPlug::child(MObject& obj, MStatus* ReturnStatus) const {
    const auto a = Access::attribute(attribute_), c = Access::attribute(obj);
    if (!a || !c || c->parent != a.get()) {
        setStatus(ReturnStatus, MStatus::kInvalidParameter);
        return MPlug();
    }
    setStatus(ReturnStatus, MStatus::kSuccess);
    MPlug p(*this);
    p.attribute_ = obj;
    return p;
}

MPlug MPlug::child(unsigned int index, MStatus* ReturnStatus) const {
    const auto a = Access::attribute(attribute_);
    if (!a || index >= a->children.size()) {
        setStatus(ReturnStatus, MStatus::kInvalidParameter);
        return MPlug();
    }
    MObject c = Access::object(a->children[index].get());
    return child(c, ReturnStatus);
}

MPlug MPlug::parent(MStatus* ReturnStatus) const {
    const auto a = Access::attribute(attribute_);
    if (!a || !a->parent || isElement()) {
        setStatus(ReturnStatus, MStatus::kInvalidParameter);
        return MPlug();
    }
    setStatus(ReturnStatus, MStatus::kSuccess);
    MPlug p(*this);
    p.attribute_ = Access::object(a->parent);
    std::erase_if(p.indices_, [&](const auto& i) { return i.first == a.get(); });
    return p;
}

MPlug MPlug::array(MStatus* ReturnStatus) const {
    if (!isElement()) {
        setStatus(ReturnStatus, MStatus::kInvalidParameter);
        return MPlug();
    }
    setStatus(ReturnStatus, MStatus::kSuccess);
    MPlug p(*this);
    const auto a = Access::attribute(attribute_);
    std::erase_if(p.indices_, [&](const auto& i) { return i.first == a.get(); });
    return p;
}

MPlug MPlug::elementByLogicalIndex(unsigned int index, MStatus* ReturnStatus) const {
    MPlug p(*this);
    if (!isArray() || !p.selectAncestorLogicalIndex(index)) {
        setStatus(ReturnStatus, MStatus::kInvalidParameter);
        return MPlug();
    }
    setStatus(ReturnStatus, MStatus::kSuccess);
    return p;
}

MPlug MPlug::elementByPhysicalIndex(unsigned int index, MStatus* ReturnStatus) const {
    const Target t(*this);
    if (t && t->isArray()) showElements(*t);
    if (!t || !t->isArray() || index >= t->elements.size()) {
        setStatus(ReturnStatus, MStatus::kInvalidParameter);
        return MPlug();
    }
    return elementByLogicalIndex(static_cast<unsigned int>(std::next(t->elements.begin(), index)->first), ReturnStatus);
}

MPlug MPlug::connectionByPhysicalIndex(unsigned int index, MStatus* ReturnStatus) const {
    const Target t(*this);
    if (t && t->isArray()) {
        for (const auto& [i, e] : t->elements) {
            if (!e->source && e->destinations.empty()) continue;
            if (index-- == 0) return elementByLogicalIndex(static_cast<unsigned int>(i), ReturnStatus);
        }
    }
    setStatus(ReturnStatus, MStatus::kInvalidParameter);
    return MPlug();
}

bool MPlug::connectedTo(MPlugArray& array, bool asDst, bool asSrc, MStatus* ReturnStatus) const {
    array.clear();
    const Target t(*this);
    if (!t) {
        fail(ReturnStatus);
        return false;
    }
    setStatus(ReturnStatus, MStatus::kSuccess);
    if (asDst && t->source) array.append(Access::plug(*t->source));
    if (asSrc)
        for (Cell* d : t->destinations) array.append(Access::plug(*d));
    return array.length() > 0;
}

bool MPlug::isConnected(MStatus* ReturnStatus) const {
    const Target t(*this);
    setStatus(ReturnStatus, t ? MStatus::kSuccess : MStatus::kFailure);
    return t && (t->source || !t->destinations.empty());
}

bool MPlug::isSource(MStatus* ReturnStatus) const {
    const Target t(*this);
    setStatus(ReturnStatus, t ? MStatus::kSuccess : MStatus::kFailure);
    return t && !t->destinations.empty();
}

bool MPlug::isDestination(MStatus* ReturnStatus) const {
    const Target t(*this);
    setStatus(ReturnStatus, t ? MStatus::kSuccess : MStatus::kFailure);
    return t && t->source;
}

bool MPlug::isKeyable(MStatus* ReturnStatus) const {
    const Target t(*this);
    setStatus(ReturnStatus, t ? MStatus::kSuccess : MStatus::kFailure);
    return t && t->keyable.value_or(t->attribute.keyable);
}

MStatus MPlug::setKeyable(bool keyable) {
    const Target t(*this);
    if (!t) return MStatus::kFailure;
    t->node.scene.setKeyable(*t, keyable);
    return MStatus::kSuccess;
}

bool MPlug::isLocked(MStatus* ReturnStatus) const {
    const Target t(*this);
    setStatus(ReturnStatus, t ? MStatus::kSuccess : MStatus::kFailure);
    return t && t->lockedHere();
}

MStatus MPlug::setLocked(bool locked) {
    const Target t(*this);
    if (!t) return MStatus::kFailure;
    t->node.scene.setLocked(*t, locked);
    return MStatus::kSuccess;
}

bool MPlug::isChannelBoxFlagSet(MStatus* ReturnStatus) const {
    const Target t(*this);
    setStatus(ReturnStatus, t ? MStatus::kSuccess : MStatus::kFailure);
    return t && t->channelBox.value_or(t->attribute.channelBox);
}

MStatus MPlug::setChannelBox(bool inChannelBox) {
    const Target t(*this);
    if (!t) return MStatus::kFailure;
    t->node.scene.setChannelBox(*t, inChannelBox);
    return MStatus::kSuccess;
}

bool MPlug::isNull(MStatus* ReturnStatus) const {
    setStatus(ReturnStatus, MStatus::kSuccess);
    return node_.isNull() || attribute_.isNull();
}

MString MPlug::info(MStatus* ReturnStatus) const { return name(ReturnStatus); }

bool MPlug::isFromReferencedFile(MStatus* ReturnStatus) const {
    const auto n = Access::node(node_);
    setStatus(ReturnStatus, n ? MStatus::kSuccess : MStatus::kFailure);
    return n && n->referenced;
}

bool MPlug::isDynamic(MStatus* ReturnStatus) const {
    const auto a = Access::attribute(attribute_);
    setStatus(ReturnStatus, a ? MStatus::kSuccess : MStatus::kFailure);
    return a && a->root().dynamic;
}

MPlug::FreeToChangeState MPlug::isFreeToChange(bool checkParents, bool checkChildren, MStatus* ReturnStatus) const {
    const Target t(*this);
    setStatus(ReturnStatus, t ? MStatus::kSuccess : MStatus::kFailure);
    if (!t) return kNotFreeToChange;
    // As for Scene::requireSettable: keys leave a value free.
    const auto held = [](const Cell& c) { return c.locked || (c.source && !scene::curveOf(c)); };
    for (const Cell* c = t.cell; c; c = checkParents ? c->parent : nullptr)
        if (held(*c)) return kNotFreeToChange;
    if (checkChildren)
        for (const auto& c : t->children)
            if (c && held(*c)) return kChildrenNotFreeToChange;
    return kFreeToChange;
}

MDataHandle MPlug::constructHandle(MDataBlock&) const {
    const Target t(*this);
    return t ? Access::dataHandle(t->value) : MDataHandle();
}

template <class T>
MStatus MPlug::number(T& val, MDGContext& ctx) const {
    const Target t(*this);
    if (!t) return MStatus::kFailure;
    if (!t->attribute.isNumber() || t->isArray()) return MStatus::kInvalidParameter;
    bring(*t, ctx);
    int k = 0;
    const scene::Numeric* n = t->numbers(&k);
    if (!n) return MStatus::kFailure;
    if constexpr (std::is_same_v<T, bool>)
        val = n->get(k) != 0;
    else if constexpr (std::is_floating_point_v<T>)
        val = static_cast<T>(n->get(k));
    else {
        scene::Numeric out(sizeof(T) == 1   ? scene::NumericType::Char
                           : sizeof(T) == 2 ? scene::NumericType::Short
                           : sizeof(T) == 4 ? scene::NumericType::Int
                                            : scene::NumericType::Int64,
                           1);
        out.setInt64(0, n->getInt64(k));
        val = static_cast<T>(out.getInt64());
    }
    return MStatus::kSuccess;
}

MStatus MPlug::getValue(double& val, MDGContext& ctx) const { return number(val, ctx); }
MStatus MPlug::getValue(float& val, MDGContext& ctx) const { return number(val, ctx); }
MStatus MPlug::getValue(MInt64& val, MDGContext& ctx) const { return number(val, ctx); }
MStatus MPlug::getValue(int& val, MDGContext& ctx) const { return number(val, ctx); }
MStatus MPlug::getValue(short& val, MDGContext& ctx) const { return number(val, ctx); }
MStatus MPlug::getValue(bool& val, MDGContext& ctx) const { return number(val, ctx); }
MStatus MPlug::getValue(char& val, MDGContext& ctx) const { return number(val, ctx); }

MStatus MPlug::getValue(MDistance& val, MDGContext& ctx) const {
    double v = 0;
    const MStatus status = number(v, ctx);
    if (status) val = MDistance(v, MDistance::kCentimeters);
    return status;
}

MStatus MPlug::getValue(MAngle& val, MDGContext& ctx) const {
    double v = 0;
    const MStatus status = number(v, ctx);
    if (status) val = MAngle(v, MAngle::kRadians);
    return status;
}

MStatus MPlug::getValue(MTime& val, MDGContext& ctx) const {
    double v = 0;
    const MStatus status = number(v, ctx);
    if (status) val = timeOf(v);
    return status;
}

MStatus MPlug::getValue(MString& val, MDGContext& ctx) const {
    const Target t(*this);
    if (!t) return MStatus::kFailure;
    bring(*t, ctx);
    const auto* text = std::get_if<std::string>(&t->value);
    if (!text) return MStatus::kInvalidParameter;
    val = MString(text->data(), static_cast<int>(text->size()));
    return MStatus::kSuccess;
}

MStatus MPlug::getValue(MObject& val, MDGContext& ctx) const {
    const Target t(*this);
    if (!t || t->isArray()) return MStatus::kFailure;
    bring(*t, ctx);
    if (std::holds_alternative<std::monostate>(t->value)) return MStatus::kFailure;
    if (const auto* d = std::get_if<scene::DataPtr>(&t->value); d && !*d) return MStatus::kFailure;
    val = Access::object(t->value);
    return MStatus::kSuccess;
}

MStatus MPlug::getValue(MDataHandle& val, MDGContext& ctx) const {
    const Target t(*this);
    if (!t) return MStatus::kFailure;
    bring(*t, ctx);
    int k = 0;
    if (t->isTupleChild())
        val = Access::dataHandle(scene::Numeric(t->numbers(&k)->type, 1, t->number()));
    else
        val = Access::dataHandle(t->value);
    return MStatus::kSuccess;
}

MStatus MPlug::setValue(MObject& val) {
    const Target t(*this);
    const auto* data = Access::data(val);
    if (!t) return MStatus::kFailure;
    if (!data) return MStatus::kInvalidParameter;
    return api::guarded([&] { t->node.scene.setValue(*t, data->value, scene::Scene::LimitPolicy::Ignore); });
}

MStatus MPlug::setValue(MDataHandle& handle) {
    const Target t(*this);
    if (!t) return MStatus::kFailure;
    return api::guarded([&] { t->node.scene.setValue(*t, Access::value(handle), scene::Scene::LimitPolicy::Ignore); });
}

MStatus MPlug::setValue(double val) { return setNumber(*this, val); }
MStatus MPlug::setValue(float val) { return setNumber(*this, val); }
MStatus MPlug::setValue(int val) { return setNumber(*this, val); }
MStatus MPlug::setValue(short val) { return setNumber(*this, val); }
MStatus MPlug::setValue(bool val) { return setNumber(*this, val ? 1 : 0); }
MStatus MPlug::setValue(char val) { return setNumber(*this, val); }
MStatus MPlug::setValue(MDistance& val) { return setNumber(*this, val.asCentimeters()); }
MStatus MPlug::setValue(MAngle& val) { return setNumber(*this, val.asRadians()); }
MStatus MPlug::setValue(MTime& val) { return setNumber(*this, ticksOf(val)); }
MStatus MPlug::setValue(const char* val) { return setValue(MString(val)); }

MStatus MPlug::setValue(MInt64 val) {
    const Target t(*this);
    if (!t) return MStatus::kFailure;
    if (!t->attribute.isNumber() || t->isArray()) return MStatus::kInvalidParameter;
    return api::guarded([&] { t->node.scene.setInt64(*t, val); });
}

MStatus MPlug::setValue(const MString& val) {
    const Target t(*this);
    if (!t) return MStatus::kFailure;
    if (!std::holds_alternative<std::string>(t->value)) return MStatus::kInvalidParameter;
    return api::guarded([&] { t->node.scene.setValue(*t, api::toText(val)); });
}

namespace {

template <class T>
T asValue(const MPlug& plug, MDGContext& ctx, MStatus* out) {
    T v{};
    const MStatus status = plug.getValue(v, ctx);
    if (out) *out = status;
    return v;
}

} // namespace

MObject MPlug::asMObject(MDGContext& ctx, MStatus* s) const { return asValue<MObject>(*this, ctx, s); }
MDataHandle MPlug::asMDataHandle(MDGContext& ctx, MStatus* s) const { return asValue<MDataHandle>(*this, ctx, s); }
double MPlug::asDouble(MDGContext& ctx, MStatus* s) const { return asValue<double>(*this, ctx, s); }
float MPlug::asFloat(MDGContext& ctx, MStatus* s) const { return asValue<float>(*this, ctx, s); }
MInt64 MPlug::asInt64(MDGContext& ctx, MStatus* s) const { return asValue<MInt64>(*this, ctx, s); }
int MPlug::asInt(MDGContext& ctx, MStatus* s) const { return asValue<int>(*this, ctx, s); }
short MPlug::asShort(MDGContext& ctx, MStatus* s) const { return asValue<short>(*this, ctx, s); }
bool MPlug::asBool(MDGContext& ctx, MStatus* s) const { return asValue<bool>(*this, ctx, s); }
MDistance MPlug::asMDistance(MDGContext& ctx, MStatus* s) const { return asValue<MDistance>(*this, ctx, s); }
MAngle MPlug::asMAngle(MDGContext& ctx, MStatus* s) const { return asValue<MAngle>(*this, ctx, s); }
MTime MPlug::asMTime(MDGContext& ctx, MStatus* s) const { return asValue<MTime>(*this, ctx, s); }
char MPlug::asChar(MDGContext& ctx, MStatus* s) const { return asValue<char>(*this, ctx, s); }
MString MPlug::asString(MDGContext& ctx, MStatus* s) const { return asValue<MString>(*this, ctx, s); }

MStatus MPlug::setMObject(MObject& val) { return setValue(val); }
MStatus MPlug::setMDataHandle(MDataHandle& handle) { return setValue(handle); }
MStatus MPlug::setDouble(double val) { return setValue(val); }
MStatus MPlug::setFloat(float val) { return setValue(val); }
MStatus MPlug::setInt64(MInt64 val) { return setValue(val); }
MStatus MPlug::setInt(int val) { return setValue(val); }
MStatus MPlug::setShort(short val) { return setValue(val); }
MStatus MPlug::setBool(bool val) { return setValue(val); }
MStatus MPlug::setMDistance(MDistance& val) { return setValue(val); }
MStatus MPlug::setMAngle(MAngle& val) { return setValue(val); }
MStatus MPlug::setMTime(MTime& val) { return setValue(val); }
MStatus MPlug::setChar(char val) { return setValue(val); }
MStatus MPlug::setString(const MString& val) { return setValue(val); }

MPlug MPlug::operator[](unsigned int physicalIndex) const { return elementByPhysicalIndex(physicalIndex); }
MPlug MPlug::operator[](MObject& attr) const { return child(attr); }

bool MPlug::operator==(const MPlug& other) const {
    if (node_ != other.node_ || attribute_ != other.attribute_) return false;
    // Comparing must not make elements, so the indices are compared and not the cells.
    const auto a = Access::attribute(attribute_);
    for (const scene::Attribute* x = a.get(); x; x = x->parent)
        if (x->array && Access::index(*this, *x) != Access::index(other, *x)) return false;
    return true;
}

bool MPlug::operator==(const MObject& attr) const { return attribute_ == attr; }
bool MPlug::operator!=(const MPlug& other) const { return !(*this == other); }
bool MPlug::operator!=(const MObject& attr) const { return !(*this == attr); }

MStatus MPlug::setNumElements(unsigned int elements) {
    const Target t(*this);
    if (!t || !t->isArray()) return MStatus::kInvalidParameter;
    if (elements > static_cast<unsigned int>(scene::Scene::maxArrayIndex)) return MStatus::kInsufficientMemory;
    for (unsigned int i = 0; i < elements; ++i) t->element(static_cast<int>(i));
    return MStatus::kSuccess;
}

MPlug::operator MObject() const { return attribute_; }
bool MPlug::operator!() const { return isNull(); }
const char* MPlug::className() { return "MPlug"; }
