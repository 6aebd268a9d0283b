#include <maya/MFnNumericAttribute.h>

#include "api/fn/FnSupport.h"
#include "api/fn/NumericTypes.h"
#include "values/Text.h"

#include <maya/MString.h>

#include <algorithm>

using namespace host;
using host::api::Access;
using host::api::toText;
using scene::Attribute;
using scene::AttributePtr;
using scene::AttributeType;
using scene::Numeric;
using scene::NumericType;

ORVO_DEFINE_FN(MFnNumericAttribute, MFn::kNumericAttribute)
ORVO_FN_NAME(MFnNumericAttribute)

namespace {

int countOf(const Attribute& a) { return a.type == AttributeType::Tuple ? static_cast<int>(a.children.size()) : 1; }

/// The attribute whose limits hold component i.
Attribute& component(Attribute& a, int i) {
    return a.type == AttributeType::Tuple ? *a.children[static_cast<std::size_t>(i)] : a;
}

enum Which { kMinimum, kMaximum, kSoftMinimum, kSoftMaximum };

std::optional<double>& limit(scene::Limits& l, int which) {
    switch (which) {
    case kMinimum: return l.min;
    case kMaximum: return l.max;
    case kSoftMinimum: return l.softMin;
    default: return l.softMax;
    }
}

bool has(const MObject& o, int which, MStatus* status) {
    const auto a = Access::attribute(o);
    setStatus(status, a ? MStatus::kSuccess : MStatus::kFailure);
    return a && limit(component(*a, 0).limits[0], which).has_value();
}

} // namespace

MObject MFnNumericAttribute::create(const MString& full, const MString& brief, MFnNumericData::Type unitType,
                                    double defaultValue, MStatus* ReturnStatus) {
    const auto shape = host::api::numericKind(unitType);
    if (shape.count == 0 || full.length() == 0 || brief.length() == 0) {
        setStatus(ReturnStatus, MStatus::kInvalidParameter);
        return MObject();
    }
    setStatus(ReturnStatus, MStatus::kSuccess);
    const AttributePtr a = shape.count == 1 ? Attribute::number(toText(full), toText(brief), shape.type, defaultValue)
                                            : Attribute::tuple(toText(full), toText(brief), shape.type, shape.count,
                                                               "0123", AttributeType::Numeric, defaultValue);
    object_ = Access::object(a.get());
    return object_;
}

MObject MFnNumericAttribute::createColor(const MString& full, const MString& brief, MStatus* ReturnStatus) {
    if (full.length() == 0 || brief.length() == 0) {
        setStatus(ReturnStatus, MStatus::kInvalidParameter);
        return MObject();
    }
    setStatus(ReturnStatus, MStatus::kSuccess);
    auto a = Attribute::tuple(toText(full), toText(brief), NumericType::Float, 3, "RGB");
    a->usedAsColor = true;
    object_ = Access::object(a.get());
    return object_;
}

MObject MFnNumericAttribute::createPoint(const MString& full, const MString& brief, MStatus* ReturnStatus) {
    if (full.length() == 0 || brief.length() == 0) {
        setStatus(ReturnStatus, MStatus::kInvalidParameter);
        return MObject();
    }
    setStatus(ReturnStatus, MStatus::kSuccess);
    object_ = Access::object(Attribute::tuple(toText(full), toText(brief), NumericType::Float, 3, "XYZ").get());
    return object_;
}

MObject MFnNumericAttribute::create(const MString& full, const MString& brief, const MObject& child1,
                                    const MObject& child2, const MObject& child3, MStatus* ReturnStatus) {
    if (full.length() == 0 || brief.length() == 0) {
        setStatus(ReturnStatus, MStatus::kInvalidParameter);
        return MObject();
    }
    std::vector<AttributePtr> parts;
    for (const MObject* o : {&child1, &child2, &child3}) {
        const auto a = Access::attribute(*o);
        if (!a && o == &child3 && o->isNull()) continue;
        const bool twice = std::find(parts.begin(), parts.end(), a) != parts.end();
        if (!a || a->parent || twice || !a->isNumber() || (!parts.empty() && a->numeric != parts.front()->numeric)) {
            setStatus(ReturnStatus, MStatus::kInvalidParameter);
            return MObject();
        }
        parts.push_back(a);
    }
    setStatus(ReturnStatus, MStatus::kSuccess);
    object_ = Access::object(Attribute::tupleOf(toText(full), toText(brief), std::move(parts)).get());
    return object_;
}

MFnNumericData::Type MFnNumericAttribute::unitType(MStatus* ReturnStatus) const {
    const auto a = Access::attribute(object_);
    setStatus(ReturnStatus, a ? MStatus::kSuccess : MStatus::kFailure);
    if (!a) return MFnNumericData::kInvalid;
    for (int t = MFnNumericData::kBoolean; t < MFnNumericData::kAddr; ++t) {
        const auto s = host::api::numericKind(static_cast<MFnNumericData::Type>(t));
        if (s.type == a->numeric && s.count == countOf(*a)) return static_cast<MFnNumericData::Type>(t);
    }
    return MFnNumericData::kInvalid;
}

MObject MFnNumericAttribute::child(unsigned int index, MStatus* ReturnStatus) const {
    const auto a = Access::attribute(object_);
    const bool ok = a && index < a->children.size();
    setStatus(ReturnStatus, ok ? MStatus::kSuccess : MStatus::kInvalidParameter);
    return ok ? Access::object(a->children[index].get()) : MObject();
}

bool MFnNumericAttribute::hasMin(MStatus* s) const { return has(object_, kMinimum, s); }
bool MFnNumericAttribute::hasMax(MStatus* s) const { return has(object_, kMaximum, s); }
bool MFnNumericAttribute::hasSoftMin(MStatus* s) const { return has(object_, kSoftMinimum, s); }
bool MFnNumericAttribute::hasSoftMax(MStatus* s) const { return has(object_, kSoftMaximum, s); }

MStatus MFnNumericAttribute::getLimits(int which, int count, double* values) const {
    const auto a = Access::attribute(object_);
    if (!a) return MStatus::kFailure;
    if (countOf(*a) != count) return MStatus::kInvalidParameter;
    for (int i = 0; i < count; ++i) {
        const auto& l = limit(component(*a, i).limits[0], which);
        if (!l) return MStatus::kFailure;
        values[i] = *l;
    }
    return MStatus::kSuccess;
}

MStatus MFnNumericAttribute::setLimits(int which, int count, const double* values) {
    const auto a = Access::attribute(object_);
    if (!a) return MStatus::kFailure;
    if (countOf(*a) != count) return MStatus::kInvalidParameter;
    for (int i = 0; i < count; ++i) limit(component(*a, i).limits[0], which) = values[i];
    return MStatus::kSuccess;
}

#define ORVO_LIMIT(Name, which)                                                                                        \
    MStatus MFnNumericAttribute::get##Name(double& a) const { return getLimits(which, 1, &a); }                        \
    MStatus MFnNumericAttribute::set##Name(double a) { return setLimits(which, 1, &a); }

#define ORVO_LIMITS(Name, which)                                                                                       \
    ORVO_LIMIT(Name, which)                                                                                            \
    MStatus MFnNumericAttribute::get##Name(double& a, double& b) const {                                               \
        double v[2] = {};                                                                                              \
        const MStatus status = getLimits(which, 2, v);                                                                 \
        if (status) a = v[0], b = v[1];                                                                                \
        return status;                                                                                                 \
    }                                                                                                                  \
    MStatus MFnNumericAttribute::get##Name(double& a, double& b, double& c) const {                                    \
        double v[3] = {};                                                                                              \
        const MStatus status = getLimits(which, 3, v);                                                                 \
        if (status) a = v[0], b = v[1], c = v[2];                                                                      \
        return status;                                                                                                 \
    }                                                                                                                  \
    MStatus MFnNumericAttribute::set##Name(double a, double b) {                                                       \
        const double v[] = {a, b};                                                                                     \
        return setLimits(which, 2, v);                                                                                 \
    }                                                                                                                  \
    MStatus MFnNumericAttribute::set##Name(double a, double b, double c) {                                             \
        const double v[] = {a, b, c};                                                                                  \
        return setLimits(which, 3, v);                                                                                 \
    }

ORVO_LIMITS(Min, kMinimum)
ORVO_LIMITS(Max, kMaximum)
ORVO_LIMIT(SoftMin, kSoftMinimum)
ORVO_LIMIT(SoftMax, kSoftMaximum)

template <class T>
MStatus MFnNumericAttribute::readDefault(int count, T* values) {
    const auto a = Access::attribute(object_);
    const Numeric* n = a ? std::get_if<Numeric>(&a->defaultValue) : nullptr;
    if (!n) return MStatus::kFailure;
    if (n->count != count) return MStatus::kInvalidParameter;
    for (int i = 0; i < count; ++i) {
        if constexpr (std::is_same_v<T, bool>)
            values[i] = n->get(i) != 0;
        else if constexpr (std::is_integral_v<T>)
            values[i] = static_cast<T>(n->getInt64(i));
        else
            values[i] = static_cast<T>(n->get(i));
    }
    return MStatus::kSuccess;
}

template <class T>
MStatus MFnNumericAttribute::writeDefault(int count, const T* values) {
    const auto a = Access::attribute(object_);
    Numeric* n = a ? std::get_if<Numeric>(&a->defaultValue) : nullptr;
    if (!n) return MStatus::kFailure;
    if (n->count != count) return MStatus::kInvalidParameter;
    for (int i = 0; i < count; ++i) {
        if constexpr (std::is_integral_v<T> && !std::is_same_v<T, bool>)
            n->setInt64(i, values[i]);
        else
            n->set(i, static_cast<double>(values[i]));
        if (a->type == AttributeType::Tuple) std::get<Numeric>(component(*a, i).defaultValue).set(0, n->get(i));
    }
    return MStatus::kSuccess;
}

#define ORVO_DEFAULT1(T)                                                                                               \
    MStatus MFnNumericAttribute::getDefault(T& a) { return readDefault(1, &a); }                                       \
    MStatus MFnNumericAttribute::setDefault(T a) { return writeDefault(1, &a); }

#define ORVO_DEFAULT3(T)                                                                                               \
    ORVO_DEFAULT1(T)                                                                                                   \
    MStatus MFnNumericAttribute::getDefault(T& a, T& b) {                                                              \
        T v[2] = {};                                                                                                   \
        const MStatus status = readDefault(2, v);                                                                      \
        if (status) a = v[0], b = v[1];                                                                                \
        return status;                                                                                                 \
    }                                                                                                                  \
    MStatus MFnNumericAttribute::getDefault(T& a, T& b, T& c) {                                                        \
        T v[3] = {};                                                                                                   \
        const MStatus status = readDefault(3, v);                                                                      \
        if (status) a = v[0], b = v[1], c = v[2];                                                                      \
        return status;                                                                                                 \
    }                                                                                                                  \
    MStatus MFnNumericAttribute::setDefault(T a, T b) {                                                                \
        const T v[] = {a, b};                                                                                          \
        return writeDefault(2, v);                                                                                     \
    }                                                                                                                  \
    MStatus MFnNumericAttribute::setDefault(T a, T b, T c) {                                                           \
        const T v[] = {a, b, c};                                                                                       \
        return writeDefault(3, v);                                                                                     \
    }

ORVO_DEFAULT1(bool)
ORVO_DEFAULT1(char)
ORVO_DEFAULT1(MInt64)
ORVO_DEFAULT3(int)
ORVO_DEFAULT3(float)
ORVO_DEFAULT3(double)

MStatus MFnNumericAttribute::getDefault(double& a, double& b, double& c, double& d) {
    double v[4] = {};
    const MStatus status = readDefault(4, v);
    if (status) a = v[0], b = v[1], c = v[2], d = v[3];
    return status;
}

MStatus MFnNumericAttribute::setDefault(double a, double b, double c, double d) {
    const double v[] = {a, b, c, d};
    return writeDefault(4, v);
}
