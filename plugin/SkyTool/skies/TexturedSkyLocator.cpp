#include "TexturedSkyLocator.h"

#include "Common/LocatorAttributes.h"
#include "Common/MayaUtils.h"
#include "Common/XmlText.h"
#include "SkyTool/CameraSpace.h"
#include "ViewQuad.h"

#include <cmath>
#include <numbers>

namespace orvo {
namespace {

const char* const fragmentShader = R"(#define float2 vec2
#define float3 vec3
#define float4 vec4

varying vec4 HWworldPos;
varying vec3 worldPos;

uniform samplerCube cubeMapTexture;
uniform float3 eyePoint;
uniform float brightness;
uniform mat2 rotation;

void main()
{
    float3 viewDir = normalize(worldPos - eyePoint);
    viewDir.xz = rotation * viewDir.xz;
    float4 s = textureCube(cubeMapTexture, viewDir);
    s.rgb = pow(s.rgb, float3(2.2));
    float3 colour = s.rgb / s.a * brightness;
    colour = pow(colour, float3(1.0/2.2));
    gl_FragColor = float4(colour, 1.0);
}
)";

const SkyShaderTexts shaders{"TexturedSkyLocator", viewQuadVertexShader, fragmentShader};

std::unique_ptr<TextureHandle> greyCheckerboard() { return checkerboardCubeMap(4, {-1, -1, -1, 255}); }

} // namespace

std::array<float, 4> skyRotation(double degrees) {
    const double angle = degrees * std::numbers::pi / 180.0;
    const float c = static_cast<float>(std::cos(angle)), s = static_cast<float>(std::sin(angle));
    return {c, -s, s, c};
}

const MTypeId TexturedSkyLocator::id(0x374015);

MObject TexturedSkyLocator::Enable, TexturedSkyLocator::cubeMapTexture, TexturedSkyLocator::brightness,
    TexturedSkyLocator::rotation;

MStatus TexturedSkyLocator::initialize() {
    return guarded("TexturedSkyLocator::initialize", MStatus(MStatus::kFailure), [] {
        using A = LocatorAttributes;
        Enable = A::boolean("Enable", true);
        cubeMapTexture = A::filePath("cubeMapTexture");
        brightness = A::real("brightness", 1.0, {.min = 0.0, .max = 3.0});
        rotation = A::real("rotation", 0.0, {.min = 0.0, .max = 360.0});
        return MStatus(MStatus::kSuccess);
    });
}

void TexturedSkyLocator::release() {
    program_.release();
    texture_.release();
}

void TexturedSkyLocator::bringUpToDate() {
    if (isEnabled()) texture_.storePath(thisMObject(), cubeMapTexture);
}

void TexturedSkyLocator::render(M3dView& view) {
    if (!isEnabled()) return release();
    bringUpToDate();
    ShaderProgram* program = program_.get(shaders);
    if (!program) return;
    const MObject node = thisMObject();
    const std::uint32_t texture = texture_.update(node, cubeMapTexture, loadCubeMap, greyCheckerboard);
    if (texture == 0) return;
    const std::array<float, 4> turned = skyRotation(readDouble(node, rotation));
    const auto setSpaceAndTexture = [&view, texture] {
        loadViewMatrix(MayaCamera(view));
        gl().activeTexture(GL_TEXTURE0);
        glBindTexture(GL_TEXTURE_CUBE_MAP, texture);
    };
    drawViewQuad(view, node, *program, skyQuadStyle, setSpaceAndTexture, [&](const Vector3& eyePoint) {
        program->setUniformI("cubeMapTexture", 0);
        setUniform(*program, "eyePoint", eyePoint);
        setUniform(*program, "brightness", readDouble(node, brightness));
        program->setUniformMatrix("rotation", 2, false, turned.data());
    });
}

bool TexturedSkyLocator::saveToXml(OutputFile& file, const char* indent) {
    const MObject node = thisMObject();
    bool inBuildFolder = false;
    std::string image = buildPath(node, cubeMapTexture, inBuildFolder);
    if (!inBuildFolder) {
        reportError("TexturedSkyLocator::SaveToXML:  filepath bad. [%s] (maybe file not located in hub data "
                    "directory?)\n",
                    image);
        image.clear();
    }
    file.print("%s<TexturedSky\n", indent);
    file.print("%s\tbrightness = \"%f\"\n", indent, readDouble(node, brightness));
    file.print("%s\trotation = \"%f\"\n", indent, readDouble(node, rotation));
    file.print("%s\ttexture = \"%s\"\n", indent, xmlEscaped(image));
    file.print("%s/>\n", indent);
    return true;
}

} // namespace orvo
