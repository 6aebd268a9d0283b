#include "ProceduralSkyLocator.h"

#include "BasicSkyParams.h"
#include "Common/LocatorAttributes.h"
#include "Common/MayaUtils.h"
#include "SkyTool/CameraSpace.h"
#include "ViewQuad.h"

#include <maya/MDataBlock.h>
#include <maya/MDataHandle.h>
#include <maya/MFnCompoundAttribute.h>
#include <maya/MFnNumericAttribute.h>
#include <maya/MFnNumericData.h>
#include <utility>

namespace orvo {
namespace {

constexpr int instantUpdate = 1; ///< of UpdateMode

const char* const fragmentShader = R"(#define float2 vec2
#define float3 vec3
#define float4 vec4
#define lerp(x,y,z) mix((x),(y),clamp((z),0.0,1.0))
#define tex2D(x,y) texture2D((x), (y))
#define saturate(x) clamp((x), 0.0, 1.0)
#define PI 3.14159265358979323

varying vec4 HWworldPos;
varying vec3 worldPos;

uniform sampler2D blueSkyInScatterTexture;
uniform sampler2D hazeInScatterTexture;
uniform sampler2D extinctionTexture;
uniform float3 eyePoint;
uniform float3 sunLightColour;
uniform float3 sunLightDir;
uniform float sunDiscSize;
uniform float sunDiscFalloff;
uniform float sunDiscAlpha;
uniform float hazeHaloBrightness;
uniform float yclip;
uniform float planetRadius;

void main()
{
    float3 viewDir = normalize(worldPos - eyePoint);
    float t = viewDir.y*0.5 + 0.5;
    if (viewDir.y <= yclip)
    {
        gl_FragColor = float4(0.0, 0.0, 0.0, 1.0);
    }
    else
    {
        float3 blueSky = tex2D(blueSkyInScatterTexture, float2(t, 0.5)).rgb;
        float3 haze = tex2D(hazeInScatterTexture, float2(t, 0.5)).rgb;
        float3 extinction = tex2D(extinctionTexture, float2(t, 0.5)).rgb;

        float costheta = dot(viewDir, sunLightDir);
        float f = saturate(costheta + sunDiscSize);
        f = 1.0 - sqrt(1.0 - f*f);
        float halo = pow(f, sunDiscFalloff);
        float3 colour = sunLightColour*halo*sunDiscAlpha;

        float3 sunExt = tex2D(extinctionTexture, float2(sunLightDir.y*0.5 + 0.5, 0.5)).rgb;
        colour = colour*extinction + blueSky*sunLightColour*sunExt
            + haze*sunLightColour*sunExt*(1.0 + f*f*hazeHaloBrightness);

        float exposure = 0.5;
        colour = 1.0 - colour*exposure;
        colour = 1.0 - colour*colour;
        gl_FragColor = float4(colour, 1.0);
    }
}
)";

const SkyShaderTexts shaders{"ProceduralSkyLocator", viewQuadVertexShader, fragmentShader};

/// Tests a step of making an output attribute; a failure is told with the step's own text.
void check(const MStatus& status, const char* step, const char* name,
           const SourcePlace& where = SourcePlace::current()) {
    if (status.error()) reportFailure(status, std::string("failed ") + step + " " + name + " attribute", where);
}

template <class Function>
void makeOutput(Function& attribute) {
    succeeded(attribute.setStorable(false));
    succeeded(attribute.setWritable(false));
    succeeded(attribute.setKeyable(false));
}

bool upload(TextureHandle& handle, const std::vector<ScatteringTables::Texel>& table) {
    return uploadTexture2DFloatRgb(handle, static_cast<int>(table.size()), 1, table.front().data(), TextureSampling());
}

void bindTable(GLenum unit, const TextureHandle& table) {
    gl().activeTexture(unit);
    glBindTexture(GL_TEXTURE_2D, table.name());
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
}

} // namespace

const MTypeId ProceduralSkyLocator::id(0x374009);

MObject ProceduralSkyLocator::Enable, ProceduralSkyLocator::UpdateMode, ProceduralSkyLocator::Quality,
    ProceduralSkyLocator::RenderGround, ProceduralSkyLocator::sunLightDir, ProceduralSkyLocator::sunLightIntensity,
    ProceduralSkyLocator::sunDiscSize, ProceduralSkyLocator::sunDiscFalloff, ProceduralSkyLocator::sunDiscAlpha,
    ProceduralSkyLocator::dummyInputTrigger, ProceduralSkyLocator::rval, ProceduralSkyLocator::gval,
    ProceduralSkyLocator::bval, ProceduralSkyLocator::outColor, ProceduralSkyLocator::cameraHeight,
    ProceduralSkyLocator::hazeHeight, ProceduralSkyLocator::hazeBrightness, ProceduralSkyLocator::hazeDecay,
    ProceduralSkyLocator::hazeHaloBrightness, ProceduralSkyLocator::blueSkyHeight,
    ProceduralSkyLocator::blueSkyBrightness, ProceduralSkyLocator::redDecayHeight, ProceduralSkyLocator::redDecay,
    ProceduralSkyLocator::redDecayFalloff;

MStatus ProceduralSkyLocator::initialize() {
    return guarded("ProceduralSkyLocator::initialize", MStatus(MStatus::kFailure), [] {
        using A = LocatorAttributes;
        Enable = A::boolean("Enable", true);
        UpdateMode = A::enumeration("UpdateMode", instantUpdate, {{"Manual", 0}, {"Instant", instantUpdate}});
        Quality = A::enumeration("Quality", 0, {{"Low", 0}, {"High", 1}});
        RenderGround = A::boolean("RenderGround", true);
        sunLightDir = A::vector("sunLightDir", {1, 1, 1}, {.min = -1.0, .max = 1.0});
        sunLightIntensity = A::real("sunLightIntensity", 1.0, {.min = 0.0, .max = 5.0});
        sunDiscSize = A::real("sunDiscSize", 0.12, {.min = 0.0, .max = 1.0});
        sunDiscFalloff = A::real("sunDiscFalloff", 32.0, {.min = 0.0, .max = 50.0});
        sunDiscAlpha = A::real("sunDiscAlpha", 1.0, {.min = 0.0, .max = 1.0});
        dummyInputTrigger = A::real("dummyInputTrigger", 0.0);
        createOutputs();
        cameraHeight = A::real("cameraHeight", 30.0, {.min = 1.0, .softMax = 400.0});
        hazeHeight = A::real("hazeHeight", 500.0, {.min = 1.0, .softMin = 1.0, .softMax = 2000.0});
        hazeBrightness = A::real("hazeBrightness", 0.1, {.min = 0.0, .softMax = 1.0});
        hazeDecay = A::real("hazeDecay", 0.1, {.min = 0.0, .softMax = 1.0});
        hazeHaloBrightness = A::real("hazeHaloBrightness", 1.0, {.min = 0.0, .softMax = 10.0});
        blueSkyHeight = A::real("blueSkyHeight", 500.0, {.min = 1.0, .softMin = 1.0, .softMax = 2000.0});
        blueSkyBrightness = A::real("blueSkyBrightness", 0.1, {.min = 0.0, .softMax = 1.0});
        redDecayHeight = A::real("redDecayHeight", 200.0, {.min = 1.0, .softMin = 1.0, .softMax = 2000.0});
        redDecay = A::real("redDecay", 0.1, {.min = 0.0, .softMax = 1.0});
        redDecayFalloff = A::real("redDecayFalloff", 0.4491496604814464, {.min = 0.0, .softMax = 1.0});
        for (const MObject& output : {rval, gval, bval}) succeeded(attributeAffects(dummyInputTrigger, output));
        return MStatus(MStatus::kSuccess);
    });
}

void ProceduralSkyLocator::createOutputs() {
    for (const auto& [object, name] : {std::pair{&rval, "rval"}, {&gval, "gval"}, {&bval, "bval"}}) {
        MStatus status;
        MFnNumericAttribute attribute;
        *object = attribute.create(name, name, MFnNumericData::kDouble, 0.0, &status);
        check(status, "initialize create", name);
        makeOutput(attribute);
    }
    MStatus status;
    MFnCompoundAttribute colour;
    outColor = colour.create("outColor", "outColor", &status);
    check(status, "initialize create", "outColor");
    // The parts come to the node with the compound.
    for (const auto& [object, name] : {std::pair{&rval, "rval"}, {&gval, "gval"}, {&bval, "bval"}})
        check(colour.addChild(*object), "addAttribute()", name);
    makeOutput(colour);
    succeeded(colour.setReadable(true));
    check(addAttribute(outColor), "addAttribute()", "outColor");
}

MStatus ProceduralSkyLocator::compute(const MPlug& plug, MDataBlock& block) {
    return guarded("ProceduralSkyLocator::compute", MStatus(MStatus::kFailure), [&]() -> MStatus {
        if (plug != rval && plug != gval && plug != bval) return MStatus::kUnknownParameter;
        if (!tables_) return block.setClean(plug);
        const MObject node = thisMObject();
        const double intensity = readDouble(node, sunLightIntensity);
        const ScatteringTables::Texel& left =
            sunExtinction(tables_->values.extinction, scatteringTexels(readInt(node, Quality)),
                          normalised(readDouble3(node, sunLightDir)).y);
        const MObject outputs[3] = {rval, gval, bval};
        for (std::size_t i = 0; i < 3; ++i) {
            MStatus status;
            MDataHandle output = block.outputValue(outputs[i], &status);
            if (!succeeded(status)) return status;
            output.set(intensity * static_cast<double>(left[i]));
            output.setClean();
        }
        return MStatus::kSuccess;
    });
}

ProceduralSkyParams ProceduralSkyLocator::params() const {
    const MObject node = thisMObject();
    const auto density = [&](const MObject& slider) {
        return sliderValue(readDouble(node, slider), densitySliderScale);
    };
    return {.quality = readInt(node, Quality),
            .renderGround = readBool(node, RenderGround),
            .cameraHeight = readDouble(node, cameraHeight),
            .hazeHeight = readDouble(node, hazeHeight),
            .hazeDecay = density(hazeDecay),
            .hazeBrightness = density(hazeBrightness),
            .blueSkyHeight = readDouble(node, blueSkyHeight),
            .blueSkyBrightness = density(blueSkyBrightness),
            .redDecayHeight = readDouble(node, redDecayHeight),
            .redDecay = density(redDecay),
            .redDecayFalloff = sliderValue(readDouble(node, redDecayFalloff), falloffSliderScale)};
}

void ProceduralSkyLocator::bringUpToDate() {
    const MObject node = thisMObject();
    if (!readBool(node, Enable)) {
        tables_.reset();
        refused_.reset();
        return;
    }
    const ProceduralSkyParams wanted = params();
    const bool isInstant = readInt(node, UpdateMode) == instantUpdate;
    if (tables_ && (!isInstant || tables_->params == wanted)) return;
    tables_.reset();
    texturesAreCurrent_ = false;
    if (refused_ == wanted) return;
    std::optional<ScatteringTables> computed = scatteringTables(wanted);
    if (!computed) {
        reportError("ProceduralSkyLocator:  %s has heights too large to be integrated in steps of %g m, or parameters "
                    "that are no numbers. Nothing is drawn.",
                    name().asUTF8(), atmosphereModel(wanted).stepLength);
        refused_ = wanted;
        return;
    }
    refused_.reset();
    tables_.emplace(Tables{wanted, std::move(*computed)});
}

void ProceduralSkyLocator::pullTrigger() {
    MPlug trigger(thisMObject(), dummyInputTrigger);
    if (trigger.isFreeToChange() == MPlug::kFreeToChange) succeeded(trigger.setValue(trigger.asDouble()));
}

bool ProceduralSkyLocator::updateTextures() {
    if (!tables_) return false;
    if (texturesAreCurrent_) return true;
    const ScatteringTables& tables = tables_->values;
    texturesAreCurrent_ = upload(textures_.blueSky, tables.blueSky) && upload(textures_.haze, tables.haze) &&
                          upload(textures_.extinction, tables.extinction);
    return texturesAreCurrent_;
}

void ProceduralSkyLocator::draw(M3dView& view, const MDagPath&, M3dView::DisplayStyle, M3dView::DisplayStatus) {
    guarded("ProceduralSkyLocator::draw", [&] {
        bringUpToDate();
        const GlDrawing drawing(view);
        if (!drawing.begun()) return;
        if (!readBool(thisMObject(), Enable)) {
            // A build that failed is not tried again: only a program is let go.
            if (!program_.buildFailed()) program_.release();
            for (TextureHandle* texture : {&textures_.blueSky, &textures_.haze, &textures_.extinction})
                texture->release();
            texturesAreCurrent_ = false;
            return;
        }
        ShaderProgram* program = program_.get(shaders);
        if (program && updateTextures()) render(view, *program);
    });
}

void ProceduralSkyLocator::render(M3dView& view, ShaderProgram& program) {
    const MObject node = thisMObject();
    const auto setSpaceAndTextures = [&] {
        loadViewMatrix(MayaCamera(view));
        bindTable(GL_TEXTURE2, textures_.extinction);
        bindTable(GL_TEXTURE1, textures_.haze);
        bindTable(GL_TEXTURE0, textures_.blueSky);
    };
    drawViewQuad(view, node, program, skyQuadStyle, setSpaceAndTextures, [&](const Vector3& eyePoint) {
        program.setUniformI("blueSkyInScatterTexture", 0);
        program.setUniformI("hazeInScatterTexture", 1);
        program.setUniformI("extinctionTexture", 2);
        setUniform(program, "eyePoint", eyePoint);
        setUniform(program, "sunLightColour", Vector3{1, 1, 1} * readDouble(node, sunLightIntensity));
        setUniform(program, "sunLightDir", normalised(readDouble3(node, sunLightDir)));
        setUniform(program, "sunDiscSize", sunDiskCosineForm(readDouble(node, sunDiscSize)));
        setUniform(program, "sunDiscFalloff", readDouble(node, sunDiscFalloff));
        setUniform(program, "sunDiscAlpha", readDouble(node, sunDiscAlpha));
        setUniform(program, "hazeHaloBrightness", readDouble(node, hazeHaloBrightness));
        setUniform(program, "yclip", readBool(node, RenderGround) ? 0.0 : -1.0);
    });
}

} // namespace orvo
