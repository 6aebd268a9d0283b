#include "LocatorAttributes.h"

#include "Messages.h"

#include <maya/MFnEnumAttribute.h>
#include <maya/MFnNumericAttribute.h>
#include <maya/MFnNumericData.h>
#include <maya/MFnStringData.h>
#include <maya/MFnTypedAttribute.h>
#include <maya/MPxNode.h>
#include <maya/MString.h>

namespace orvo {
namespace {

using Where = LocatorAttributes::Where;

void applyFlags(MFnAttribute& attribute, const AttributeFlags& flags, const Where& where) {
    succeeded(attribute.setStorable(flags.storable), where);
    succeeded(attribute.setReadable(flags.readable), where);
    succeeded(attribute.setWritable(flags.writable), where);
    if (flags.keyable) succeeded(attribute.setKeyable(*flags.keyable), where);
    if (flags.hidden) succeeded(attribute.setHidden(*flags.hidden), where);
}

void applyLimits(MFnNumericAttribute& attribute, const AttributeLimits& limits, const Where& where) {
    if (limits.min) succeeded(attribute.setMin(*limits.min), where);
    if (limits.max) succeeded(attribute.setMax(*limits.max), where);
    if (limits.softMin) succeeded(attribute.setSoftMin(*limits.softMin), where);
    if (limits.softMax) succeeded(attribute.setSoftMax(*limits.softMax), where);
}

MObject added(const MObject& attribute, const Where& where) {
    succeeded(MPxNode::addAttribute(attribute), where);
    return attribute;
}

template <class Value>
MObject number(const char* name, MFnNumericData::Type type, Value value, const AttributeLimits& limits,
               const AttributeFlags& flags, const Where& where) {
    MStatus status;
    MFnNumericAttribute attribute;
    const MObject object = attribute.create(name, name, type, static_cast<double>(value), &status);
    succeeded(status, where);
    applyFlags(attribute, flags, where);
    applyLimits(attribute, limits, where);
    succeeded(attribute.setDefault(value), where);
    return added(object, where);
}

} // namespace

MObject LocatorAttributes::boolean(const char* name, bool value, const AttributeFlags& flags, const Where& where) {
    return number(name, MFnNumericData::kBoolean, value, {}, flags, where);
}

MObject LocatorAttributes::integer(const char* name, int value, const AttributeLimits& limits,
                                   const AttributeFlags& flags, const Where& where) {
    return number(name, MFnNumericData::kInt, value, limits, flags, where);
}

MObject LocatorAttributes::real(const char* name, double value, const AttributeLimits& limits,
                                const AttributeFlags& flags, const Where& where) {
    return number(name, MFnNumericData::kDouble, value, limits, flags, where);
}

MObject LocatorAttributes::vector(const char* name, const Triple& value, const AttributeLimits& limits,
                                  const AttributeFlags& flags, const Where& where) {
    MStatus status;
    MFnNumericAttribute attribute;
    const MObject object = attribute.create(name, name, MFnNumericData::k3Double, 0.0, &status);
    succeeded(status, where);
    applyFlags(attribute, flags, where);
    if (limits.min) succeeded(attribute.setMin(*limits.min, *limits.min, *limits.min), where);
    if (limits.max) succeeded(attribute.setMax(*limits.max, *limits.max, *limits.max), where);
    succeeded(attribute.setDefault(value[0], value[1], value[2]), where);
    return added(object, where);
}

MObject LocatorAttributes::colour(const char* name, const Triple& value, const AttributeFlags& flags,
                                  const Where& where) {
    MStatus status;
    MFnNumericAttribute attribute;
    const MObject object = attribute.createColor(name, name, &status);
    succeeded(status, where);
    applyFlags(attribute, flags, where);
    succeeded(
        attribute.setDefault(static_cast<float>(value[0]), static_cast<float>(value[1]), static_cast<float>(value[2])),
        where);
    return added(object, where);
}

MObject LocatorAttributes::enumeration(const char* name, short value, std::initializer_list<EnumField> fields,
                                       const AttributeFlags& flags, const Where& where) {
    MStatus status;
    MFnEnumAttribute attribute;
    const MObject object = attribute.create(name, name, value, &status);
    succeeded(status, where);
    for (const EnumField& field : fields) succeeded(attribute.addField(field.name, field.value), where);
    applyFlags(attribute, flags, where);
    return added(object, where);
}

MObject LocatorAttributes::text(const char* name, const AttributeFlags& flags, const Where& where) {
    MStatus status;
    const MObject empty = MFnStringData().create(&status);
    succeeded(status, where);
    MFnTypedAttribute attribute;
    const MObject object = attribute.create(name, name, MFnData::kString, empty, &status);
    succeeded(status, where);
    applyFlags(attribute, flags, where);
    return added(object, where);
}

MObject LocatorAttributes::filePath(const char* name, const AttributeFlags& flags, const Where& where) {
    const MObject object = text(name, flags, where);
    succeeded(MFnTypedAttribute(object).setUsedAsFilename(true), where);
    return object;
}

} // namespace orvo
