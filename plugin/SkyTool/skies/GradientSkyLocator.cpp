#include "GradientSkyLocator.h"

#include "BasicSkyParams.h"
#include "Common/LocatorAttributes.h"
#include "Common/MayaUtils.h"
#include "Common/XmlText.h"
#include "ViewQuad.h"

namespace orvo {
namespace {

const char* const fragmentShader = R"(#define float2 vec2
#define float3 vec3
#define float4 vec4
#define lerp(x,y,z) mix((x),(y),clamp((z),0.0,1.0))
#define tex2D(x,y) texture2D((x), (y))
#define saturate(x) clamp((x), 0.0, 1.0)
#define IS_TRUE(x) (x > 0.5)

varying vec4 HWworldPos;
varying vec3 worldPos;

uniform sampler2D gradientTexture;
uniform float3 eyePoint;
uniform float3 sunColor;
uniform float3 sunDir;
uniform float sunDiskSize;
uniform float sunDiskFalloff;
uniform float sunDiskWeight;
uniform float sunEnable;
uniform float brightness;
uniform float xcoord;

void main()
{
    float3 viewDir = normalize(worldPos - eyePoint);
    float texcoord = 0.5*viewDir.y + 0.5;
    float4 hdrsample = tex2D(gradientTexture, float2(xcoord, texcoord));
    float3 skyColour = hdrsample.xyz / hdrsample.a;
    skyColour *= brightness;
    if (IS_TRUE(sunEnable))
    {
        float costheta = dot(viewDir, sunDir);
        float s = saturate(costheta + sunDiskSize);
        s = 1.0 - sqrt(1.0 - s*s);
        float halo = pow(s, sunDiskFalloff);
        skyColour += sunColor*halo*sunDiskWeight;
    }
    gl_FragColor = float4(skyColour, 1.0);
}
)";

const SkyShaderTexts shaders{"GradientSkyLocator", viewQuadVertexShader, fragmentShader};

bool loadGradient(TextureHandle& handle, const std::string& path) {
    return loadTextureRgba(handle, path, false, false, false);
}

std::unique_ptr<TextureHandle> greyCheckerboard() { return checkerboard(4, false, false, {-1, -1, -1, 255}); }

} // namespace

const MTypeId GradientSkyLocator::id(0x374017);

MObject GradientSkyLocator::Enable, GradientSkyLocator::sunDir, GradientSkyLocator::sunColour,
    GradientSkyLocator::sunIntensity, GradientSkyLocator::sunDiskSize, GradientSkyLocator::sunDiskFalloff,
    GradientSkyLocator::sunDiskWeight, GradientSkyLocator::sunEnable, GradientSkyLocator::gradientTexture,
    GradientSkyLocator::brightness, GradientSkyLocator::xcoord;

MStatus GradientSkyLocator::initialize() {
    return guarded("GradientSkyLocator::initialize", MStatus(MStatus::kFailure), [] {
        using A = LocatorAttributes;
        Enable = A::boolean("Enable", true);
        sunDir = A::vector("sunDir", {1, 1, 1}, {.min = -1.0, .max = 1.0});
        sunColour = A::colour("sunColour", {1.0, 0.95, 0.763});
        sunIntensity = A::real("sunIntensity", 1.0, {.min = 0.0, .max = 5.0});
        sunDiskSize = A::real("sunDiskSize", 0.12, {.min = 0.0, .max = 1.0});
        sunDiskFalloff = A::real("sunDiskFalloff", 32.0, {.min = 0.0, .max = 50.0});
        sunDiskWeight = A::real("sunDiskWeight", 1.0, {.min = 0.0, .max = 2.0});
        sunEnable = A::boolean("sunEnable", true);
        gradientTexture = A::filePath("gradientTexture");
        brightness = A::real("brightness", 1.0, {.min = 0.0, .max = 3.0});
        xcoord = A::real("xcoord", 0.45, {.min = 0.0, .max = 1.0});
        return MStatus(MStatus::kSuccess);
    });
}

void GradientSkyLocator::release() {
    program_.release();
    texture_.release();
}

GradientSkyParams GradientSkyLocator::params() const {
    const MObject node = thisMObject();
    return {.sunDir = normalised(readDouble3(node, sunDir)),
            .sunColour = readFloat3(node, sunColour),
            .sunIntensity = readDouble(node, sunIntensity),
            .sunDiskSize = sunDiskCosineForm(readDouble(node, sunDiskSize)),
            .sunDiskFalloff = readDouble(node, sunDiskFalloff),
            .sunDiskWeight = readDouble(node, sunDiskWeight),
            .sunEnable = readBool(node, sunEnable),
            .brightness = readDouble(node, brightness),
            .xcoord = readDouble(node, xcoord)};
}

void GradientSkyLocator::bringUpToDate() {
    if (isEnabled()) texture_.storePath(thisMObject(), gradientTexture);
}

void GradientSkyLocator::render(M3dView& view) {
    if (!isEnabled()) return release();
    bringUpToDate();
    ShaderProgram* program = program_.get(shaders);
    if (!program) return;
    const MObject node = thisMObject();
    const std::uint32_t texture = texture_.update(node, gradientTexture, loadGradient, greyCheckerboard);
    if (texture == 0) return;
    const GradientSkyParams p = params();
    const auto setTextures = [texture] {
        gl().activeTexture(GL_TEXTURE0);
        glEnable(GL_TEXTURE_2D);
        glBindTexture(GL_TEXTURE_2D, texture);
        glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    };
    drawViewQuad(view, node, *program, skyQuadStyle, setTextures, [&](const Vector3& eyePoint) {
        program->setUniformI("gradientTexture", 0);
        setUniform(*program, "eyePoint", eyePoint);
        setUniform(*program, "sunDir", p.sunDir);
        setUniform(*program, "sunColor", p.sunColour * p.sunIntensity);
        setUniform(*program, "sunDiskSize", p.sunDiskSize);
        setUniform(*program, "sunDiskFalloff", p.sunDiskFalloff);
        setUniform(*program, "sunDiskWeight", p.sunDiskWeight);
        setUniform(*program, "sunEnable", p.sunEnable ? 1.0 : 0.0);
        setUniform(*program, "brightness", p.brightness);
        setUniform(*program, "xcoord", p.xcoord);
    });
}

bool GradientSkyLocator::saveToXml(OutputFile& file, const char* indent) {
    const MObject node = thisMObject();
    const GradientSkyParams p = params();
    bool inBuildFolder = false;
    std::string image = buildPath(node, gradientTexture, inBuildFolder);
    if (!inBuildFolder) {
        reportPlacedError("GradientSkyLocator::SaveToXML:  filepath bad. [%s] (maybe file not located in hub data "
                          "directory?)\n",
                          image);
        image.clear();
    }
    file.print("%s<GradientSky\n", indent);
    file.print("%s\tsunDir = \"%f %f %f\"\n", indent, p.sunDir.x, p.sunDir.y, p.sunDir.z);
    file.print("%s\tsunColour = \"%f %f %f\"\n", indent, p.sunColour.x, p.sunColour.y, p.sunColour.z);
    file.print("%s\tsunIntensity  = \"%f\"\n", indent, p.sunIntensity);
    file.print("%s\tsunDiskSize = \"%f\"\n", indent, readDouble(node, sunDiskSize));
    file.print("%s\tsunDiskFalloff = \"%f\"\n", indent, p.sunDiskFalloff);
    file.print("%s\tsunDiskWeight = \"%f\"\n", indent, p.sunDiskWeight);
    file.print("%s\tsunEnable = \"%d\"\n", indent, p.sunEnable);
    file.print("%s\tbrightness = \"%f\"\n", indent, p.brightness);
    file.print("%s\txcoord = \"%f\"\n", indent, p.xcoord);
    file.print("%s\tgradientTexture = \"%s\"\n", indent, xmlEscaped(image));
    file.print("%s/>\n", indent);
    return true;
}

} // namespace orvo
