#include <maya/MFnComponent.h>

#include "api/fn/FnSupport.h"

#include <maya/MFnSingleIndexedComponent.h>
#include <maya/MIntArray.h>

using namespace host;
using host::api::Access;
using host::api::ComponentObject;
using scene::ComponentKind;
using scene::Components;

ORVO_DEFINE_FN(MFnComponent, MFn::kComponent)
ORVO_FN_NAME(MFnComponent)
ORVO_DEFINE_FN(MFnSingleIndexedComponent, MFn::kSingleIndexedComponent)
ORVO_FN_NAME(MFnSingleIndexedComponent)

namespace {

/// The components, with the status that says whether there are any.
ComponentObject* held(const MObject& object, MStatus* status) {
    auto* component = Access::component(object);
    setStatus(status, component ? MStatus::kSuccess : MStatus::kFailure);
    return component;
}

} // namespace

int MFnComponent::elementCount(MStatus* ReturnStatus) const {
    const auto* c = held(object_, ReturnStatus);
    return c ? static_cast<int>(c->components().count()) : 0;
}

MFn::Type MFnComponent::componentType(MStatus* ReturnStatus) const {
    return held(object_, ReturnStatus) ? object_.apiType() : MFn::kInvalid;
}

bool MFnComponent::isEmpty(MStatus* ReturnStatus) const {
    const auto* c = held(object_, ReturnStatus);
    return c && c->components().isEmpty();
}

bool MFnComponent::isEqual(MObject& other, MStatus* ReturnStatus) const {
    const auto* c = held(object_, ReturnStatus);
    const auto* o = Access::component(other);
    return c && o && c->components() == o->components();
}

bool MFnComponent::isComplete(MStatus* ReturnStatus) const {
    const auto* c = held(object_, ReturnStatus);
    return c && c->complete;
}

MStatus MFnComponent::setComplete(bool complete) {
    MStatus status;
    if (auto* c = held(object_, &status)) c->complete = complete;
    return status;
}

MObject MFnSingleIndexedComponent::create(MFn::Type compType, MStatus* ReturnStatus) {
    ComponentKind kind = ComponentKind::Vertex;
    switch (compType) {
    case MFn::kMeshVertComponent: break;
    case MFn::kMeshEdgeComponent: kind = ComponentKind::Edge; break;
    case MFn::kMeshPolygonComponent: kind = ComponentKind::Face; break;
    case MFn::kMeshMapComponent: kind = ComponentKind::Uv; break;
    default: setStatus(ReturnStatus, MStatus::kInvalidParameter); return MObject();
    }
    setStatus(ReturnStatus, MStatus::kSuccess);
    object_ = Access::object(std::make_shared<ComponentObject>(Components(kind)));
    return object_;
}

MStatus MFnSingleIndexedComponent::addElement(int element) {
    auto* c = Access::component(object_);
    if (!c) return MStatus::kFailure;
    if (element < 0) return MStatus::kInvalidParameter;
    c->add(element);
    return MStatus::kSuccess;
}

MStatus MFnSingleIndexedComponent::addElements(MIntArray& elements) {
    for (unsigned int i = 0; i < elements.length(); ++i)
        if (elements[i] < 0) return MStatus::kInvalidParameter;
    MStatus status = Access::component(object_) ? MStatus::kSuccess : MStatus::kFailure;
    for (unsigned int i = 0; status && i < elements.length(); ++i) status = addElement(elements[i]);
    return status;
}

int MFnSingleIndexedComponent::elementMax(MStatus* ReturnStatus) const {
    const auto* c = held(object_, ReturnStatus);
    return c && !c->components().isEmpty() ? c->components().ranges().back().last : 0;
}

int MFnSingleIndexedComponent::element(int index, MStatus* ReturnStatus) const {
    const auto* c = held(object_, ReturnStatus);
    if (!c) return 0;
    const auto& indices = c->indices();
    const bool there = index >= 0 && static_cast<std::size_t>(index) < indices.size();
    if (!there) setStatus(ReturnStatus, MStatus::kInvalidParameter);
    return there ? indices[static_cast<std::size_t>(index)] : 0;
}

MStatus MFnSingleIndexedComponent::getElements(MIntArray& elements) const {
    const auto* c = Access::component(object_);
    if (!c) return MStatus::kFailure;
    elements.clear();
    for (const int i : c->indices()) elements.append(i);
    return MStatus::kSuccess;
}

MStatus MFnSingleIndexedComponent::setCompleteData(int numElements) {
    auto* c = Access::component(object_);
    if (!c) return MStatus::kFailure;
    if (numElements < 0) return MStatus::kInvalidParameter;
    c->replace(numElements > 0 ? Components(c->type(), {{0, numElements - 1}}) : Components(c->type()));
    c->complete = true;
    return MStatus::kSuccess;
}

MStatus MFnSingleIndexedComponent::getCompleteData(int& numElements) const {
    const auto* c = Access::component(object_);
    if (!c || !c->complete) return MStatus::kFailure;
    numElements = static_cast<int>(c->components().count());
    return MStatus::kSuccess;
}
