#include "api/fn/FnSupport.h"
#include "scene/Evaluation.h"

#include <maya/MFnAmbientLight.h>
#include <maya/MFnDirectionalLight.h>
#include <maya/MMatrix.h>
#include <maya/MVector.h>

#include <numbers>

using namespace host;
using host::api::Access;

ORVO_DEFINE_FN(MFnLight, MFn::kLight)
ORVO_FN_NAME(MFnLight)
ORVO_DEFINE_FN(MFnNonAmbientLight, MFn::kNonAmbientLight)
ORVO_FN_NAME(MFnNonAmbientLight)
ORVO_DEFINE_FN(MFnNonExtendedLight, MFn::kNonExtendedLight)
ORVO_FN_NAME(MFnNonExtendedLight)
ORVO_DEFINE_FN(MFnDirectionalLight, MFn::kDirectionalLight)
ORVO_FN_NAME(MFnDirectionalLight)
ORVO_DEFINE_FN(MFnAmbientLight, MFn::kAmbientLight)
ORVO_FN_NAME(MFnAmbientLight)

MStatus MFnLight::attachLight(const MDagPath& path, MFn::Type type) {
    MDagPath end = path;
    if (!end.hasFn(MFn::kLight)) end.extendToShape();
    return attach(end.node(), type);
}

MFnLight::MFnLight(const MDagPath& object, MStatus* ret) {
    setStatus(ret, attachLight(object, MFn::kLight).statusCode());
}
MFnNonAmbientLight::MFnNonAmbientLight(const MDagPath& object, MStatus* ret) {
    setStatus(ret, attachLight(object, MFn::kNonAmbientLight).statusCode());
}
MFnNonExtendedLight::MFnNonExtendedLight(const MDagPath& object, MStatus* ret) {
    setStatus(ret, attachLight(object, MFn::kNonExtendedLight).statusCode());
}
MFnDirectionalLight::MFnDirectionalLight(const MDagPath& object, MStatus* ret) {
    setStatus(ret, attachLight(object, MFn::kDirectionalLight).statusCode());
}
MFnAmbientLight::MFnAmbientLight(const MDagPath& object, MStatus* ret) {
    setStatus(ret, attachLight(object, MFn::kAmbientLight).statusCode());
}

namespace {

scene::Cell* cellOf(const MObject& object, const char* name, MStatus* status) {
    const auto node = Access::node(object);
    const auto* attribute = node && node->inScene ? node->findAttribute(name) : nullptr;
    setStatus(status, attribute ? MStatus::kSuccess : MStatus::kFailure);
    if (!attribute) return nullptr;
    scene::Cell& cell = node->cell(*attribute);
    scene::evaluate(cell);
    return &cell;
}

double number(const MObject& object, const char* name, MStatus* status) {
    scene::Cell* cell = cellOf(object, name, status);
    return cell ? cell->number() : 0;
}

MStatus setNumber(const MObject& object, const char* name, double value) {
    MStatus status;
    scene::Cell* cell = cellOf(object, name, &status);
    if (!cell) return status;
    return api::guarded([&] { cell->node.scene.setNumber(*cell, value, scene::Scene::LimitPolicy::Ignore); });
}

MColor colour(const MObject& object, const char* name, MStatus* status) {
    scene::Cell* cell = cellOf(object, name, status);
    const scene::Numeric* n = cell ? cell->numbers() : nullptr;
    return n ? MColor(static_cast<float>(n->get(0)), static_cast<float>(n->get(1)), static_cast<float>(n->get(2)))
             : MColor();
}

MStatus setColour(const MObject& object, const char* name, const MColor& c) {
    MStatus status;
    scene::Cell* cell = cellOf(object, name, &status);
    if (!cell) return status;
    return api::guarded([&] {
        cell->node.scene.setValue(*cell, scene::Numeric(scene::NumericType::Float, 3, c.r, c.g, c.b),
                                  scene::Scene::LimitPolicy::Ignore);
    });
}

/// Makes a light and tells what create() answers; `shape` is what the function set works on.
MObject makeLight(const char* type, const MObject& parent, bool wantTransform, MObject& shape, MStatus* status) {
    auto& scene = scene::Scene::current();
    const auto above = Access::dagNode(parent);
    if (!parent.isNull() && (!above || above->dag()->isShape())) {
        setStatus(status, MStatus::kInvalidParameter);
        return MObject();
    }
    MObject answer;
    const MStatus made = api::guarded([&] {
        scene::DagNode* place = above ? above->dag() : nullptr;
        const bool own = !above || wantTransform;
        if (above && wantTransform)
            place = scene.createNode(*scene.findType("transform"), std::string(type) + "#", place)->dag();
        scene::DagNode* light = scene.createNode(*scene.findType(type), {}, place)->dag();
        shape = Access::object(light);
        answer = own ? Access::object(light->parent) : shape;
    });
    setStatus(status, made.statusCode());
    return answer;
}

} // namespace

#define ORVO_LIGHT_GET(Class, T, name, attribute)                                                                      \
    T Class::name(MStatus* s) const { return static_cast<T>(number(object_, attribute, s)); }
#define ORVO_LIGHT_FLAG(Class, name, attribute)                                                                        \
    bool Class::name(MStatus* s) const { return number(object_, attribute, s) != 0; }
#define ORVO_LIGHT_SET(Class, T, name, attribute)                                                                      \
    MStatus Class::name(T v) { return setNumber(object_, attribute, static_cast<double>(v)); }

MColor MFnLight::color(MStatus* s) const { return colour(object_, "color", s); }
MStatus MFnLight::setColor(const MColor& col) { return setColour(object_, "color", col); }
MColor MFnLight::shadowColor(MStatus* s) const { return colour(object_, "shadowColor", s); }
MStatus MFnLight::setShadowColor(const MColor& c) { return setColour(object_, "shadowColor", c); }
ORVO_LIGHT_GET(MFnLight, float, intensity, "intensity")
ORVO_LIGHT_SET(MFnLight, const float&, setIntensity, "intensity")
ORVO_LIGHT_FLAG(MFnLight, useRayTraceShadows, "useRayTraceShadows")
ORVO_LIGHT_SET(MFnLight, const bool&, setUseRayTraceShadows, "useRayTraceShadows")
ORVO_LIGHT_GET(MFnLight, double, centerOfIllumination, "centerOfIllumination")
ORVO_LIGHT_SET(MFnLight, const double&, setCenterOfIllumination, "centerOfIllumination")
ORVO_LIGHT_GET(MFnLight, short, numShadowSamples, "shadowRays")
ORVO_LIGHT_SET(MFnLight, const short&, setNumShadowSamples, "shadowRays")
ORVO_LIGHT_GET(MFnLight, short, rayDepthLimit, "rayDepthLimit")
ORVO_LIGHT_SET(MFnLight, const short&, setRayDepthLimit, "rayDepthLimit")

MColor MFnLight::lightIntensity(MStatus* ReturnStatus) const {
    const MColor c = color(ReturnStatus);
    return c * intensity();
}

MFloatVector MFnLight::lightDirection(int instance, MSpace::Space space, MStatus* ReturnStatus) const {
    const auto node = Access::dagNode(object_);
    setStatus(ReturnStatus, !node ? MStatus::kFailure : instance == 0 ? MStatus::kSuccess : MStatus::kInvalidParameter);
    MVector direction(0, 0, -1);
    if (!node || instance != 0 || space != MSpace::kWorld) return MFloatVector(direction);
    direction = direction * node->dag()->worldMatrix();
    direction.normalize();
    return MFloatVector(direction);
}

MFloatVector MFnLight::lightDirection(MStatus* s) const { return lightDirection(0, MSpace::kWorld, s); }

bool MFnLight::lightAmbient(MStatus* ReturnStatus) const {
    setStatus(ReturnStatus, object_.isNull() ? MStatus::kFailure : MStatus::kSuccess);
    return object_.hasFn(MFn::kAmbientLight);
}
bool MFnLight::lightDiffuse(MStatus* s) const { return number(object_, "emitDiffuse", s) != 0; }
bool MFnLight::lightSpecular(MStatus* s) const { return number(object_, "emitSpecular", s) != 0; }

ORVO_LIGHT_GET(MFnNonAmbientLight, short, decayRate, "decayRate")
ORVO_LIGHT_SET(MFnNonAmbientLight, const short&, setDecayRate, "decayRate")

ORVO_LIGHT_GET(MFnNonExtendedLight, float, shadowRadius, "lightRadius")
ORVO_LIGHT_SET(MFnNonExtendedLight, const float&, setShadowRadius, "lightRadius")
ORVO_LIGHT_FLAG(MFnNonExtendedLight, castSoftShadows, "castSoftShadows")
ORVO_LIGHT_SET(MFnNonExtendedLight, const bool&, setCastSoftShadows, "castSoftShadows")
ORVO_LIGHT_FLAG(MFnNonExtendedLight, useDepthMapShadows, "useDepthMapShadows")
ORVO_LIGHT_SET(MFnNonExtendedLight, const bool&, setUseDepthMapShadows, "useDepthMapShadows")
ORVO_LIGHT_GET(MFnNonExtendedLight, short, depthMapFilterSize, "dmapFilterSize")
ORVO_LIGHT_SET(MFnNonExtendedLight, const short&, setDepthMapFilterSize, "dmapFilterSize")
ORVO_LIGHT_GET(MFnNonExtendedLight, short, depthMapResolution, "dmapResolution")
ORVO_LIGHT_SET(MFnNonExtendedLight, const short&, setDepthMapResolution, "dmapResolution")
ORVO_LIGHT_GET(MFnNonExtendedLight, float, depthMapBias, "dmapBias")
ORVO_LIGHT_SET(MFnNonExtendedLight, const float&, setDepthMapBias, "dmapBias")
ORVO_LIGHT_FLAG(MFnNonExtendedLight, useDepthMapAutoFocus, "useDmapAutoFocus")
ORVO_LIGHT_SET(MFnNonExtendedLight, const bool, setUseDepthMapAutoFocus, "useDmapAutoFocus")
ORVO_LIGHT_GET(MFnNonExtendedLight, float, depthMapWidthFocus, "dmapWidthFocus")
ORVO_LIGHT_SET(MFnNonExtendedLight, const float, setDepthMapWidthFocus, "dmapWidthFocus")
ORVO_LIGHT_GET(MFnNonExtendedLight, float, depthMapFocus, "dmapFocus")
ORVO_LIGHT_SET(MFnNonExtendedLight, const float, setDepthMapFocus, "dmapFocus")

MObject MFnDirectionalLight::create(bool UIvisible, MStatus* s) { return create(MObject(), UIvisible, false, s); }
MObject MFnDirectionalLight::create(const MObject& parent, bool UIvisible, MStatus* s) {
    return create(parent, UIvisible, false, s);
}
MObject MFnDirectionalLight::create(const MObject& parent, bool, bool wantTransform, MStatus* s) {
    return makeLight("directionalLight", parent, wantTransform, object_, s);
}
float MFnDirectionalLight::shadowAngle(MStatus* s) const {
    return static_cast<float>(number(object_, "lightAngle", s) * 180 / std::numbers::pi);
}
MStatus MFnDirectionalLight::setShadowAngle(const float& degrees) {
    return setNumber(object_, "lightAngle", static_cast<double>(degrees) * std::numbers::pi / 180);
}
ORVO_LIGHT_FLAG(MFnDirectionalLight, useLightPosition, "useLightPosition")
ORVO_LIGHT_SET(MFnDirectionalLight, const bool, setUseLightPosition, "useLightPosition")

MObject MFnAmbientLight::create(bool UIvisible, MStatus* s) { return create(MObject(), UIvisible, false, s); }
MObject MFnAmbientLight::create(const MObject& parent, bool UIvisible, MStatus* s) {
    return create(parent, UIvisible, false, s);
}
MObject MFnAmbientLight::create(const MObject& parent, bool, bool wantTransform, MStatus* s) {
    return makeLight("ambientLight", parent, wantTransform, object_, s);
}
ORVO_LIGHT_GET(MFnAmbientLight, float, ambientShade, "ambientShade")
ORVO_LIGHT_SET(MFnAmbientLight, const float&, setAmbientShade, "ambientShade")
ORVO_LIGHT_FLAG(MFnAmbientLight, castSoftShadows, "castSoftShadows")
ORVO_LIGHT_SET(MFnAmbientLight, const bool&, setCastSoftShadows, "castSoftShadows")
ORVO_LIGHT_GET(MFnAmbientLight, float, shadowRadius, "shadowRadius")
ORVO_LIGHT_SET(MFnAmbientLight, const float&, setShadowRadius, "shadowRadius")
