#include "ParticleCloud.h"

#include "Common/Checksums.h"
#include "Common/GlStateScope.h"
#include "Common/LocatorAttributes.h"
#include "Common/MayaCamera.h"
#include "Common/MayaUtils.h"
#include "ParticleCloudShadingParamsLocator.h"
#include "ParticleCloudSphereLoc.h"

#include <algorithm>
#include <maya/MFnDagNode.h>
#include <maya/MPoint.h>

namespace orvo {
namespace {

constexpr double metre = 100.0;         ///< in scene centimetres
constexpr double groundFadeSpan = 80.0; ///< metres from the end of the ground fade up to its start

/// Reports a failure of gathering, with its place, unless the caller only wants to look.
template <class... Arguments>
void gatherError(bool quiet, const PlacedFormat& format, const Arguments&... arguments) {
    if (!quiet) reportPlacedError(format, arguments...);
}

/// The shape-sphere node behind a child of the cloud's group; null when it is another kind of node.
ParticleCloudSphereLoc* sphereBehind(const MObject& child) {
    MDagPath path;
    if (MDagPath::getAPathTo(child, path).error()) return nullptr;
    if (child.hasFn(MFn::kTransform) && path.extendToShape().error()) return nullptr;
    return ParticleCloudSphereLoc::findInstance(path.fullPathName());
}

} // namespace

const MTypeId ParticleCloud::id(0x374022);

MObject ParticleCloud::enable, ParticleCloud::renderWireFrame, ParticleCloud::renderDepthTest,
    ParticleCloud::autoUpdate, ParticleCloud::particleDensity, ParticleCloud::particleSize,
    ParticleCloud::groundShadowOffset, ParticleCloud::enableGroundFade, ParticleCloud::groundFadeEnd,
    ParticleCloud::domeYOffset;

MStatus ParticleCloud::initialize() {
    return guarded("ParticleCloud::initialize", MStatus(MStatus::kFailure), [] {
        using A = LocatorAttributes;
        const AttributeLimits height{.softMin = -300.0, .softMax = 300.0};
        enable = A::boolean("enable", true);
        renderWireFrame = A::boolean("renderWireFrame", false);
        renderDepthTest = A::boolean("renderDepthTest", false);
        autoUpdate = A::boolean("autoUpdate", true);
        particleDensity = A::real("particleDensity", 10000.0, {.min = 1.0, .softMin = 1.0, .softMax = 30000.0});
        particleSize = A::real("particleSize", 200.0, {.min = 1.0, .softMin = 1.0, .softMax = 400.0});
        groundShadowOffset = A::real("groundShadowOffset", 0.0, height);
        enableGroundFade = A::boolean("enableGroundFade", false);
        groundFadeEnd = A::real("groundFadeEnd", -20.0, height);
        domeYOffset = A::real("domeYOffset", 0.0, height);
        return MStatus(MStatus::kSuccess);
    });
}

MBoundingBox ParticleCloud::boundingBox() const {
    const MBoundingBox unit(MPoint(0, 0, 0), MPoint(1, 1, 1));
    return guarded("ParticleCloud::boundingBox", unit, [&]() -> MBoundingBox {
        if (!geom_ || !shapes_) return unit;
        Matrix44 toNode; // stays the identity after a failure, which has been printed
        (void)nodeInverseWorldMatrix(thisMObject(), toNode);
        const Vector3 centre = shapes_->boundCentre + geom_->boundCentre;
        const Vector3 r{geom_->boundRadius, geom_->boundRadius, geom_->boundRadius};
        const Vector3 a = MatrixTransformPoint(toNode, centre - r), b = MatrixTransformPoint(toNode, centre + r);
        return {MPoint(std::min(a.x, b.x), std::min(a.y, b.y), std::min(a.z, b.z)),
                MPoint(std::max(a.x, b.x), std::max(a.y, b.y), std::max(a.z, b.z))};
    });
}

CloudSettings ParticleCloud::settings() const {
    const MObject node = thisMObject();
    const double fadeEnd = readDouble(node, groundFadeEnd);
    return {.spriteDensity = readDouble(node, particleDensity),
            .spriteSize = readDouble(node, particleSize),
            .groundShadowOffset = readDouble(node, groundShadowOffset),
            .enableGroundFade = readBool(node, enableGroundFade),
            .groundFadeStart = fadeEnd + groundFadeSpan,
            .groundFadeEnd = fadeEnd,
            .domeYOffset = readDouble(node, domeYOffset)};
}

std::optional<std::vector<ParticleCloud::ShapeInput>> ParticleCloud::gatherShapes(bool quiet) const {
    const MObject own = onlyParent(thisMObject());
    const MObject group = own.isNull() ? own : onlyParent(own);
    if (group.isNull()) {
        gatherError(quiet, "ParticleCloud::GenerateSpriteData:  couldn't get parents from locator\n");
        return std::nullopt;
    }
    MStatus status;
    const MFnDagNode groupNode(group, &status);
    const unsigned count = status.error() ? 0 : groupNode.childCount();
    if (count <= 1) {
        gatherError(quiet,
                    "ParticleCloud::GenerateSpriteData:  Couldn't get enough cloud shape objects to work with.\n");
        return std::nullopt;
    }
    std::vector<ShapeInput> shapes;
    for (unsigned i = 0; i < count; ++i) {
        const MObject child = groupNode.child(i, &status);
        if (!status.error() && child == own) continue;
        Matrix44 world;
        if (status.error() || nodeWorldMatrix(child, world).error()) {
            gatherError(quiet, "ParticleCloud::GenerateSpriteData:  Couldn't get matrix for shape object %i", i);
            continue;
        }
        const ParticleCloudSphereLoc* sphere = sphereBehind(child);
        if (!sphere) {
            gatherError(quiet, "ParticleCloud::GenerateSpriteData:  object %i is not valid. ignoring", i);
            continue;
        }
        const MObject node = sphere->thisMObject();
        shapes.push_back({world, readDouble(node, ParticleCloudSphereLoc::opacity),
                          readDouble(node, ParticleCloudSphereLoc::density)});
    }
    if (shapes.empty()) {
        gatherError(quiet, "ParticleCloud::GenerateSpriteData:  No cloud shape spheres found in group.\n");
        return std::nullopt;
    }
    return shapes;
}

std::unique_ptr<CloudShapeSet> ParticleCloud::GenerateSpriteData() {
    const auto shapes = gatherShapes(false);
    if (!shapes) return nullptr;
    auto set = std::make_unique<CloudShapeSet>();
    std::vector<Matrix44> worlds;
    for (const ShapeInput& shape : *shapes) {
        worlds.push_back(shape.world);
        set->spheres.push_back({MatrixInverse(shape.world, 1e-10), shape.opacity, shape.density});
    }
    const Sphere bounds = boundsOfShapes(worlds);
    set->boundCentre = bounds.centre;
    set->boundRadius = bounds.radius;
    set->seed = Crc32(name().asUTF8());
    return set;
}

ParticleCloud::GenerationInputs ParticleCloud::inputsOf(const CloudShadingParams& shading) const {
    const CloudSettings s = settings();
    // Without ground fade its height counts for nothing, nor does the light without shadow data: a sun that is dragged
    // then leaves the sprites as they are.
    return {.density = s.spriteDensity,
            .size = s.spriteSize,
            .groundFade = s.enableGroundFade,
            .groundFadeEnd = s.enableGroundFade ? s.groundFadeEnd : 0.0,
            .shadow = shading.enableSelfShadow,
            .lightDirection = shading.enableSelfShadow ? shading.sunDir : Vector3{},
            .shapes = gatherShapes(true).value_or(std::vector<ShapeInput>()),
            .name = name().asUTF8()};
}

void ParticleCloud::refresh() {
    if (auto* params = ParticleCloudShadingParamsLocator::firstLiveInstance()) generate(params->readParams());
}

void ParticleCloud::bringUpToDate() {
    auto* params = ParticleCloudShadingParamsLocator::firstLiveInstance();
    if (!params || !isEnabled()) return;
    const CloudShadingParams shading = params->readParams();
    if (failed_ || !lastInputs_ || inputsOf(shading) != *lastInputs_) generate(shading);
}

void ParticleCloud::generate(const CloudShadingParams& shading) {
    lastInputs_ = inputsOf(shading);
    failed_ = true;
    auto shapes = GenerateSpriteData();
    if (!shapes) return;
    const CloudSettings s = settings();
    sprites_ = {};
    geom_ = GenerateSprites(*shapes, s.spriteDensity, s.spriteSize * metre, shading.enableSelfShadow, shading.sunDir,
                            s.enableGroundFade, s.groundFadeStart * metre, s.groundFadeEnd * metre);
    shapes_ = std::move(shapes);
    failed_ = false;
}

void ParticleCloud::render(M3dView& view) {
    if (!isEnabled()) return release();
    auto* params = ParticleCloudShadingParamsLocator::firstLiveInstance();
    if (!params) return;
    const CloudShadingParams shading = params->readParams();
    const MObject node = thisMObject();
    if (lastInputs_ && readBool(node, autoUpdate) && inputsOf(shading) != *lastInputs_) generate(shading);
    if (!geom_ || !shapes_ || !renderer_.prepare(shading)) return;

    Vector3 eye;
    Matrix44 toNode;
    if (nodeInverseWorldMatrix(node, toNode).error() || MayaCamera(view).eyePoint(eye).error()) return;
    // The renderer has applied the node's matrix, and the sprites stand in world space.
    const GlMatrixScope worldSpace(toNode);
    const CloudSettings s = settings();
    const CloudToDraw cloud{.settings = s,
                            .geom = *geom_,
                            .sprites = sprites_,
                            .setCentre = shapes_->boundCentre,
                            .domeOffset = {},
                            .depthTest = readBool(node, renderDepthTest),
                            .wireFrame = readBool(node, renderWireFrame)};
    renderer_.draw({&cloud, 1}, shading, eye, [&] { return !view.scheduleRefresh().error(); });
}

bool ParticleCloud::saveToXml(OutputFile& file, const char* indent, std::vector<unsigned char>& cloudVertices) {
    auto* params = ParticleCloudShadingParamsLocator::firstLiveInstance();
    if (!params) return false;
    if (!geom_ || !shapes_) return true;
    const CloudShadingParams shading = params->readParams();
    if (failed_ || lastInputs_ != inputsOf(shading))
        reportWarning("ParticleCloud::SaveToXML:  [%s] is out of date: it is exported as it was last generated\n",
                      name().asUTF8());
    const CloudSettings s = settings();
    return saveCloudToXml(file, indent, cloudVertices,
                          {.settings = s,
                           .geom = *geom_,
                           .setCentre = shapes_->boundCentre,
                           .setRadius = shapes_->boundRadius,
                           .enableDomePositioning = false},
                          shading);
}

} // namespace orvo
