#include "api/fn/FnSupport.h"
#include "values/Text.h"

#include <maya/MFnDoubleArrayData.h>
#include <maya/MFnIntArrayData.h>
#include <maya/MFnPointArrayData.h>
#include <maya/MFnStringArrayData.h>
#include <maya/MFnVectorArrayData.h>

#include <cmath>

using namespace host;
using host::api::Access;
using host::api::fromText;
using host::api::toText;
using scene::ArrayData;
using scene::DataKind;

namespace {

/// How the elements of an array of the API are held as data.
template <class Element>
struct Held;

template <>
struct Held<int> {
    static constexpr DataKind kind = DataKind::IntArray;
    static int get(const ArrayData& d, std::size_t i) { return static_cast<int>(d.numbers[i]); }
    static void set(ArrayData& d, std::size_t i, int v) { d.numbers[i] = v; }
};

template <>
struct Held<double> {
    static constexpr DataKind kind = DataKind::DoubleArray;
    static double get(const ArrayData& d, std::size_t i) { return d.numbers[i]; }
    static void set(ArrayData& d, std::size_t i, double v) { d.numbers[i] = v; }
};

template <>
struct Held<MString> {
    static constexpr DataKind kind = DataKind::StringArray;
    static MString get(const ArrayData& d, std::size_t i) { return fromText(d.texts[i]); }
    static void set(ArrayData& d, std::size_t i, const MString& v) { d.texts[i] = toText(v); }
};

// Points and vectors are numbers side by side, like the data.
static_assert(sizeof(MPoint) == 4 * sizeof(double) && sizeof(MVector) == 3 * sizeof(double));

template <>
struct Held<MPoint> {
    static constexpr DataKind kind = DataKind::PointArray;
    static MPoint get(const ArrayData& d, std::size_t i) { return MPoint(&d.numbers[4 * i]); }
    static void set(ArrayData& d, std::size_t i, const MPoint& v) {
        v.get(*reinterpret_cast<double4*>(&d.numbers[4 * i]));
    }
};

template <>
struct Held<MVector> {
    static constexpr DataKind kind = DataKind::VectorArray;
    static MVector get(const ArrayData& d, std::size_t i) { return MVector(&d.numbers[3 * i]); }
    static void set(ArrayData& d, std::size_t i, const MVector& v) { v.get(&d.numbers[3 * i]); }
};

template <class Element>
ArrayData* dataOf(const MObject& object) {
    auto* held = Access::data(object);
    const auto* pointer = held ? std::get_if<scene::DataPtr>(&held->value) : nullptr;
    if (!pointer || !*pointer || (*pointer)->kind() != Held<Element>::kind) return nullptr;
    return static_cast<ArrayData*>(pointer->get());
}

/// The data for writing: a copy of those that a plug holds, too.
template <class Element>
ArrayData* writable(const MObject& object) {
    ArrayData* data = dataOf<Element>(object);
    if (!data) return nullptr;
    auto& pointer = std::get<scene::DataPtr>(Access::data(object)->value);
    if (pointer.use_count() > 1) pointer = std::make_shared<ArrayData>(*data);
    return static_cast<ArrayData*>(pointer.get());
}

template <class Element>
unsigned int lengthOf(const ArrayData& data) {
    const std::size_t size =
        Held<Element>::kind == DataKind::StringArray ? data.texts.size() : data.numbers.size() / data.tupleSize();
    return static_cast<unsigned int>(size);
}

template <class Element>
void resize(ArrayData& data, unsigned int length) {
    if (Held<Element>::kind == DataKind::StringArray)
        data.texts.resize(length);
    else
        data.numbers.resize(static_cast<std::size_t>(length) * static_cast<std::size_t>(data.tupleSize()));
}

template <class Element>
unsigned int length(const MObject& object, MStatus* status) {
    const ArrayData* data = dataOf<Element>(object);
    setStatus(status, data ? MStatus::kSuccess : MStatus::kFailure);
    return data ? lengthOf<Element>(*data) : 0;
}

template <class Element>
MStatus setOne(const MObject& object, const Element& element, unsigned int index) {
    ArrayData* data = writable<Element>(object);
    if (!data) return MStatus::kFailure;
    if (index >= lengthOf<Element>(*data)) return MStatus::kInvalidParameter;
    Held<Element>::set(*data, index, element);
    return MStatus::kSuccess;
}

template <class Element, class Array>
MStatus setAll(const MObject& object, const Array& array) {
    ArrayData* data = writable<Element>(object);
    if (!data) return MStatus::kFailure;
    resize<Element>(*data, array.length());
    for (unsigned int i = 0; i < array.length(); ++i) Held<Element>::set(*data, i, array[i]);
    return MStatus::kSuccess;
}

template <class Element, class Array>
MStatus copyOut(const MObject& object, Array& array) {
    const ArrayData* data = dataOf<Element>(object);
    if (!data) return MStatus::kFailure;
    const MStatus status = array.setLength(lengthOf<Element>(*data));
    for (unsigned int i = 0; status && i < array.length(); ++i) array[i] = Held<Element>::get(*data, i);
    return status;
}

template <class Element, class Array>
MObject make(const Array& array, MStatus* status) {
    const MObject object = Access::object(scene::Value(std::make_shared<ArrayData>(Held<Element>::kind)));
    setStatus(status, setAll<Element>(object, array).statusCode());
    return object;
}

} // namespace

#define ORVO_ARRAY_DATA(Name, Array, Element, SetElement)                                                              \
    ORVO_DEFINE_FN(MFn##Name##Data, MFn::k##Name##Data)                                                                \
    ORVO_FN_NAME(MFn##Name##Data)                                                                                      \
    unsigned int MFn##Name##Data::length(MStatus* s) const { return ::length<Element>(object_, s); }                   \
    MStatus MFn##Name##Data::set(SetElement element, unsigned int index) {                                             \
        return setOne<Element>(object_, element, index);                                                               \
    }                                                                                                                  \
    MStatus MFn##Name##Data::copyTo(Array& array) const { return copyOut<Element>(object_, array); }                   \
    MStatus MFn##Name##Data::set(const Array& newArray) { return setAll<Element>(object_, newArray); }                 \
    Array MFn##Name##Data::array(MStatus* ReturnStatus) {                                                              \
        Array copy;                                                                                                    \
        setStatus(ReturnStatus, copyTo(copy).statusCode());                                                            \
        return copy;                                                                                                   \
    }                                                                                                                  \
    MObject MFn##Name##Data::create(MStatus* ReturnStatus) { return create(Array(), ReturnStatus); }                   \
    MObject MFn##Name##Data::create(const Array& in, MStatus* ReturnStatus) {                                          \
        object_ = make<Element>(in, ReturnStatus);                                                                     \
        return object_;                                                                                                \
    }

ORVO_ARRAY_DATA(IntArray, MIntArray, int, int)
ORVO_ARRAY_DATA(DoubleArray, MDoubleArray, double, double)
ORVO_ARRAY_DATA(StringArray, MStringArray, MString, const MString&)
ORVO_ARRAY_DATA(PointArray, MPointArray, MPoint, MPoint&)
ORVO_ARRAY_DATA(VectorArray, MVectorArray, MVector, MVector&)

int MFnIntArrayData::operator[](unsigned int index) const { return Held<int>::get(*dataOf<int>(object_), index); }
double MFnDoubleArrayData::operator[](unsigned int index) const { return dataOf<double>(object_)->numbers[index]; }
double& MFnDoubleArrayData::operator[](unsigned int index) { return writable<double>(object_)->numbers[index]; }

const MPoint& MFnPointArrayData::operator[](unsigned int index) const {
    return *reinterpret_cast<const MPoint*>(&dataOf<MPoint>(object_)->numbers[4 * std::size_t(index)]);
}
MPoint& MFnPointArrayData::operator[](unsigned int index) {
    return *reinterpret_cast<MPoint*>(&writable<MPoint>(object_)->numbers[4 * std::size_t(index)]);
}

const MVector& MFnVectorArrayData::operator[](unsigned int index) const {
    return *reinterpret_cast<const MVector*>(&dataOf<MVector>(object_)->numbers[3 * std::size_t(index)]);
}
MVector& MFnVectorArrayData::operator[](unsigned int index) {
    return *reinterpret_cast<MVector*>(&writable<MVector>(object_)->numbers[3 * std::size_t(index)]);
}
