#include "SpriteCloudLocator.h"

#include "Common/LocatorAttributes.h"
#include "Common/MayaUtils.h"
#include "Common/TriMeshXml.h"
#include "Common/XmlText.h"
#include "SkyTool/skies/ViewQuad.h"

#include <algorithm>
#include <cmath>
#include <maya/MFnDagNode.h>
#include <maya/MFnMesh.h>

namespace orvo {
namespace {

enum CloudRenderMode : short { kOpaque, kAlphaBlend };

const char* const vertexShader = R"(attribute vec3 in_worldPos;
attribute vec2 in_uvcoord;
varying vec3 worldPos;
varying vec2 uvcoord;

void main()
{
    worldPos = in_worldPos;
    uvcoord = in_uvcoord;
    gl_Position = gl_ModelViewProjectionMatrix * vec4(in_worldPos, 1.0);
}
)";

// The alpha of an opaque texture carries the scale of its colour.
const char* const fragmentShader = R"(varying vec3 worldPos;
varying vec2 uvcoord;

uniform sampler2D cloudTexture;
uniform float isopaic;
uniform float alphaScale;
uniform vec3 tint;
uniform vec3 eyePoint;

void main()
{
    vec4 s = texture2D(cloudTexture, uvcoord);
    if (isopaic > 0.5)
        gl_FragColor = vec4(s.rgb / s.a * tint, 1.0);
    else
        gl_FragColor = vec4(s.rgb * tint, s.a * alphaScale);
}
)";

const SkyShaderTexts shaders{"SpriteCloudLocator", vertexShader, fragmentShader};

/// Cloud layers are modelled with UVs beyond the texture's borders.
constexpr bool kRepeat = true, kMipmaps = true;

bool loadSprite(TextureHandle& texture, const std::string& path) {
    return loadTextureRgba(texture, path, kRepeat, kRepeat, kMipmaps);
}

std::unique_ptr<TextureHandle> whiteTexture() {
    const std::vector<unsigned char> white(64, 255);
    auto texture = std::make_unique<TextureHandle>();
    if (!uploadTexture2DRgba(*texture, 4, 4, white.data(), {.repeatS = kRepeat, .repeatT = kRepeat})) texture.reset();
    return texture;
}

/// Vertices whose position is no number are written as they are; a game will hardly read them.
void warnOfLostVertices(const TriMesh& mesh) {
    const auto isLost = [](const Vector3& p) { return !std::isfinite(p.x + p.y + p.z); };
    const auto lost = std::ranges::count_if(mesh.positions, isLost);
    if (lost > 0) reportWarning("SpriteCloudLocator::SaveToXML:  %d vertices have no position\n", lost);
}

/// The meshes that stand directly below a path, or at it.
std::vector<MDagPath> meshPaths(const MDagPath& path) {
    std::vector<MDagPath> meshes;
    const auto add = [&](const MDagPath& shape) {
        MStatus status;
        const MFnDagNode node(shape, &status);
        if (!status.error() && shape.node().hasFn(MFn::kMesh) && !node.isIntermediateObject()) meshes.push_back(shape);
    };
    add(path);
    for (unsigned i = 0; i < path.childCount(); ++i) {
        MDagPath shape = path;
        if (succeeded(shape.push(path.child(i)))) add(shape);
    }
    return meshes;
}

} // namespace

const MTypeId SpriteCloudLocator::id(0x374016);

MObject SpriteCloudLocator::enable, SpriteCloudLocator::alwaysUpdateMesh, SpriteCloudLocator::spriteTexture,
    SpriteCloudLocator::RenderMode, SpriteCloudLocator::tint, SpriteCloudLocator::brightness,
    SpriteCloudLocator::alphaScale, SpriteCloudLocator::textureMipBias;

MStatus SpriteCloudLocator::initialize() {
    return guarded("SpriteCloudLocator::initialize", MStatus(MStatus::kFailure), [] {
        using A = LocatorAttributes;
        enable = A::boolean("enable", true);
        alwaysUpdateMesh = A::boolean("alwaysUpdateMesh", true);
        spriteTexture = A::filePath("spriteTexture");
        RenderMode = A::enumeration("RenderMode", kAlphaBlend, {{"Opaque", kOpaque}, {"AlphaBlend", kAlphaBlend}});
        tint = A::colour("tint", {1, 1, 1});
        brightness = A::real("brightness", 1.0, {.min = 0.0, .max = 3.0});
        alphaScale = A::real("alphaScale", 1.0, {.min = 0.0, .max = 2.0, .softMax = 1.0});
        textureMipBias = A::real("textureMipBias", 0.0, {.softMin = -2.0, .softMax = 2.0});
        return MStatus(MStatus::kSuccess);
    });
}

void SpriteCloudLocator::release() {
    program_.release();
    texture_.release();
    mesh_.reset();
    arrays_.reset();
}

void SpriteCloudLocator::refreshCloudMesh() {
    if (mesh_) return;
    const MObject transform = onlyParent(thisMObject());
    const MObject groupObject = transform.isNull() ? transform : onlyParent(transform);
    MDagPath group;
    if (groupObject.isNull() || MDagPath::getAPathTo(groupObject, group).error()) {
        reportError("SpriteCloudLocator::RefreshCloudMesh:  couldn't get parents from locator\n");
        return;
    }
    arrays_.reset();
    mesh_.emplace();
    bool found = false;
    const unsigned children = group.childCount();
    for (unsigned i = 0; children > 1 && i < children; ++i) {
        MDagPath child = group;
        if (!succeeded(child.push(group.child(i)))) continue;
        for (const MDagPath& shape : meshPaths(child)) {
            MStatus status;
            const MFnMesh host(shape, &status);
            if (!succeeded(status)) continue;
            const auto part = CreateTriMeshFromMayaMesh(host, true, true);
            if (!part) continue;
            mesh_->append(*part);
            found = true;
        }
    }
    // The empty mesh stays, so that the message does not come at every draw.
    if (!found) reportError("SpriteCloudLocator::RefreshCloudMesh:  No maya meshes found in wispy cloud group.\n");
}

void SpriteCloudLocator::bringUpToDate() {
    const MObject node = thisMObject();
    const bool enabled = isEnabled();
    if (!enabled || readBool(node, alwaysUpdateMesh)) mesh_.reset();
    if (!enabled) return;
    refreshCloudMesh();
    texture_.storePath(node, spriteTexture);
}

void SpriteCloudLocator::render(M3dView& view) {
    if (!isEnabled()) return release();
    bringUpToDate();
    ShaderProgram* program = program_.get(shaders);
    if (!program) return;
    const MObject node = thisMObject();
    const std::uint32_t texture = texture_.update(node, spriteTexture, loadSprite, whiteTexture);
    if (!mesh_ || mesh_->triangles.empty() || texture == 0) return;
    if (!arrays_) arrays_ = meshArrays(*mesh_, MeshArrayKinds::WithUvs);

    const bool opaque = readInt(node, RenderMode) == kOpaque;
    const auto setState = [&] {
        gl().activeTexture(GL_TEXTURE0);
        glEnable(GL_TEXTURE_2D);
        glBindTexture(GL_TEXTURE_2D, texture);
        glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
        if (opaque) return glDisable(GL_BLEND);
        glEnable(GL_BLEND);
        glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    };
    drawWorldMeshes(view, *program, {&*arrays_, 1}, setState, [&](const Vector3& eyePoint) {
        program->setUniformI("cloudTexture", 0);
        setUniform(*program, "isopaic", opaque ? 1.0 : 0.0);
        setUniform(*program, "alphaScale", readDouble(node, alphaScale));
        setUniform(*program, "tint", readFloat3(node, tint) * readDouble(node, brightness));
        setUniform(*program, "eyePoint", eyePoint);
    });
}

bool SpriteCloudLocator::saveToXml(OutputFile& file, const char* indent) {
    const MObject node = thisMObject();
    const Vector3 colour = readFloat3(node, tint);
    bool inBuildFolder = false;
    std::string image = buildPath(node, spriteTexture, inBuildFolder);
    if (!inBuildFolder) {
        reportError("SpriteCloudLocator::SaveToXML:  filepath bad. [%s] (maybe file not located in hub data "
                    "directory?)\n",
                    image);
        image.clear();
    }
    file.print("%s<SpriteCloud\n", indent);
    file.print("%s\trenderMode = \"%d\"\n", indent, readInt(node, RenderMode));
    file.print("%s\ttint = \"%f %f %f\"\n", indent, colour.x, colour.y, colour.z);
    file.print("%s\talphaScale = \"%f\"\n", indent, readDouble(node, alphaScale));
    file.print("%s\tbrightness = \"%f\"\n", indent, readDouble(node, brightness));
    file.print("%s\ttextureMipBias = \"%f\"\n", indent, readDouble(node, textureMipBias));
    file.print("%s\ttexture = \"%s\"\n", indent, xmlEscaped(image));
    file.print("%s\t>\n", indent);
    refreshCloudMesh();
    if (mesh_) warnOfLostVertices(*mesh_);
    if (!mesh_ || !writeTriMeshXml(*mesh_, file, (std::string(indent) + "\t").c_str())) return false;
    file.print("%s</SpriteCloud>\n", indent);
    return true;
}

} // namespace orvo
