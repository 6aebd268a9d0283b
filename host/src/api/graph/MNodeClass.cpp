#include <maya/MNodeClass.h>

#include "api/graph/Handle.h"
#include "values/StatusOut.h"
#include "values/Text.h"

using namespace host;
using host::api::Access;
using host::api::fromText;
using host::api::toText;
using scene::Scene;

namespace {

scene::NodeType* typeNamed(const MString& name) { return Scene::current().findType(toText(name)); }

/// The type, with the status that says whether it exists.
scene::NodeType* found(const MString& name, MStatus* status) {
    scene::NodeType* type = typeNamed(name);
    setStatus(status, type ? MStatus::kSuccess : MStatus::kFailure);
    return type;
}

} // namespace

MNodeClass::MNodeClass(const MString& nodeClassName) : name_(typeNamed(nodeClassName) ? nodeClassName : MString()) {}

MNodeClass::MNodeClass(const MTypeId& nodeTypeId) {
    if (const auto* type = Scene::current().findType(nodeTypeId.id())) name_ = fromText(type->name);
}

MTypeId MNodeClass::typeId() const {
    const auto* type = typeNamed(name_);
    return type ? MTypeId(type->id) : MTypeId();
}

MString MNodeClass::typeName() const { return name_; }

MString MNodeClass::classification() const {
    const auto* type = typeNamed(name_);
    return type ? fromText(type->classification) : MString();
}

MStatus MNodeClass::addToClassification(const MString& str) {
    auto* type = typeNamed(name_);
    if (!type) return MStatus::kFailure;
    if (!type->classification.empty()) type->classification += ':';
    type->classification += toText(str);
    return MStatus::kSuccess;
}

MStatus MNodeClass::removeFromClassification(const MString& str) {
    auto* type = typeNamed(name_);
    if (!type) return MStatus::kFailure;
    const std::string word = toText(str);
    std::string& all = type->classification;
    const auto at = word.empty() ? std::string::npos : (":" + all + ":").find(":" + word + ":");
    if (at == std::string::npos) return MStatus::kInvalidParameter;
    // With the separator behind it, or before it where it is the last.
    const bool last = at + word.size() >= all.size();
    all.erase(last && at > 0 ? at - 1 : at, word.size() + (all.size() > word.size() ? 1 : 0));
    return MStatus::kSuccess;
}

MString MNodeClass::pluginName(MStatus* ReturnStatus) const {
    const auto* type = found(name_, ReturnStatus);
    return type ? fromText(type->plugin) : MString();
}

MStatus MNodeClass::getAttributes(MObjectArray& attr) const {
    attr.clear();
    const auto* type = typeNamed(name_);
    if (!type) return MStatus::kFailure;
    for (const auto* a : type->attributes()) attr.append(Access::object(a));
    return MStatus::kSuccess;
}

unsigned int MNodeClass::attributeCount(MStatus* ReturnStatus) const {
    const auto* type = found(name_, ReturnStatus);
    return type ? static_cast<unsigned int>(type->attributes().size()) : 0;
}

MObject MNodeClass::attribute(unsigned int index, MStatus* ReturnStatus) const {
    const auto* type = found(name_, ReturnStatus);
    if (!type) return MObject();
    const auto all = type->attributes();
    if (index >= all.size()) setStatus(ReturnStatus, MStatus::kInvalidParameter);
    return index < all.size() ? Access::object(all[index]) : MObject();
}

MObject MNodeClass::attribute(const MString& attrName, MStatus* ReturnStatus) const {
    const auto* type = found(name_, ReturnStatus);
    const auto* a = type ? type->find(toText(attrName)) : nullptr;
    if (type && !a) setStatus(ReturnStatus, MStatus::kInvalidParameter);
    return Access::object(a);
}

bool MNodeClass::hasAttribute(const MString& attrName, MStatus* ReturnStatus) const {
    const auto* type = found(name_, ReturnStatus);
    return type && type->find(toText(attrName));
}

const char* MNodeClass::className() { return "MNodeClass"; }
