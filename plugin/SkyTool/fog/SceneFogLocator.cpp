#include "SceneFogLocator.h"

#include "Common/LocatorAttributes.h"
#include "Common/MayaUtils.h"
#include "ExpHeightFogLocator.h"
#include "SkyTool/skies/ViewQuad.h"

#include <cmath>
#include <maya/MFnDependencyNode.h>
#include <maya/MFnMesh.h>
#include <maya/MGlobal.h>
#include <maya/MMatrix.h>
#include <maya/MPoint.h>
#include <maya/MSelectionList.h>
#include <maya/MStringArray.h>
#include <utility>

namespace orvo {
namespace {

const char* const vertexShader = R"(attribute vec3 in_worldPos;
attribute vec3 in_normal;
varying vec3 worldPos;
varying vec3 normal;

void main()
{
    worldPos = in_worldPos;
    normal = in_normal;
    gl_Position = gl_ModelViewProjectionMatrix * vec4(in_worldPos, 1.0);
}
)";

const char* const fragmentShader = R"(#define saturate(x) clamp((x), 0.0, 1.0)

varying vec3 worldPos;
varying vec3 normal;

uniform vec3 eyePoint;
uniform vec3 geomColour;
uniform vec3 sunDir;
uniform vec3 fogColour;
uniform float fogStart;
uniform float fogDensity;
uniform float fogAlpha;

void main()
{
    float light = saturate(dot(normalize(normal), sunDir)) * 0.8 + 0.2;
    float dist = length(worldPos - eyePoint);
    float fog = (1.0 - saturate(exp((dist - fogStart) * fogDensity))) * fogAlpha;
    gl_FragColor = vec4(mix(geomColour * light, fogColour, clamp(fog, 0.0, 1.0)), 1.0);
}
)";

const SkyShaderTexts shaders{"SceneFogLocator", vertexShader, fragmentShader};

/// Asks a locator for its mesh in the form for snapping, until the end of the scope.
class SnapMeshForm {
public:
    explicit SnapMeshForm(const MPlug& plug) : plug_(plug), known_(succeeded(plug_.getValue(before_))) {
        if (known_) succeeded(plug_.setValue(1));
    }
    ~SnapMeshForm() {
        guarded("SceneFogLocator::snapMeshForm", [&] {
            if (known_) succeeded(plug_.setValue(before_));
        });
    }
    SnapMeshForm(const SnapMeshForm&) = delete;
    SnapMeshForm& operator=(const SnapMeshForm&) = delete;

private:
    MPlug plug_;
    int before_ = 0;
    bool known_;
};

/// The mesh of a plug of a locator at `path`, in world space; null when it is empty.
std::unique_ptr<TriMesh> meshOf(const MPlug& outMesh, const MDagPath& path) {
    MObject data;
    if (outMesh.getValue(data).error() || data.isNull()) return nullptr; // no mesh yet
    MStatus status;
    const MFnMesh mesh(data, &status);
    if (status.error()) return nullptr;
    const int vertices = mesh.numVertices(&status);
    if (status.error() || vertices < 1) return nullptr;
    const int polygons = mesh.numPolygons(&status);
    if (status.error() || polygons < 1) return nullptr;

    // Mesh data knows no world; the locator's place in the scene gives it.
    const MMatrix toWorld = path.inclusiveMatrix(&status);
    if (!succeeded(status)) return nullptr;
    auto made = CreateTriMeshFromMayaMesh(mesh, false, false);
    if (!made) return nullptr;
    for (Vector3& p : made->positions) {
        const MPoint world = MPoint(p.x, p.y, p.z) * toWorld;
        p = {world.x, world.y, world.z};
    }
    // Mirroring turns the winding, from which normals are made, but not the side of the ground that one stands on.
    if (toWorld.det3x3() < 0)
        for (auto& triangle : made->triangles) std::swap(triangle[1], triangle[2]);
    return made;
}

bool contains(const MStringArray& texts, const char* wanted) {
    for (unsigned i = 0; i < texts.length(); ++i)
        if (texts[i] == wanted) return true;
    return false;
}

std::vector<MeshArrays> gatherMeshes() {
    std::vector<MeshArrays> meshes;
    MStringArray types, names;
    // Asked for first: listing nodes of an unknown type, where the other plug-in is not loaded, is an error that the
    // artist would see.
    if (MGlobal::executeCommand("allNodeTypes", types).error() || !contains(types, "XeliLocatorNode")) return meshes;
    if (MGlobal::executeCommand("ls -v -l -type XeliLocatorNode", names).error()) return meshes;
    for (unsigned i = 0; i < names.length(); ++i) {
        MDagPath path;
        if (dagPathByName(names[i], path).error() || !path.isValid()) continue;
        MStatus status;
        const MFnDependencyNode node(path.node(), &status);
        if (status.error()) continue;
        const MPlug form = node.findPlug("snapMeshForm", true, &status);
        if (status.error()) continue;
        const MPlug outMesh = node.findPlug("outMesh", true, &status);
        if (status.error()) continue;
        const SnapMeshForm snapping(form);
        if (const auto mesh = meshOf(outMesh, path)) meshes.push_back(meshArrays(*mesh, MeshArrayKinds::WithNormals));
    }
    return meshes;
}

} // namespace

SceneFogRange sceneFogRange(double fogStart, double fogEnd) {
    if (fogEnd < fogStart) std::swap(fogStart, fogEnd);
    return {fogStart, fogEnd, static_cast<double>(std::log(0.003f)) / (fogEnd - fogStart) / 100.0};
}

const MTypeId SceneFogLocator::id(0x374027);

MObject SceneFogLocator::Enable, SceneFogLocator::getColourFromExpHeightFog, SceneFogLocator::fogStart,
    SceneFogLocator::fogEnd, SceneFogLocator::fogAlpha, SceneFogLocator::fogColour, SceneFogLocator::previewGeomColour,
    SceneFogLocator::sunDir;

MStatus SceneFogLocator::initialize() {
    return guarded("SceneFogLocator::initialize", MStatus(MStatus::kFailure), [] {
        using A = LocatorAttributes;
        Enable = A::boolean("Enable", true);
        getColourFromExpHeightFog = A::boolean("getColourFromExpHeightFog", false);
        fogStart = A::real("fogStart", 100.0, {.min = 1.0, .softMax = 500.0});
        fogEnd = A::real("fogEnd", 500.0, {.min = 1.0, .softMax = 4000.0});
        fogAlpha = A::real("fogAlpha", 1.0, {.min = 0.0001, .max = 1.0});
        fogColour = A::colour("fogColour", {1, 1, 1});
        previewGeomColour = A::colour("previewGeomColour", {0.5, 0.5, 0.5});
        sunDir = A::vector("sunDir", {0, 1, 0}, {.min = -1.0, .max = 1.0});
        ExpHeightFogLocator::sceneFogColour = &SceneFogLocator::firstLiveColour;
        return MStatus(MStatus::kSuccess);
    });
}

std::optional<Vector3> SceneFogLocator::firstLiveColour() {
    const SceneFogLocator* fog = InstanceList<SceneFogLocator>::shared().firstLive();
    if (!fog) return std::nullopt;
    return readFloat3(fog->thisMObject(), fogColour);
}

void SceneFogLocator::release() {
    program_.release();
    meshes_.reset();
}

void SceneFogLocator::bringUpToDate() {
    const MObject node = thisMObject();
    if (!isEnabled() || !readBool(node, getColourFromExpHeightFog)) return;
    const ExpHeightFogLocator* heightFog = ExpHeightFogLocator::firstLiveInstance();
    if (!heightFog) return;
    const Vector3 colour = readFloat3(heightFog->thisMObject(), ExpHeightFogLocator::fogColour);
    // A failed write is reported by the writer; the colour then stays as it is.
    if (colour != readFloat3(node, fogColour) && isFreeToChange(node, fogColour))
        (void)writeFloat3(node, fogColour, colour);
}

void SceneFogLocator::render(M3dView& view) {
    if (!isEnabled()) return release();
    bringUpToDate();
    ShaderProgram* program = program_.get(shaders);
    if (!program) return;
    if (!meshes_) meshes_ = gatherMeshes();
    if (meshes_->empty()) return;

    const MObject node = thisMObject();
    const auto setState = [] {
        glDisable(GL_BLEND);
        glDisable(GL_POLYGON_SMOOTH);
        glDisable(GL_TEXTURE_2D);
    };
    drawWorldMeshes(view, *program, *meshes_, setState, [&](const Vector3& eyePoint) {
        const SceneFogRange range = sceneFogRange(readDouble(node, fogStart), readDouble(node, fogEnd));
        setUniform(*program, "eyePoint", eyePoint);
        setUniform(*program, "geomColour", readFloat3(node, previewGeomColour));
        setUniform(*program, "sunDir", normalised(readDouble3(node, sunDir)));
        setUniform(*program, "fogColour", readFloat3(node, fogColour));
        setUniform(*program, "fogStart", range.start * 100.0);
        setUniform(*program, "fogDensity", range.density);
        setUniform(*program, "fogAlpha", readDouble(node, fogAlpha));
    });
}

bool SceneFogLocator::saveToXml(OutputFile& file, const char* indent) {
    const MObject node = thisMObject();
    const SceneFogRange range = sceneFogRange(readDouble(node, fogStart), readDouble(node, fogEnd));
    const Vector3 colour = readFloat3(node, fogColour);
    file.print("%s<SceneFog\n", indent);
    file.print("%s\tfogStart = \"%f\"\n", indent, range.start);
    file.print("%s\tfogEnd = \"%f\"\n", indent, range.end);
    file.print("%s\tfogAlpha = \"%f\"\n", indent, readDouble(node, fogAlpha));
    file.print("%s\tfogColour = \"%f %f %f\"\n", indent, colour.x, colour.y, colour.z);
    file.print("%s/>\n", indent);
    return true;
}

} // namespace orvo
