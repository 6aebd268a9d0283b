#include "BasicSkyLocator.h"

#include "Common/LocatorAttributes.h"
#include "Common/MayaUtils.h"
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

uniform float3 eyePoint;
uniform float3 sunColor;
uniform float3 sunDir;
uniform float sunDiskSize;
uniform float sunDiskFalloff;
uniform float sunDiskWeight;
uniform float3 zenithColour;
uniform float3 horizonColour;
uniform float horizonFalloff;
uniform float horizonOffset;
uniform float sunEnable;

void main()
{
    float3 viewDir = normalize(worldPos - eyePoint);
    float3 skyColour = lerp(zenithColour, horizonColour, pow(1.0 - saturate(viewDir.y - horizonOffset), horizonFalloff));
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

const SkyShaderTexts shaders{"BasicSkyLocator", viewQuadVertexShader, fragmentShader};

} // namespace

const MTypeId BasicSkyLocator::id(0x374000);

MObject BasicSkyLocator::Enable, BasicSkyLocator::sunDir, BasicSkyLocator::sunColour, BasicSkyLocator::sunIntensity,
    BasicSkyLocator::sunDiskSize, BasicSkyLocator::sunDiskFalloff, BasicSkyLocator::sunDiskWeight,
    BasicSkyLocator::sunEnable, BasicSkyLocator::zenithColour, BasicSkyLocator::horizonColour,
    BasicSkyLocator::horizonFalloff, BasicSkyLocator::horizonOffset;

MStatus BasicSkyLocator::initialize() {
    return guarded("BasicSkyLocator::initialize", MStatus(MStatus::kFailure), [] {
        using A = LocatorAttributes;
        Enable = A::boolean("Enable", true);
        sunDir = A::vector("sunDir", {1, 1, 1}, {.min = -1.0, .max = 1.0});
        sunColour = A::colour("sunColour", {1.0, 0.95, 0.763});
        sunIntensity = A::real("sunIntensity", 1.0, {.min = 0.0, .max = 5.0});
        sunDiskSize = A::real("sunDiskSize", 0.12, {.min = 0.0, .max = 1.0});
        sunDiskFalloff = A::real("sunDiskFalloff", 32.0, {.min = 0.0, .max = 50.0});
        sunDiskWeight = A::real("sunDiskWeight", 1.0, {.min = 0.0, .max = 2.0});
        sunEnable = A::boolean("sunEnable", true);
        zenithColour = A::colour("zenithColour", {0.322, 0.471, 0.694});
        horizonColour = A::colour("horizonColour", {0.902, 0.953, 0.969});
        horizonFalloff = A::real("horizonFalloff", 5.0, {.min = 0.0, .softMax = 50.0});
        horizonOffset = A::real("horizonOffset", 0.0, {.min = -1.0, .max = 1.0});
        return MStatus(MStatus::kSuccess);
    });
}

BasicSkyValues BasicSkyLocator::values() const {
    const MObject node = thisMObject();
    return {.sunDir = readDouble3(node, sunDir),
            .sunColour = readFloat3(node, sunColour),
            .sunIntensity = readDouble(node, sunIntensity),
            .sunDiskSize = readDouble(node, sunDiskSize),
            .sunDiskFalloff = readDouble(node, sunDiskFalloff),
            .sunDiskWeight = readDouble(node, sunDiskWeight),
            .sunEnable = readBool(node, sunEnable),
            .zenithColour = readFloat3(node, zenithColour),
            .horizonColour = readFloat3(node, horizonColour),
            .horizonFalloff = readDouble(node, horizonFalloff),
            .horizonOffset = readDouble(node, horizonOffset)};
}

void BasicSkyLocator::render(M3dView& view) {
    if (!isEnabled()) return program_.release();
    ShaderProgram* program = program_.get(shaders);
    if (!program) return;
    const BasicSkyParams p = basicSkyParams(values());
    drawViewQuad(view, thisMObject(), *program, skyQuadStyle, {}, [&](const Vector3& eyePoint) {
        setUniform(*program, "eyePoint", eyePoint);
        setUniform(*program, "sunDir", p.sunDir);
        setUniform(*program, "sunColor", p.sunColour * p.sunIntensity);
        setUniform(*program, "sunDiskSize", p.sunDiskSize);
        setUniform(*program, "sunDiskFalloff", p.sunDiskFalloff);
        setUniform(*program, "sunDiskWeight", p.sunDiskWeight);
        setUniform(*program, "sunEnable", p.sunEnable ? 1.0 : 0.0);
        setUniform(*program, "zenithColour", p.zenithColour);
        setUniform(*program, "horizonColour", p.horizonColour);
        setUniform(*program, "horizonFalloff", p.horizonFalloff);
        setUniform(*program, "horizonOffset", p.horizonOffset);
    });
}

bool BasicSkyLocator::saveToXml(OutputFile& file, const char* indent) {
    const BasicSkyValues v = values();
    const Vector3 sun = normalised(v.sunDir);
    const auto colour = [&](const char* format, const Vector3& c) { file.print(format, indent, c.x, c.y, c.z); };
    file.print("%s<BasicSky\n", indent);
    file.print("%s\tsunDir = \"%f %f %f\"\n", indent, sun.x, sun.y, sun.z);
    colour("%s\tsunColour = \"%f %f %f\"\n", v.sunColour);
    file.print("%s\tsunIntensity  = \"%f\"\n", indent, v.sunIntensity);
    file.print("%s\tsunDiskSize = \"%f\"\n", indent, v.sunDiskSize);
    file.print("%s\tsunDiskFalloff = \"%f\"\n", indent, v.sunDiskFalloff);
    file.print("%s\tsunDiskWeight = \"%f\"\n", indent, v.sunDiskWeight);
    file.print("%s\tsunEnable = \"%d\"\n", indent, v.sunEnable);
    colour("%s\tzenithColour = \"%f %f %f\"\n", v.zenithColour);
    colour("%s\thorizonColour = \"%f %f %f\"\n", v.horizonColour);
    file.print("%s\thorizonFalloff = \"%f\"\n", indent, v.horizonFalloff);
    file.print("%s\thorizonOffset = \"%f\"\n", indent, v.horizonOffset);
    file.print("%s/>\n", indent);
    return true;
}

} // namespace orvo
