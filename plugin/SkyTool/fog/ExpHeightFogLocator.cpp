#include "ExpHeightFogLocator.h"

#include "Common/LocatorAttributes.h"
#include "Common/MayaUtils.h"
#include "SkyTool/skies/ViewQuad.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace orvo {
namespace {

const char* const fragmentShader = R"(#define float2 vec2
#define float3 vec3
#define float4 vec4
#define lerp(x,y,z) mix((x),(y),clamp((z),0.0,1.0))
#define tex2D(x,y) texture2D((x), (y))
#define saturate(x) clamp((x), 0.0, 1.0)

varying vec3 worldPos;

uniform float3 eyePoint;
uniform float fogDensity;
uniform float fogValue;
uniform float3 fogColour;
uniform float fogAlpha;

void main()
{
    float3 viewDir = normalize(worldPos - eyePoint);
    float extinction = (1.0 - exp(-fogDensity * (fogValue / saturate(viewDir.y)))) * fogAlpha;
    gl_FragColor = float4(extinction * fogColour, extinction);
}
)";

const SkyShaderTexts shaders{"ExpHeightFogLocator", viewQuadVertexShader, fragmentShader};

} // namespace

double expHeightFogValue(double fogHeight, double fogHeightOffset, double eyeY) {
    const double height = fogHeight * 100.0;
    return height * std::exp(-(1.0 / height) * (eyeY - fogHeightOffset * 100.0));
}

const MTypeId ExpHeightFogLocator::id(0x374019);

MObject ExpHeightFogLocator::Enable, ExpHeightFogLocator::getColourFromSceneFog, ExpHeightFogLocator::fogHeight,
    ExpHeightFogLocator::fogHeightOffset, ExpHeightFogLocator::fogDensity, ExpHeightFogLocator::fogColour,
    ExpHeightFogLocator::fogAlpha;

std::optional<Vector3> (*ExpHeightFogLocator::sceneFogColour)() = nullptr;

MStatus ExpHeightFogLocator::initialize() {
    return guarded("ExpHeightFogLocator::initialize", MStatus(MStatus::kFailure), [] {
        using A = LocatorAttributes;
        Enable = A::boolean("Enable", true);
        getColourFromSceneFog = A::boolean("getColourFromSceneFog", false);
        fogHeight = A::real("fogHeight", 40.0, {.min = 1.0, .softMax = 200.0});
        fogHeightOffset = A::real("fogHeightOffset", 0.0, {.softMin = -200.0, .softMax = 200.0});
        fogDensity = A::real("fogDensity", 5.0, {.min = 0.0001, .softMax = 20.0});
        fogColour = A::colour("fogColour", {1, 1, 1});
        fogAlpha = A::real("fogAlpha", 1.0, {.min = 0.0, .max = 1.0});
        return MStatus(MStatus::kSuccess);
    });
}

ExpHeightFogLocator* ExpHeightFogLocator::firstLiveInstance() {
    return InstanceList<ExpHeightFogLocator>::shared().firstLive();
}

void ExpHeightFogLocator::draw(M3dView&, const MDagPath&, M3dView::DisplayStyle, M3dView::DisplayStatus) {
    guarded("ExpHeightFogLocator::draw", [&] {
        if (!isEnabled()) return release();
        bringUpToDate();
    });
}

void ExpHeightFogLocator::bringUpToDate() {
    const MObject node = thisMObject();
    if (!isEnabled() || !sceneFogColour || !readBool(node, getColourFromSceneFog)) return;
    const auto colour = sceneFogColour();
    // Only a change is written: a draw that changed the scene would be followed by another draw. A failed write is
    // reported by the writer; the colour then stays as it is.
    if (colour && *colour != readFloat3(node, fogColour) && isFreeToChange(node, fogColour))
        (void)writeFloat3(node, fogColour, *colour);
}

void ExpHeightFogLocator::render(M3dView& view) {
    if (!isEnabled()) return program_.release();
    ShaderProgram* program = program_.get(shaders);
    if (!program) return;
    const MObject node = thisMObject();
    drawViewQuad(view, node, *program, fogQuadStyle, {}, [&](const Vector3& eyePoint) {
        setUniform(*program, "eyePoint", eyePoint);
        setUniform(*program, "fogDensity", readDouble(node, fogDensity) / 100000.0);
        // Far above the fog the value is too small for single precision, and 0 divided by 0 is no fog's depth: a ray
        // that does not rise leads through fog without end, however thin.
        const double value =
            expHeightFogValue(readDouble(node, fogHeight), readDouble(node, fogHeightOffset), eyePoint.y);
        setUniform(*program, "fogValue", std::max(value, double(std::numeric_limits<float>::min())));
        setUniform(*program, "fogColour", readFloat3(node, fogColour));
        setUniform(*program, "fogAlpha", readDouble(node, fogAlpha));
    });
}

bool ExpHeightFogLocator::saveToXml(OutputFile& file, const char* indent) {
    const MObject node = thisMObject();
    const Vector3 colour = readFloat3(node, fogColour);
    file.print("%s<ExpHeightFog\n", indent);
    file.print("%s\tfogDensity = \"%f\"\n", indent, readDouble(node, fogDensity));
    file.print("%s\tfogHeight = \"%f\"\n", indent, readDouble(node, fogHeight));
    file.print("%s\tfogHeightOffset = \"%f\"\n", indent, readDouble(node, fogHeightOffset));
    file.print("%s\tfogColour = \"%f %f %f\"\n", indent, colour.x, colour.y, colour.z);
    file.print("%s\tfogAlpha = \"%f\"\n", indent, readDouble(node, fogAlpha));
    file.print("%s/>\n", indent);
    return true;
}

} // namespace orvo
