#include "ParticleCloudShadingParamsLocator.h"

#include "CloudLibrary.h"
#include "CloudShadingFile.h"
#include "Common/HostText.h"
#include "Common/LocatorAttributes.h"
#include "Common/MayaUtils.h"
#include "Common/Paths.h"
#include "Common/XmlText.h"

#include <maya/MFnNumericAttribute.h>

namespace orvo {
namespace {

/// Three doubles, shown as a colour.
MObject doubleColour(const char* name, const LocatorAttributes::Triple& value,
                     const SourcePlace& where = SourcePlace::current()) {
    const MObject object = LocatorAttributes::vector(name, value, {}, {}, where);
    succeeded(MFnNumericAttribute(object).setUsedAsColor(true), where);
    return object;
}

} // namespace

const MTypeId ParticleCloudShadingParamsLocator::id(0x374025);

MObject ParticleCloudShadingParamsLocator::shadingTexture, ParticleCloudShadingParamsLocator::cloudColour,
    ParticleCloudShadingParamsLocator::shadingOpacity, ParticleCloudShadingParamsLocator::shadingBrightness,
    ParticleCloudShadingParamsLocator::sunShadowAmount, ParticleCloudShadingParamsLocator::groundShadowAmount,
    ParticleCloudShadingParamsLocator::spriteShadowAmount, ParticleCloudShadingParamsLocator::enableSelfShadow,
    ParticleCloudShadingParamsLocator::selfShadowAmount, ParticleCloudShadingParamsLocator::selfShadowFalloff,
    ParticleCloudShadingParamsLocator::lightingAmbient, ParticleCloudShadingParamsLocator::lightingSunGlowAmount,
    ParticleCloudShadingParamsLocator::lightingSunGlowHaloSize, ParticleCloudShadingParamsLocator::lightingRimGlow,
    ParticleCloudShadingParamsLocator::sunDir, ParticleCloudShadingParamsLocator::sunColour,
    ParticleCloudShadingParamsLocator::sunIntensity;

MStatus ParticleCloudShadingParamsLocator::initialize() {
    return guarded("ParticleCloudShadingParamsLocator::initialize", MStatus(MStatus::kFailure), [] {
        using A = LocatorAttributes;
        const AttributeLimits unit{.min = 0.0, .max = 1.0};
        const AttributeLimits upTo10{.min = 0.0, .max = 10.0, .softMin = 0.0, .softMax = 2.0};
        shadingTexture = A::filePath("shadingTexture");
        cloudColour = doubleColour("cloudColour", {1, 1, 1});
        shadingOpacity = A::real("shadingOpacity", 1.0, unit);
        shadingBrightness = A::real("shadingBrightness", 1.1, upTo10);
        sunShadowAmount = A::real("sunShadowAmount", 0.0, unit);
        groundShadowAmount = A::real("groundShadowAmount", 0.44, unit);
        spriteShadowAmount = A::real("spriteShadowAmount", 0.25, unit);
        enableSelfShadow = A::boolean("enableSelfShadow", true);
        selfShadowAmount = A::real("selfShadowAmount", 0.45, unit);
        selfShadowFalloff = A::real("selfShadowFalloff", 0.5, {.min = 0.0, .softMax = 2.0});
        lightingAmbient = doubleColour("lightingAmbient", {0.1, 0.1, 0.2});
        lightingSunGlowAmount = A::real("lightingSunGlowAmount", 0.3, upTo10);
        lightingSunGlowHaloSize = A::real("lightingSunGlowHaloSize", 20.0, {.min = 0.0, .max = 100.0});
        lightingRimGlow = A::real("lightingRimGlow", 1.2, {.min = 0.0, .softMax = 4.0});
        sunDir = A::vector("sunDir", {1, 1, 1}, {.min = -1.0, .max = 1.0});
        sunColour = doubleColour("sunColour", {1.0, 0.95, 0.763});
        sunIntensity = A::real("sunIntensity", 1.0, {.min = 0.0, .max = 5.0});
        return MStatus(MStatus::kSuccess);
    });
}

ParticleCloudShadingParamsLocator* ParticleCloudShadingParamsLocator::firstLiveInstance() {
    return InstanceList<ParticleCloudShadingParamsLocator>::shared().firstLive();
}

CloudShadingParams ParticleCloudShadingParamsLocator::storedParams() const {
    const MObject node = thisMObject();
    CloudShadingParams params;
    params.shadingTexture = readString(node, shadingTexture).asUTF8();
    params.cloudColour = readDouble3(node, cloudColour);
    params.shadingOpacity = readDouble(node, shadingOpacity);
    params.shadingBrightness = readDouble(node, shadingBrightness);
    params.sunShadowAmount = readDouble(node, sunShadowAmount);
    params.groundShadowAmount = readDouble(node, groundShadowAmount);
    params.spriteShadowAmount = readDouble(node, spriteShadowAmount);
    params.enableSelfShadow = readBool(node, enableSelfShadow);
    params.selfShadowAmount = readDouble(node, selfShadowAmount);
    params.selfShadowFalloff = readDouble(node, selfShadowFalloff);
    params.lightingAmbient = readDouble3(node, lightingAmbient);
    params.lightingSunGlowAmount = readDouble(node, lightingSunGlowAmount);
    params.lightingSunGlowHaloSize = readDouble(node, lightingSunGlowHaloSize);
    const Vector3 direction = readDouble3(node, sunDir);
    params.sunDir = length(direction) > 0.0 ? normalised(direction) : Vector3{0, 1, 0};
    params.sunColour = readDouble3(node, sunColour) * readDouble(node, sunIntensity);
    return params;
}

CloudShadingParams ParticleCloudShadingParamsLocator::fileParams() const {
    CloudShadingParams params = storedParams();
    params.shadingTexture = storedForm(params.shadingTexture);
    return params;
}

CloudShadingParams ParticleCloudShadingParamsLocator::readParams() {
    CloudShadingParams params = storedParams();
    std::string path = collapsePath(storedForm(params.shadingTexture));
    // Only a change is written: a draw that changed the scene would be followed by another draw.
    if (path != params.shadingTexture && isFreeToChange(thisMObject(), shadingTexture))
        writeString(thisMObject(), shadingTexture, hostText(path));
    params.shadingTexture = std::move(path);
    return params;
}

bool ParticleCloudShadingParamsLocator::saveToXml(OutputFile& file, const char* indent) {
    const MObject node = thisMObject();
    const std::string stored = readString(node, shadingTexture).asUTF8();
    std::string texture = stored;
    if (!stripBuildFolder(texture)) {
        reportError("ParticleCloudShadingParams - Shading Texture: Bad filepath - must exist and be in the build "
                    "folder. [%s]",
                    stored);
        return false;
    }
    const Vector3 direction = readDouble3(node, sunDir), sun = readDouble3(node, sunColour);
    const Vector3 colour = readDouble3(node, cloudColour), ambient = readDouble3(node, lightingAmbient);
    file.print("%s<ParticleCloudShadingParams\n", indent);
    file.print("%s\tsunDir = \"%f %f %f\"\n", indent, direction.x, direction.y, direction.z);
    file.print("%s\tsunColour = \"%f %f %f\"\n", indent, sun.x, sun.y, sun.z);
    file.print("%s\tsunIntensity  = \"%f\"\n", indent, readDouble(node, sunIntensity));
    file.print("%s\tcloudColour = \"%f %f %f\"\n", indent, colour.x, colour.y, colour.z);
    file.print("%s\tshadingBrightness  = \"%f\"\n", indent, readDouble(node, shadingBrightness));
    file.print("%s\tspriteTexture = \"%s\"\n", indent, xmlEscaped(texture));
    file.print("%s\tlightingAmbient = \"%f %f %f\"\n", indent, ambient.x, ambient.y, ambient.z);
    file.print("%s\tlightingSunGlowAmount  = \"%f\"\n", indent, readDouble(node, lightingSunGlowAmount));
    file.print("%s\tlightingSunGlowHaloSize  = \"%f\"\n", indent, readDouble(node, lightingSunGlowHaloSize));
    file.print("%s\tlightingRimGlowAmount  = \"%f\"\n", indent, readDouble(node, lightingRimGlow));
    file.print("%s/>\n", indent);
    return true;
}

void ParticleCloudShadingParamsLocator::writeParamsElement(OutputFile& file, const char* indent) {
    writeCloudShadingElement(file, indent, fileParams());
}

bool ParticleCloudShadingParamsLocator::saveParamsFile(const std::string& path) {
    return saveCloudShadingFile(path, fileParams());
}

bool ParticleCloudShadingParamsLocator::loadParamsFile(const std::string& path, std::string* error) {
    XmlFile file;
    file.load(path);
    auto params = readCloudShadingFile(file);
    if (error) *error = file.error();
    if (!params) return false;
    reportHeldValues(file);

    const MObject node = thisMObject();
    params->shadingTexture = storedForm(params->shadingTexture);
    // Asked of all before one is set: a half-loaded node would be neither the old one nor the new one.
    for (const MObject& attribute :
         {shadingTexture, shadingOpacity, shadingBrightness, sunShadowAmount, groundShadowAmount, spriteShadowAmount,
          enableSelfShadow, selfShadowAmount, selfShadowFalloff, lightingAmbient, lightingSunGlowAmount,
          lightingSunGlowHaloSize, cloudColour}) {
        const MPlug plug(node, attribute);
        if (plug.isFreeToChange() == MPlug::kFreeToChange) continue;
        if (error) *error = std::string(plug.name().asUTF8()) + " is locked or connected";
        return false;
    }
    bool ok = true;
    const auto set = [&](const MObject& attribute, auto value, const SourcePlace& where = SourcePlace::current()) {
        ok = succeeded(MPlug(node, attribute).setValue(value), where) && ok;
    };
    set(shadingOpacity, params->shadingOpacity);
    set(shadingBrightness, params->shadingBrightness);
    set(sunShadowAmount, params->sunShadowAmount);
    set(groundShadowAmount, params->groundShadowAmount);
    set(spriteShadowAmount, params->spriteShadowAmount);
    set(shadingTexture, hostText(params->shadingTexture));
    set(enableSelfShadow, params->enableSelfShadow);
    set(selfShadowAmount, params->selfShadowAmount);
    set(selfShadowFalloff, params->selfShadowFalloff);
    ok = !writeDouble3(node, lightingAmbient, params->lightingAmbient).error() && ok;
    set(lightingSunGlowAmount, params->lightingSunGlowAmount);
    set(lightingSunGlowHaloSize, params->lightingSunGlowHaloSize);
    ok = !writeDouble3(node, cloudColour, params->cloudColour).error() && ok;
    if (!ok && error) *error = path + ": read, but the node does not take all of its values";
    return ok;
}

} // namespace orvo
