#include <maya/MFnData.h>

#include "api/fn/FnSupport.h"
#include "api/fn/NumericTypes.h"
#include "values/Text.h"

#include <maya/MFnMatrixData.h>
#include <maya/MFnNumericData.h>
#include <maya/MFnStringData.h>
#include <maya/MMatrix.h>
#include <maya/MString.h>
#include <maya/MTransformationMatrix.h>

using namespace host;
using host::api::Access;
using scene::Numeric;
using scene::NumericType;

ORVO_DEFINE_FN(MFnData, MFn::kData)
ORVO_FN_NAME(MFnData)
ORVO_DEFINE_FN(MFnNumericData, MFn::kNumericData)
ORVO_FN_NAME(MFnNumericData)
ORVO_DEFINE_FN(MFnMatrixData, MFn::kMatrixData)
ORVO_FN_NAME(MFnMatrixData)
ORVO_DEFINE_FN(MFnStringData, MFn::kStringData)
ORVO_FN_NAME(MFnStringData)

namespace {

Numeric* numbersOf(const MObject& o) {
    auto* d = Access::data(o);
    return d ? std::get_if<Numeric>(&d->value) : nullptr;
}

template <class T>
constexpr NumericType typeFor() {
    if constexpr (std::is_same_v<T, short>)
        return NumericType::Short;
    else if constexpr (std::is_same_v<T, int>)
        return NumericType::Int;
    else if constexpr (std::is_same_v<T, float>)
        return NumericType::Float;
    else
        return NumericType::Double;
}

} // namespace

MObject MFnNumericData::create(Type dataType, MStatus* ReturnStatus) {
    const api::NumericKind kind = api::numericKind(dataType);
    if (kind.count < 2) {
        setStatus(ReturnStatus, MStatus::kInvalidParameter);
        return MObject();
    }
    setStatus(ReturnStatus, MStatus::kSuccess);
    object_ = Access::object(scene::Value(Numeric(kind.type, kind.count)));
    return object_;
}

MFnNumericData::Type MFnNumericData::numericType(MStatus* ReturnStatus) {
    const Numeric* n = numbersOf(object_);
    setStatus(ReturnStatus, n ? MStatus::kSuccess : MStatus::kFailure);
    if (!n) return kInvalid;
    return host::api::numericName(n->type, n->count);
}

template <class T>
MStatus MFnNumericData::read(int count, T* values) {
    const Numeric* n = numbersOf(object_);
    if (!n) return MStatus::kFailure;
    if (n->type != typeFor<T>() || n->count != count) return MStatus::kInvalidParameter;
    for (int i = 0; i < count; ++i) values[i] = static_cast<T>(n->get(i));
    return MStatus::kSuccess;
}

template <class T>
MStatus MFnNumericData::write(int count, const T* values) {
    Numeric* n = numbersOf(object_);
    if (!n) return MStatus::kFailure;
    if (n->type != typeFor<T>() || n->count != count) return MStatus::kInvalidParameter;
    for (int i = 0; i < count; ++i) n->set(i, static_cast<double>(values[i]));
    return MStatus::kSuccess;
}

namespace {

template <class Fn, class... T>
MStatus readInto(Fn read, T&... out) {
    std::common_type_t<T...> values[sizeof...(T)] = {};
    const MStatus status = read(static_cast<int>(sizeof...(T)), values);
    int i = 0;
    if (status) ((out = values[i++]), ...);
    return status;
}

} // namespace

#define ORVO_READ(...) return readInto([this](int n, auto* v) { return read(n, v); }, __VA_ARGS__)
#define ORVO_WRITE(T, ...)                                                                                             \
    const T values[] = {__VA_ARGS__};                                                                                  \
    return write(static_cast<int>(sizeof values / sizeof values[0]), values)

#define ORVO_NUMERIC_PAIR(T, Name)                                                                                     \
    MStatus MFnNumericData::getData(T& a, T& b) { ORVO_READ(a, b); }                                                   \
    MStatus MFnNumericData::getData(T& a, T& b, T& c) { ORVO_READ(a, b, c); }                                          \
    MStatus MFnNumericData::setData(T a, T b) { ORVO_WRITE(T, a, b); }                                                 \
    MStatus MFnNumericData::setData(T a, T b, T c) { ORVO_WRITE(T, a, b, c); }                                         \
    MStatus MFnNumericData::getData2##Name(T& a, T& b) { return getData(a, b); }                                       \
    MStatus MFnNumericData::getData3##Name(T& a, T& b, T& c) { return getData(a, b, c); }                              \
    MStatus MFnNumericData::setData2##Name(T a, T b) { return setData(a, b); }                                         \
    MStatus MFnNumericData::setData3##Name(T a, T b, T c) { return setData(a, b, c); }

ORVO_NUMERIC_PAIR(short, Short)
ORVO_NUMERIC_PAIR(int, Int)
ORVO_NUMERIC_PAIR(float, Float)
ORVO_NUMERIC_PAIR(double, Double)

MStatus MFnNumericData::getData(double& a, double& b, double& c, double& d) { ORVO_READ(a, b, c, d); }
MStatus MFnNumericData::setData(double a, double b, double c, double d) { ORVO_WRITE(double, a, b, c, d); }
MStatus MFnNumericData::getData4Double(double& a, double& b, double& c, double& d) { return getData(a, b, c, d); }
MStatus MFnNumericData::setData4Double(double a, double b, double c, double d) { return setData(a, b, c, d); }

namespace {

MMatrix* matrixOf(const MObject& o) {
    auto* d = Access::data(o);
    return d ? scene::matrixIn(d->value) : nullptr;
}

std::string* textOf(const MObject& o) {
    auto* d = Access::data(o);
    return d ? std::get_if<std::string>(&d->value) : nullptr;
}

} // namespace

bool MFnMatrixData::isTransformation(MStatus* ReturnStatus) const {
    setStatus(ReturnStatus, matrixOf(object_) ? MStatus::kSuccess : MStatus::kFailure);
    return false;
}

MTransformationMatrix MFnMatrixData::transformation(MStatus* ReturnStatus) const {
    return MTransformationMatrix(matrix(ReturnStatus));
}

const MMatrix& MFnMatrixData::matrix(MStatus* ReturnStatus) const {
    const MMatrix* m = matrixOf(object_);
    setStatus(ReturnStatus, m ? MStatus::kSuccess : MStatus::kFailure);
    return m ? *m : MMatrix::identity;
}

MStatus MFnMatrixData::set(const MTransformationMatrix& transformation) { return set(transformation.asMatrix()); }

MStatus MFnMatrixData::set(const MMatrix& mat) {
    MMatrix* m = matrixOf(object_);
    if (!m) return MStatus::kFailure;
    *m = mat;
    return MStatus::kSuccess;
}

MObject MFnMatrixData::create(MStatus* ReturnStatus) { return create(MMatrix(), ReturnStatus); }

MObject MFnMatrixData::create(const MMatrix& mat, MStatus* ReturnStatus) {
    setStatus(ReturnStatus, MStatus::kSuccess);
    object_ = Access::object(scene::Value(mat));
    return object_;
}

MObject MFnMatrixData::create(const MTransformationMatrix& transformation, MStatus* ReturnStatus) {
    return create(transformation.asMatrix(), ReturnStatus);
}

MString MFnStringData::string(MStatus* ReturnStatus) const {
    const std::string* s = textOf(object_);
    setStatus(ReturnStatus, s ? MStatus::kSuccess : MStatus::kFailure);
    return s ? MString(s->data(), static_cast<int>(s->size())) : MString();
}

MStatus MFnStringData::set(const MString& string) {
    std::string* s = textOf(object_);
    if (!s) return MStatus::kFailure;
    s->assign(string.asChar(), string.length());
    return MStatus::kSuccess;
}

MObject MFnStringData::create(const MString& str, MStatus* ReturnStatus) {
    setStatus(ReturnStatus, MStatus::kSuccess);
    object_ = Access::object(scene::Value(api::toText(str)));
    return object_;
}

MObject MFnStringData::create(MStatus* ReturnStatus) { return create(MString(), ReturnStatus); }
