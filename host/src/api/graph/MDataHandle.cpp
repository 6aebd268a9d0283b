#include <maya/MDataHandle.h>

#include "api/fn/NumericTypes.h"
#include "api/graph/DataTypes.h"
#include "api/graph/Handle.h"
#include "scene/Evaluation.h"
#include "scene/MeshNode.h"
#include "values/StatusOut.h"
#include "values/Text.h"
#include "values/TimeTicks.h"

#include <maya/MAngle.h>
#include <maya/MArrayDataHandle.h>
#include <maya/MDataBlock.h>
#include <maya/MDistance.h>
#include <maya/MFloatMatrix.h>
#include <maya/MFloatVector.h>
#include <maya/MMatrix.h>
#include <maya/MPlug.h>
#include <maya/MString.h>
#include <maya/MTime.h>
#include <maya/MTypeId.h>
#include <maya/MVector.h>

using namespace host;
using host::api::Access;
using scene::Cell;
using scene::Numeric;
using scene::NumericType;

/// Either a cell of a node, or a value of the handle's own.
struct MDataHandle::View {
    std::shared_ptr<scene::Node> node;
    Cell* cell = nullptr;
    scene::Value own;
    std::unique_ptr<MString> text;

    Numeric* numbers(int* k) {
        if (cell) return cell->numbers(k);
        *k = 0;
        return std::get_if<Numeric>(&own);
    }
    scene::Value& value() { return cell ? cell->value : own; }
};

namespace host::api {

MDataHandle Access::dataHandle(Cell& cell) {
    MDataHandle h;
    h.view_ = std::make_shared<MDataHandle::View>();
    h.view_->node = cell.node.shared_from_this();
    h.view_->cell = &cell;
    return h;
}

MDataHandle Access::dataHandle(scene::Value value) {
    MDataHandle h;
    h.view_ = std::make_shared<MDataHandle::View>();
    h.view_->own = std::move(value);
    return h;
}

Cell* Access::cell(const MDataHandle& handle) { return handle.view_ ? handle.view_->cell : nullptr; }

scene::Value Access::value(const MDataHandle& handle) {
    if (!handle.view_) return {};
    int k = 0;
    if (handle.view_->cell && handle.view_->cell->isTupleChild()) {
        const Numeric* n = handle.view_->cell->numbers(&k);
        return n ? scene::Value(Numeric(n->type, 1, n->get(k))) : scene::Value();
    }
    return handle.view_->value();
}

MDataBlock Access::dataBlock(scene::Node& node) {
    MDataBlock b;
    b.node_ = object(&node);
    return b;
}

void takeText(Cell& cell) {
    const auto* view = static_cast<const MString*>(cell.apiView.get());
    auto* text = std::get_if<std::string>(&cell.value);
    if (view && text) text->assign(view->asChar(), view->length());
    cell.apiView.reset();
}

} // namespace host::api

namespace {

/// What a reference to a value of the wrong type refers to: a place of its own, zero at each call.
template <class T>
T& nowhere() {
    static thread_local T place;
    place = T();
    return place;
}

template <class T, class Handle>
T& numberAt(Handle& view, NumericType type, int count = 1) {
    int k = 0;
    Numeric* n = view ? view->numbers(&k) : nullptr;
    if (!n || n->type != type || n->count - k < count) return nowhere<T>();
    return *static_cast<T*>(n->address(k));
}

/// Tuples: count numbers side by side, seen as an array.
template <class Tuple, class Handle>
Tuple& tupleAt(Handle& view, NumericType type, int count) {
    int k = 0;
    Numeric* n = view ? view->numbers(&k) : nullptr;
    if (!n || n->type != type || n->count != count || k != 0) {
        static thread_local Numeric place;
        place = Numeric(type, count);
        return *reinterpret_cast<Tuple*>(place.address(0));
    }
    return *reinterpret_cast<Tuple*>(n->address(0));
}

} // namespace

MDataHandle::MDataHandle() = default;
MDataHandle::MDataHandle(const MDataHandle& other) = default;
MDataHandle& MDataHandle::operator=(const MDataHandle& other) = default;

bool MDataHandle::isNumeric() const {
    int k = 0;
    return view_ && view_->numbers(&k);
}

MFnNumericData::Type MDataHandle::numericType() const {
    int k = 0;
    const Numeric* n = view_ ? view_->numbers(&k) : nullptr;
    if (!n) return MFnNumericData::kInvalid;
    const int count = view_->cell && view_->cell->isTupleChild() ? 1 : n->count;
    return host::api::numericName(n->type, count);
}

MFnData::Type MDataHandle::type() const {
    if (!view_) return MFnData::kInvalid;
    if (isNumeric()) return MFnData::kNumeric;
    const auto& v = view_->value();
    if (std::holds_alternative<std::string>(v)) return MFnData::kString;
    if (scene::matrixIn(v) || scene::floatMatrixIn(v)) return MFnData::kMatrix;
    if (const auto* d = std::get_if<scene::DataPtr>(&v); d && *d) return api::typeOf((*d)->kind());
    // Nothing is there yet; the attribute says what there will be.
    return view_->cell ? api::typeOf(view_->cell->attribute.dataKind) : MFnData::kInvalid;
}

bool MDataHandle::isGeneric(bool& isNumeric, bool& isNull) const {
    if (!view_ || !view_->cell || view_->cell->attribute.type != scene::AttributeType::Generic) return false;
    isNumeric = this->isNumeric();
    isNull = !scene::kindOf(view_->value());
    return true;
}

namespace {

template <class T, class Handle>
T genericNumber(const Handle& view) {
    int k = 0;
    const Numeric* n = view ? view->numbers(&k) : nullptr;
    if (!n) return T();
    if constexpr (std::is_floating_point_v<T>) return static_cast<T>(n->get(k));
    if constexpr (std::is_same_v<T, bool>) return n->get(k) != 0;
    return static_cast<T>(n->getInt64(k));
}

template <class Handle, class T>
void setGenericNumber(const Handle& view, NumericType type, T value, bool force) {
    if (!view || !view->cell || view->cell->attribute.type != scene::AttributeType::Generic) return;
    auto* held = std::get_if<Numeric>(&view->value());
    Numeric number(held && !force ? held->type : type, 1);
    if constexpr (std::is_same_v<T, MInt64>)
        number.setInt64(0, value);
    else
        number.set(0, static_cast<double>(value));
    if (force || view->cell->attribute.accepts(*scene::kindOf(scene::Value(number)))) view->value() = number;
}

} // namespace

bool MDataHandle::asGenericBool() const { return genericNumber<bool>(view_); }
unsigned char MDataHandle::asGenericChar() const { return genericNumber<unsigned char>(view_); }
double MDataHandle::asGenericDouble() const { return genericNumber<double>(view_); }
float MDataHandle::asGenericFloat() const { return genericNumber<float>(view_); }
short MDataHandle::asGenericShort() const { return genericNumber<short>(view_); }
int MDataHandle::asGenericInt() const { return genericNumber<int>(view_); }
MInt64 MDataHandle::asGenericInt64() const { return genericNumber<MInt64>(view_); }
void MDataHandle::setGenericBool(bool v, bool f) { setGenericNumber(view_, NumericType::Bool, v, f); }
void MDataHandle::setGenericChar(unsigned char v, bool f) { setGenericNumber(view_, NumericType::Byte, v, f); }
void MDataHandle::setGenericDouble(double v, bool f) { setGenericNumber(view_, NumericType::Double, v, f); }
void MDataHandle::setGenericFloat(float v, bool f) { setGenericNumber(view_, NumericType::Float, v, f); }
void MDataHandle::setGenericShort(short v, bool f) { setGenericNumber(view_, NumericType::Short, v, f); }
void MDataHandle::setGenericInt(int v, bool f) { setGenericNumber(view_, NumericType::Int, v, f); }
void MDataHandle::setGenericInt64(MInt64 v, bool f) { setGenericNumber(view_, NumericType::Int64, v, f); }

MTypeId MDataHandle::typeId() const { return MTypeId(); }
MObject MDataHandle::data() { return view_ ? Access::object(Access::value(*this)) : MObject(); }

MStatus MDataHandle::copy(const MDataHandle& src) {
    if (!view_ || !src.view_) return MStatus::kFailure;
    if (view_->cell && src.view_->cell) {
        scene::assign(*view_->cell, *src.view_->cell);
        return MStatus::kSuccess;
    }
    return set(Access::object(Access::value(src)));
}

void MDataHandle::setClean() {
    if (!view_ || !view_->cell) return;
    api::takeText(*view_->cell);
    scene::setClean(*view_->cell);
}

bool& MDataHandle::asBool() const { return numberAt<bool>(view_, NumericType::Bool); }
char& MDataHandle::asChar() const { return numberAt<char>(view_, NumericType::Char); }
unsigned char& MDataHandle::asUChar() const { return numberAt<unsigned char>(view_, NumericType::Byte); }
short& MDataHandle::asShort() const { return numberAt<short>(view_, NumericType::Short); }
int& MDataHandle::asLong() const { return asInt(); }
int& MDataHandle::asInt() const { return numberAt<int>(view_, NumericType::Int); }
MInt64& MDataHandle::asInt64() const { return numberAt<MInt64>(view_, NumericType::Int64); }
float& MDataHandle::asFloat() const { return numberAt<float>(view_, NumericType::Float); }
double& MDataHandle::asDouble() const { return numberAt<double>(view_, NumericType::Double); }
MDistance MDataHandle::asDistance() const { return MDistance(asDouble(), MDistance::kCentimeters); }
MAngle MDataHandle::asAngle() const { return MAngle(asDouble(), MAngle::kRadians); }
MTime MDataHandle::asTime() const { return timeOf(asDouble()); }
short2& MDataHandle::asShort2() const { return tupleAt<short2>(view_, NumericType::Short, 2); }
long2& MDataHandle::asLong2() const { return tupleAt<long2>(view_, NumericType::Int, 2); }
int2& MDataHandle::asInt2() const { return tupleAt<int2>(view_, NumericType::Int, 2); }
float2& MDataHandle::asFloat2() const { return tupleAt<float2>(view_, NumericType::Float, 2); }
double2& MDataHandle::asDouble2() const { return tupleAt<double2>(view_, NumericType::Double, 2); }
short3& MDataHandle::asShort3() const { return tupleAt<short3>(view_, NumericType::Short, 3); }
long3& MDataHandle::asLong3() const { return tupleAt<long3>(view_, NumericType::Int, 3); }
int3& MDataHandle::asInt3() const { return tupleAt<int3>(view_, NumericType::Int, 3); }
float3& MDataHandle::asFloat3() const { return tupleAt<float3>(view_, NumericType::Float, 3); }
double3& MDataHandle::asDouble3() const { return tupleAt<double3>(view_, NumericType::Double, 3); }
// Vectors are three numbers side by side, like the tuples.
static_assert(sizeof(MVector) == sizeof(double3) && sizeof(MFloatVector) == sizeof(float3));
MVector& MDataHandle::asVector() const { return tupleAt<MVector>(view_, NumericType::Double, 3); }
MFloatVector& MDataHandle::asFloatVector() const { return tupleAt<MFloatVector>(view_, NumericType::Float, 3); }

MMatrix& MDataHandle::asMatrix() const {
    auto* m = view_ ? scene::matrixIn(view_->value()) : nullptr;
    return m ? *m : nowhere<MMatrix>();
}

MFloatMatrix& MDataHandle::asFloatMatrix() const {
    auto* m = view_ ? scene::floatMatrixIn(view_->value()) : nullptr;
    return m ? *m : nowhere<MFloatMatrix>();
}

MString& MDataHandle::asString() const {
    const auto* text = view_ ? std::get_if<std::string>(&view_->value()) : nullptr;
    if (!text) return nowhere<MString>();
    auto made = std::make_shared<MString>(text->data(), static_cast<int>(text->size()));
    MString& reference = *made;
    // The reference outlives this handle, as it does in the data block of the real host.
    if (view_->cell)
        view_->cell->apiView = std::move(made);
    else
        view_->text = std::make_unique<MString>(reference);
    return view_->cell ? reference : *view_->text;
}

MObject MDataHandle::asMesh() const {
    const auto* d = view_ ? std::get_if<scene::DataPtr>(&view_->value()) : nullptr;
    return d && *d && (*d)->kind() == scene::DataKind::Mesh ? Access::object(scene::Value(*d)) : MObject();
}

MObject MDataHandle::asMeshTransformed() const { return asMesh(); }

namespace {

template <class View, class... T>
void setNumbers(View& view, T... values) {
    int k = 0;
    Numeric* n = view ? view->numbers(&k) : nullptr;
    if (!n || n->count - k < static_cast<int>(sizeof...(T))) return;
    ((n->set(k++, static_cast<double>(values))), ...);
}

} // namespace

void MDataHandle::set(bool v) { setNumbers(view_, v); }
void MDataHandle::set(char v) { setNumbers(view_, v); }
void MDataHandle::set(short v) { setNumbers(view_, v); }
void MDataHandle::set(int v) { setNumbers(view_, v); }
void MDataHandle::set(float v) { setNumbers(view_, v); }
void MDataHandle::set(double v) { setNumbers(view_, v); }
void MDataHandle::set(MInt64 v) {
    int k = 0;
    if (Numeric* n = view_ ? view_->numbers(&k) : nullptr) n->setInt64(k, v);
}
void MDataHandle::set(const MMatrix& v) {
    if (view_ && scene::matrixIn(view_->value())) view_->value() = v;
}
void MDataHandle::set(const MFloatMatrix& v) {
    if (view_ && scene::floatMatrixIn(view_->value())) view_->value() = v;
}
void MDataHandle::set(const MVector& v) { setNumbers(view_, v.x, v.y, v.z); }
void MDataHandle::set(const MFloatVector& v) { setNumbers(view_, v.x, v.y, v.z); }
void MDataHandle::set(const MDistance& v) { setNumbers(view_, v.asCentimeters()); }
void MDataHandle::set(const MAngle& v) { setNumbers(view_, v.asRadians()); }
void MDataHandle::set(const MTime& v) { setNumbers(view_, ticksOf(v)); }
void MDataHandle::set(short a, short b) { setNumbers(view_, a, b); }
void MDataHandle::set(int a, int b) { setNumbers(view_, a, b); }
void MDataHandle::set(float a, float b) { setNumbers(view_, a, b); }
void MDataHandle::set(double a, double b) { setNumbers(view_, a, b); }
void MDataHandle::set(short a, short b, short c) { setNumbers(view_, a, b, c); }
void MDataHandle::set(int a, int b, int c) { setNumbers(view_, a, b, c); }
void MDataHandle::set(float a, float b, float c) { setNumbers(view_, a, b, c); }
void MDataHandle::set(double a, double b, double c) { setNumbers(view_, a, b, c); }

void MDataHandle::set(const MString& v) {
    if (!view_ || !std::holds_alternative<std::string>(view_->value())) return;
    if (view_->cell) view_->cell->apiView.reset();
    view_->value() = api::toText(v);
}

MStatus MDataHandle::set(const MObject& object) {
    const auto* data = Access::data(object);
    if (!view_ || !data) return MStatus::kInvalidParameter;
    const bool generic = view_->cell && view_->cell->attribute.type == scene::AttributeType::Generic;
    if (generic) {
        const auto kind = scene::kindOf(data->value);
        if (kind && !view_->cell->attribute.accepts(*kind)) return MStatus::kInvalidParameter;
        view_->value() = data->value;
        return MStatus::kSuccess;
    }
    if (const auto* n = std::get_if<Numeric>(&data->value)) {
        int k = 0;
        Numeric* to = view_->numbers(&k);
        if (!to || to->count - k < n->count) return MStatus::kInvalidParameter;
        for (int i = 0; i < n->count; ++i) to->set(k + i, n->get(i));
        return MStatus::kSuccess;
    }
    if (view_->value().index() != data->value.index()) return MStatus::kInvalidParameter;
    const auto* held = std::get_if<scene::DataPtr>(&data->value);
    if (view_->cell && held && *held && (*held)->kind() != view_->cell->attribute.dataKind)
        return MStatus::kInvalidParameter;
    view_->value() = data->value;
    return MStatus::kSuccess;
}

void MDataHandle::setBool(bool v) { set(v); }
void MDataHandle::setChar(char v) { set(v); }
void MDataHandle::setShort(short v) { set(v); }
void MDataHandle::setInt(int v) { set(v); }
void MDataHandle::setInt64(MInt64 v) { set(v); }
void MDataHandle::setFloat(float v) { set(v); }
void MDataHandle::setDouble(double v) { set(v); }
void MDataHandle::setMMatrix(const MMatrix& v) { set(v); }
void MDataHandle::setMFloatMatrix(const MFloatMatrix& v) { set(v); }
void MDataHandle::setMVector(const MVector& v) { set(v); }
void MDataHandle::setMFloatVector(const MFloatVector& v) { set(v); }
void MDataHandle::setMDistance(const MDistance& v) { set(v); }
void MDataHandle::setMAngle(const MAngle& v) { set(v); }
void MDataHandle::setMTime(const MTime& v) { set(v); }
void MDataHandle::set2Short(short a, short b) { set(a, b); }
void MDataHandle::set2Int(int a, int b) { set(a, b); }
void MDataHandle::set2Float(float a, float b) { set(a, b); }
void MDataHandle::set2Double(double a, double b) { set(a, b); }
void MDataHandle::set3Short(short a, short b, short c) { set(a, b, c); }
void MDataHandle::set3Int(int a, int b, int c) { set(a, b, c); }
void MDataHandle::set3Float(float a, float b, float c) { set(a, b, c); }
void MDataHandle::set3Double(double a, double b, double c) { set(a, b, c); }
void MDataHandle::setString(const MString& v) { set(v); }
MStatus MDataHandle::setMObject(const MObject& data) { return set(data); }

MDataHandle MDataHandle::child(const MPlug& plug) { return child(plug.attribute()); }

MDataHandle MDataHandle::child(const MObject& attribute) {
    const auto a = Access::attribute(attribute);
    Cell* c = view_ ? view_->cell : nullptr;
    if (!a || !c || a->parent != &c->attribute || c->isArray()) return MDataHandle();
    return Access::dataHandle(c->child(a->childIndex));
}

const char* MDataHandle::className() { return "MDataHandle"; }

MArrayDataHandle::MArrayDataHandle(const MDataHandle& in, MStatus* ReturnStatus) : array_(in) {
    const Cell* c = Access::cell(in);
    setStatus(ReturnStatus, c && c->isArray() ? MStatus::kSuccess : MStatus::kInvalidParameter);
}
MArrayDataHandle::MArrayDataHandle(const MArrayDataHandle& other) = default;
MArrayDataHandle& MArrayDataHandle::operator=(const MArrayDataHandle& other) = default;

namespace {

Cell* elementAt(const MDataHandle& array, unsigned int position) {
    Cell* c = Access::cell(array);
    if (!c || !c->isArray() || position >= c->elements.size()) return nullptr;
    return std::next(c->elements.begin(), position)->second.get();
}

MDataHandle handleOf(Cell* c, bool evaluated, MStatus* out) {
    setStatus(out, c ? MStatus::kSuccess : MStatus::kFailure);
    if (!c) return MDataHandle();
    if (evaluated) scene::evaluate(*c);
    return Access::dataHandle(*c);
}

} // namespace

MDataHandle MArrayDataHandle::inputValue(MStatus* s) { return handleOf(elementAt(array_, position_), true, s); }
MDataHandle MArrayDataHandle::outputValue(MStatus* s) { return handleOf(elementAt(array_, position_), false, s); }
MArrayDataHandle MArrayDataHandle::inputArrayValue(MStatus* s) { return MArrayDataHandle(inputValue(s), s); }
MArrayDataHandle MArrayDataHandle::outputArrayValue(MStatus* s) { return MArrayDataHandle(outputValue(s), s); }

MStatus MArrayDataHandle::next() {
    if (!elementAt(array_, position_ + 1)) return MStatus::kFailure;
    ++position_;
    return MStatus::kSuccess;
}

unsigned int MArrayDataHandle::elementCount(MStatus* ReturnStatus) {
    const Cell* c = Access::cell(array_);
    setStatus(ReturnStatus, c && c->isArray() ? MStatus::kSuccess : MStatus::kFailure);
    return c ? static_cast<unsigned int>(c->elements.size()) : 0;
}

unsigned int MArrayDataHandle::elementIndex(MStatus* ReturnStatus) {
    const Cell* c = elementAt(array_, position_);
    setStatus(ReturnStatus, c ? MStatus::kSuccess : MStatus::kFailure);
    return c ? static_cast<unsigned int>(c->index) : 0;
}

MStatus MArrayDataHandle::jumpToElement(unsigned int index) {
    const Cell* c = Access::cell(array_);
    if (!c || !c->isArray()) return MStatus::kFailure;
    const auto it = c->elements.find(static_cast<int>(index));
    if (it == c->elements.end()) return MStatus::kInvalidParameter;
    position_ = static_cast<unsigned int>(std::distance(c->elements.begin(), it));
    return MStatus::kSuccess;
}

MStatus MArrayDataHandle::jumpToArrayElement(unsigned int position) {
    if (!elementAt(array_, position)) return MStatus::kInvalidParameter;
    position_ = position;
    return MStatus::kSuccess;
}

MStatus MArrayDataHandle::setClean() {
    if (Cell* c = elementAt(array_, position_)) scene::setClean(*c);
    return MStatus::kSuccess;
}

MStatus MArrayDataHandle::setAllClean() {
    array_.setClean();
    return MStatus::kSuccess;
}

const char* MArrayDataHandle::className() { return "MArrayDataHandle"; }

namespace {

/// The cell that an attribute object means on the block's node: below no array, or an array itself.
Cell* cellOn(const MObject& node, const MObject& attribute, std::shared_ptr<scene::Node>& keep) {
    return Access::cell(MPlug(node, attribute), keep);
}

MDataHandle handleOn(Cell* c, bool evaluated, MStatus* out) {
    setStatus(out, c ? MStatus::kSuccess : MStatus::kInvalidParameter);
    if (!c) return MDataHandle();
    if (evaluated) scene::evaluate(*c);
    return Access::dataHandle(*c);
}

} // namespace

MDataHandle MDataBlock::inputValue(const MPlug& plug, MStatus* s) {
    std::shared_ptr<scene::Node> keep;
    return handleOn(Access::cell(plug, keep), true, s);
}
MDataHandle MDataBlock::inputValue(const MObject& attribute, MStatus* s) {
    std::shared_ptr<scene::Node> keep;
    return handleOn(cellOn(node_, attribute, keep), true, s);
}
MDataHandle MDataBlock::outputValue(const MPlug& plug, MStatus* s) {
    std::shared_ptr<scene::Node> keep;
    return handleOn(Access::cell(plug, keep), false, s);
}
MDataHandle MDataBlock::outputValue(const MObject& attribute, MStatus* s) {
    std::shared_ptr<scene::Node> keep;
    return handleOn(cellOn(node_, attribute, keep), false, s);
}
MArrayDataHandle MDataBlock::inputArrayValue(const MPlug& plug, MStatus* s) {
    return MArrayDataHandle(inputValue(plug, s), s);
}
MArrayDataHandle MDataBlock::inputArrayValue(const MObject& attribute, MStatus* s) {
    return MArrayDataHandle(inputValue(attribute, s), s);
}
MArrayDataHandle MDataBlock::outputArrayValue(const MPlug& plug, MStatus* s) {
    return MArrayDataHandle(outputValue(plug, s), s);
}
MArrayDataHandle MDataBlock::outputArrayValue(const MObject& attribute, MStatus* s) {
    return MArrayDataHandle(outputValue(attribute, s), s);
}

MStatus MDataBlock::setClean(const MPlug& plug) {
    std::shared_ptr<scene::Node> keep;
    Cell* c = Access::cell(plug, keep);
    if (!c) return MStatus::kInvalidParameter;
    Access::dataHandle(*c).setClean();
    return MStatus::kSuccess;
}

MStatus MDataBlock::setClean(const MObject& attribute) { return setClean(MPlug(node_, attribute)); }

bool MDataBlock::isClean(const MPlug& plug) {
    std::shared_ptr<scene::Node> keep;
    const Cell* c = Access::cell(plug, keep);
    return c && !c->dirty;
}

bool MDataBlock::isClean(const MObject& attribute, MStatus* ReturnStatus) {
    setStatus(ReturnStatus, MStatus::kSuccess);
    return isClean(MPlug(node_, attribute));
}

MDGContext MDataBlock::context(MStatus* ReturnStatus) {
    setStatus(ReturnStatus, MStatus::kSuccess);
    return context_;
}

MStatus MDataBlock::setContext(const MDGContext& ctx) {
    context_ = ctx;
    return MStatus::kSuccess;
}

const char* MDataBlock::className() { return "MDataBlock"; }
