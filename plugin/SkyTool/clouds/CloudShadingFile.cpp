#include "CloudShadingFile.h"

#include "CloudLibrary.h"
#include "Common/XmlText.h"

namespace orvo {
namespace {

constexpr const char* element = "ParticleCloudShadingParams";
constexpr XmlRange unit{0.0, 1.0};

} // namespace

void writeCloudShadingElement(OutputFile& file, const char* indent, const CloudShadingParams& params) {
    const Vector3 &colour = params.cloudColour, &ambient = params.lightingAmbient;
    file.print("%s<%s\n", indent, element);
    file.print("%s\tshading_tex_filepath = \"%s\"\n", indent, xmlEscaped(params.shadingTexture));
    file.print("%s\tcloudColour = \"%f %f %f\"\n", indent, colour.x, colour.y, colour.z);
    file.print("%s\tshadingOpacity = \"%f\"\n", indent, params.shadingOpacity);
    file.print("%s\tshadingBrightness = \"%f\"\n", indent, params.shadingBrightness);
    file.print("%s\tsunShadowAmount = \"%f\"\n", indent, params.sunShadowAmount);
    file.print("%s\tgroundShadowAmount = \"%f\"\n", indent, params.groundShadowAmount);
    file.print("%s\tspriteShadowAmount = \"%f\"\n", indent, params.spriteShadowAmount);
    file.print("%s\tenableSelfShadow = \"%d\"\n", indent, params.enableSelfShadow);
    file.print("%s\tselfShadowAmount = \"%f\"\n", indent, params.selfShadowAmount);
    file.print("%s\tselfShadowFalloff = \"%f\"\n", indent, params.selfShadowFalloff);
    file.print("%s\tlightingAmbient = \"%f %f %f\"\n", indent, ambient.x, ambient.y, ambient.z);
    file.print("%s\tlightingSunGlowAmount = \"%f\"\n", indent, params.lightingSunGlowAmount);
    file.print("%s\tlightingSunGlowHaloSize = \"%f\"\n", indent, params.lightingSunGlowHaloSize);
    file.print("%s/>\n", indent);
}

bool saveCloudShadingFile(const std::string& path, const CloudShadingParams& params) {
    OutputFile file(path, "wt", OutputFile::Earlier::Replaced);
    if (!file.isOpen()) return false;
    file.print("<?xml version=\"1.0\" encoding=\"utf-8\"?>\n");
    file.print("<%s\n", cloudRootElement);
    file.print("\ttype = \"%s\"\n", cloudShadingFileType);
    file.print("\tversion = \"%d\"\n", cloudShadingFileVersion);
    file.print("\t>\n");
    writeCloudShadingElement(file, "\t", params);
    file.print("</%s>\n", cloudRootElement);
    return file.close();
}

std::optional<CloudShadingParams> readCloudShadingFile(XmlFile& file) {
    const TiXmlElement* e = file.child(file.root(cloudRootElement, {{cloudShadingFileType, cloudShadingFileVersion},
                                                                    {cloudLibraryType, cloudFileVersion}}),
                                       element);
    // The limits are those of the node's attributes: the host would not open a scene with values beyond them.
    CloudShadingParams params;
    params.shadingTexture = file.text(e, "shading_tex_filepath");
    params.shadingOpacity = file.real(e, "shadingOpacity", unit);
    params.shadingBrightness = file.real(e, "shadingBrightness", {0.0, 10.0});
    params.sunShadowAmount = file.real(e, "sunShadowAmount", unit);
    params.groundShadowAmount = file.real(e, "groundShadowAmount", unit);
    params.spriteShadowAmount = file.real(e, "spriteShadowAmount", unit);
    params.enableSelfShadow = file.flag(e, "enableSelfShadow");
    params.selfShadowAmount = file.real(e, "selfShadowAmount", unit);
    params.selfShadowFalloff = file.real(e, "selfShadowFalloff", {.min = 0.0});
    params.lightingAmbient = file.triple(e, "lightingAmbient");
    params.lightingSunGlowAmount = file.real(e, "lightingSunGlowAmount", {0.0, 10.0});
    params.lightingSunGlowHaloSize = file.real(e, "lightingSunGlowHaloSize", {0.0, 100.0});
    params.cloudColour = file.triple(e, "cloudColour");
    if (!file.ok()) return std::nullopt;
    return params;
}

} // namespace orvo
