#include "ParticleCloudDome.h"

#include "CloudDomeWorkers.h"
#include "Common/FileSystem.h"
#include "Common/GlStateScope.h"
#include "Common/HostText.h"
#include "Common/LocatorAttributes.h"
#include "Common/MayaCamera.h"
#include "Common/MayaUtils.h"
#include "Common/Paths.h"
#include "ParticleCloudShadingParamsLocator.h"

#include <algorithm>
#include <maya/MComputation.h>
#include <maya/MGlobal.h>
#include <utility>

namespace orvo {
namespace {

constexpr double centimetres = 100.0;

bool isXmlFile(const FolderEntry& entry) {
    return !entry.isFolder && entry.name.size() >= 4 && toLowerCase(entry.name.substr(entry.name.size() - 4)) == ".xml";
}

/// The largest stretch along an axis.
double largestScale(const Matrix44& matrix) {
    double largest = 0.0;
    for (int r = 0; r < 3; ++r) largest = std::max(largest, length({matrix.m[r][0], matrix.m[r][1], matrix.m[r][2]}));
    return largest;
}

bool isInView(const CameraFrustum& frustum, const Vector3& centre, double radius) {
    return std::all_of(frustum.planes.begin(), frustum.planes.end(), [&](const CameraFrustum::Plane& plane) {
        return dot(plane.normal, centre) >= plane.distance - radius;
    });
}

/// Whether a view shows the aids of locators.
bool showsLocators(M3dView& view) {
    MStatus status;
    const unsigned int shown = view.objectDisplay(&status);
    return status.error() || (shown & M3dView::kDisplayLocators) != 0;
}

void drawOutline(const DomeParams& params) {
    ShaderProgram::unbind();
    glEnable(GL_DEPTH_TEST);
    glDisable(GL_BLEND);
    glDisable(GL_LIGHTING);
    glDisable(GL_TEXTURE_2D);
    glBegin(GL_LINES);
    for (const LineSegment& line : domeOutline(params))
        for (const Vector3& end : {line.from, line.to}) glVertex3d(end.x, end.y, end.z);
    glEnd();
}

} // namespace

const MTypeId ParticleCloudDome::id(0x374024);

MObject ParticleCloudDome::Enable, ParticleCloudDome::renderWireFrame, ParticleCloudDome::renderDepthTest,
    ParticleCloudDome::time, ParticleCloudDome::windVelocity, ParticleCloudDome::windDir, ParticleCloudDome::domeHeight,
    ParticleCloudDome::domeCurvature, ParticleCloudDome::domeInnerRadius, ParticleCloudDome::domeOuterRadius,
    ParticleCloudDome::placementDensity, ParticleCloudDome::cloudScale, ParticleCloudDome::cloudDataDir;

MStatus ParticleCloudDome::initialize() {
    return guarded("ParticleCloudDome::initialize", MStatus(MStatus::kFailure), [] {
        using A = LocatorAttributes;
        const AttributeFlags plain{.keyable = false};
        Enable = A::boolean("Enable", true, plain);
        renderWireFrame = A::boolean("renderWireFrame", true, plain);
        renderDepthTest = A::boolean("renderDepthTest", false, plain);
        time = A::real("time", 0.0, {.softMin = 0.0, .softMax = 100.0}, plain);
        windVelocity = A::real("windVelocity", 10.0, {.min = 0.0, .max = 100.0}, plain);
        windDir = A::real("windDir", 0.0, {.min = 0.0, .max = 360.0}, plain);
        domeHeight = A::real("domeHeight", 700.0, {.softMin = 1.0, .softMax = 2100.0}, plain);
        domeCurvature = A::real("domeCurvature", 20000.0, {.min = 1.0, .softMin = 1.0, .softMax = 60000.0}, plain);
        domeInnerRadius = A::real("domeInnerRadius", 3000.0, {.min = 10.0, .softMin = 1.0, .softMax = 9000.0}, plain);
        domeOuterRadius = A::real("domeOuterRadius", 4000.0, {.min = 10.0, .softMin = 1.0, .softMax = 12000.0}, plain);
        placementDensity = A::real("placementDensity", 1.0, {.min = 0.001, .softMax = 5.0}, plain);
        cloudScale = A::real("cloudScale", 1.0, {.min = 0.001, .softMax = 10.0}, plain);
        cloudDataDir = A::filePath("cloudDataDir", plain);
        return MStatus(MStatus::kSuccess);
    });
}

void ParticleCloudDome::refresh() {
    renderer_.release();
    templates_.clear();
    templatesLoaded_ = false;
    builtFor_.reset();
    loadTemplates();
    if (auto* shading = ParticleCloudShadingParamsLocator::firstLiveInstance())
        prepareClouds(shading->readParams());
    else
        dropClouds();
}

void ParticleCloudDome::bringUpToDate() {
    if (!isEnabled()) return forgetClouds();
    const auto earlier = std::exchange(templates_, {});
    templatesLoaded_ = false;
    loadTemplates();
    auto* shadingNode = ParticleCloudShadingParamsLocator::firstLiveInstance();
    if (!shadingNode || templates_ != earlier || !complete_) builtFor_.reset();
    if (!shadingNode) return dropClouds();
    const CloudShadingParams shading = shadingNode->readParams();
    // A draw lets the light turn without generating the clouds anew, which would take it too long.
    if (shading.enableSelfShadow && shading.sunDir != builtSunDir_) builtFor_.reset();
    prepareClouds(shading);
}

void ParticleCloudDome::loadFromDisk(const std::string& path) {
    writeString(thisMObject(), cloudDataDir, hostText(path));
    refresh();
}

DomeParams ParticleCloudDome::readParams() {
    const MObject node = thisMObject();
    return domeParams({.enabled = readBool(node, Enable),
                       .time = readDouble(node, time),
                       .windVelocity = readDouble(node, windVelocity),
                       .windDir = readDouble(node, windDir),
                       .domeHeight = readDouble(node, domeHeight),
                       .domeCurvature = readDouble(node, domeCurvature),
                       .domeInnerRadius = readDouble(node, domeInnerRadius),
                       .domeOuterRadius = readDouble(node, domeOuterRadius)});
}

ParticleCloudDome::BuildInputs ParticleCloudDome::readBuildInputs(const CloudShadingParams& shading) {
    const MObject node = thisMObject();
    return {{.scale = readDouble(node, cloudScale),
             .density = readDouble(node, placementDensity),
             .outerRadius = readDouble(node, domeOuterRadius) * centimetres},
            shading.enableSelfShadow};
}

void ParticleCloudDome::freeAll() {
    renderer_.release();
    forgetClouds();
}

void ParticleCloudDome::forgetClouds() {
    templates_.clear();
    templatesLoaded_ = false;
    dropClouds();
}

void ParticleCloudDome::dropClouds() {
    sprites_.clear();
    clouds_.clear();
    builtFor_.reset();
}

void ParticleCloudDome::loadTemplates() {
    if (templatesLoaded_) return;
    templatesLoaded_ = true;
    const std::string authored = readString(thisMObject(), cloudDataDir).asUTF8();
    const std::string stored = storedForm(authored);
    if (stored != authored && isFreeToChange(thisMObject(), cloudDataDir))
        writeString(thisMObject(), cloudDataDir, hostText(stored));
    const std::string location = absoluteCopy(stored);

    if (folderExists(location)) {
        loadFolder(location);
    } else {
        XmlFile file;
        file.load(location);
        if (auto library = readCloudLibrary(file))
            templates_ = std::move(*library);
        else
            reportInfo("ParticleCloudDome:  %s\n", file.error());
        reportHeldValues(file);
    }
    if (templates_.empty())
        reportPlacedError("VolumeCloudDome::RefreshSpriteData:  Could not load any .xml files from location [%s]\n",
                          location);
}

void ParticleCloudDome::loadFolder(const std::string& folder) {
    auto entries = listFolder(folder);
    if (!entries)
        return reportPlacedError("ParticleCloudDome::RefreshCloudGeomData:  Could not search dir [%s] for .xml files\n",
                                 folder);
    std::erase_if(*entries, [](const FolderEntry& entry) { return !isXmlFile(entry); });
    if (entries->empty())
        return reportPlacedError(
            "ParticleCloudDome::RefreshCloudGeomData:  Could not find any .xml files in dir [%s]\n", folder);

    for (const FolderEntry& entry : *entries) {
        const std::string path = collapsePath(folder + "\\" + entry.name);
        XmlFile file;
        // A whole file that is something else may lie here; a damaged one may have been a cloud.
        if (file.load(path) && !isCloudFile(file)) continue;
        if (auto cloud = readCloudFile(file)) {
            templates_.push_back(std::move(*cloud));
            reportHeldValues(file);
        } else {
            reportInfo("VolumeCloudDome::RefreshSpriteData:  Had trouble loading .xml file [%s]\n", path);
            reportInfo("%s", file.error());
        }
    }
}

void ParticleCloudDome::placeAndGenerate(const CloudShadingParams& shading) {
    const BuildInputs inputs = readBuildInputs(shading);
    builtFor_ = inputs;
    complete_ = false;
    MComputation work;
    work.beginComputation(true);
    const auto build = [&] {
        return buildDome(templates_, inputs.layout, shading, startThread, [&work](std::size_t done, std::size_t all) {
            work.setProgressRange(0, static_cast<int>(all));
            work.setProgress(static_cast<int>(done));
            return !work.isInterruptRequested();
        });
    };
    DomeBuild dome = build();
    if (dome.failed > 0 && !clouds_.empty()) { // the earlier clouds took the memory
        sprites_.clear();
        clouds_.clear();
        dome.clouds.clear();
        dome = build();
    }
    work.endComputation();
    if (dome.givenUp)
        return reportPlacedError("ParticleCloudDome:  [%s] keeps its earlier clouds: generating others was given up\n",
                                 name().asUTF8());
    sprites_.clear(); // they are of the earlier clouds
    clouds_ = std::move(dome.clouds);
    builtSunDir_ = shading.sunDir;
    complete_ = dome.failed == 0;
    if (dome.limitReached) {
        reportPlace(SourcePlace::current(), MessageLevel::Warning);
        reportWarning("MAX LIMIT REACHED!  CLOUDS PRODUCED [%d]  CLOUD MEMORY USED [%d]\n", dome.started,
                      dome.dataSize);
    } else {
        reportInfo("CLOUDS PRODUCED [%d]  CLOUD MEMORY USED [%d]\n", dome.started, dome.dataSize);
    }
    if (dome.failed > 0)
        reportPlacedError("ParticleCloudDome:  [%s] lacks %d of its %d clouds: out of memory\n", name().asUTF8(),
                          dome.failed, dome.started);
}

void ParticleCloudDome::prepareClouds(const CloudShadingParams& shading) {
    loadTemplates();
    if (templates_.empty())
        dropClouds();
    else if (builtFor_ != readBuildInputs(shading))
        placeAndGenerate(shading);
}

void ParticleCloudDome::render(M3dView& view) {
    const DomeParams params = readParams();
    if (!params.enabled) return freeAll();
    Matrix44 world;
    const MStatus status = nodeWorldMatrix(thisMObject(), world);
    if (status.error()) {
        MGlobal::displayError(status.errorString() + "\n");
        return;
    }
    const GlStateScope state;
    glMultMatrixd(&world.m[0][0]);
    drawClouds(params, view, world);
    if (readBool(thisMObject(), renderWireFrame) && showsLocators(view)) drawOutline(params);
}

void ParticleCloudDome::drawClouds(const DomeParams& params, M3dView& view, const Matrix44& world) {
    const MObject node = thisMObject();
    const MayaCamera camera(view);
    auto* shadingNode = ParticleCloudShadingParamsLocator::firstLiveInstance();
    if (!shadingNode || !camera.isValid()) return;
    const CloudShadingParams shading = shadingNode->readParams();
    prepareClouds(shading);
    if (templates_.empty() || !renderer_.prepare(shading)) return;

    Matrix44 toLocal;
    if (nodeInverseWorldMatrix(node, toLocal).error()) return;
    const CameraFrustum& frustum = camera.frustum();
    const Vector3 eye = frustum.eyePoint();
    const double scale = largestScale(world);

    struct VisibleCloud {
        std::size_t index;
        DomeCloudPose pose;
        double distance; ///< from the camera, in world space
    };
    std::vector<VisibleCloud> visible;
    sprites_.resize(clouds_.size());
    for (std::size_t i = 0; i < clouds_.size(); ++i) {
        const DomeCloud& cloud = clouds_[i];
        const std::optional<DomeCloudPose> pose = domeCloudPose(params, cloud.basePosition);
        if (!pose || !(pose->fade > 0)) continue; // beyond the rim
        const Vector3 centre = MatrixTransformPoint(world, pose->position);
        if (isInView(frustum, centre, cloud.radius * scale)) visible.push_back({i, *pose, length(centre - eye)});
    }
    std::stable_sort(visible.begin(), visible.end(),
                     [](const VisibleCloud& a, const VisibleCloud& b) { return a.distance > b.distance; });

    const bool depthTest = readBool(node, renderDepthTest);
    const Vector3 localEye = MatrixTransformPoint(toLocal, eye);
    std::vector<CloudToDraw> drawn;
    drawn.reserve(visible.size());
    for (const VisibleCloud& v : visible) {
        const DomeCloud& cloud = clouds_[v.index];
        drawn.push_back({.settings = cloud.settings,
                         .geom = *cloud.geom,
                         .sprites = sprites_[v.index],
                         .setCentre = cloud.basePosition,
                         .domeOffset = v.pose.position - cloud.basePosition,
                         .opacity = v.pose.fade,
                         .depthTest = depthTest});
    }
    renderer_.draw(drawn, shading, localEye, [&] { return !view.scheduleRefresh().error(); });
}

bool ParticleCloudDome::saveToXml(OutputFile& file, const char* indent, std::vector<unsigned char>& cloudVertices) {
    auto* shadingNode = ParticleCloudShadingParamsLocator::firstLiveInstance();
    if (!shadingNode) {
        reportPlacedError("ParticleCloudDome::SaveToXML:  can't find shading parameters node\n");
        return false;
    }
    const CloudShadingParams shading = shadingNode->readParams();
    if (builtFor_ && *builtFor_ != readBuildInputs(shading))
        reportWarning("ParticleCloudDome::SaveToXML:  [%s] is out of date: it is exported as it was last generated\n",
                      name().asUTF8());
    const MObject node = thisMObject();
    file.print("%s<ParticleCloudDome\n", indent);
    file.print("%s\tdomeHeight = \"%f\"\n", indent, readDouble(node, domeHeight));
    file.print("%s\tdomeCurvature = \"%f\"\n", indent, readDouble(node, domeCurvature));
    file.print("%s\tdomeInnerRadius = \"%f\"\n", indent, readDouble(node, domeInnerRadius));
    file.print("%s\tdomeOuterRadius = \"%f\"\n", indent, readDouble(node, domeOuterRadius));
    file.print("%s\twindVelocity = \"%f\"\n", indent, readDouble(node, windVelocity));
    file.print("%s\twindDir = \"%f\"\n", indent, readDouble(node, windDir));
    file.print("%s/>\n", indent);
    for (std::size_t i = 0; i < clouds_.size(); ++i) {
        if (saveCloudToXml(file, indent, cloudVertices, exportedDomeCloud(clouds_[i]), shading)) continue;
        reportPlacedError("ParticleCloudDome::SaveToXML:  failed to export cloud [%d]\n", i);
        return false;
    }
    return true;
}

} // namespace orvo
