#pragma once

#include "CloudShadingParams.h"
#include "Common/OutputFile.h"
#include "SkyTool/SkyLocator.h"

#include <maya/MTypeId.h>
#include <string>

namespace orvo {

/// One set of shading parameters for all particle clouds of a scene. Particle clouds and the cloud dome read the first
/// live one; the export writes it as a ParticleCloudShadingParams element. Its own XML file carries the parameters from
/// scene to scene. Shows nothing in the viewport.
class ParticleCloudShadingParamsLocator : public SkyLocator<ParticleCloudShadingParamsLocator>, public ExportNode {
public:
    static constexpr char nodeName[] = "ParticleCloudShadingParamsLocator", shapeName[] = "ParticleCloudShadingParams#";
    static const MTypeId id;

    static MStatus initialize();
    /// The first instance whose own name resolves in the scene; null when none does.
    static ParticleCloudShadingParamsLocator* firstLiveInstance();

    void draw(M3dView&, const MDagPath&, M3dView::DisplayStyle, M3dView::DisplayStatus) override {}
    bool isEnabled() override { return true; }

    /// Brings the texture's path into its stored form, as every read of the parameters does.
    void bringUpToDate() { (void)readParams(); }
    /// The parameters. The texture's path is brought into its stored form (project-relative, single separators) and
    /// written back into the attribute first.
    /// A sun direction of no length counts as (0, 1, 0).
    CloudShadingParams readParams();
    /// Writes the element of the ".atmos" file. False, with a message, when the texture is not in the build folder.
    bool saveToXml(OutputFile& file, const char* indent);
    /// Writes the element of parameter and library files.
    void writeParamsElement(OutputFile& file, const char* indent);
    /// Writes a parameters file. False when it cannot be written.
    bool saveParamsFile(const std::string& path);
    /// Takes the parameters of a parameters file or a cloud library. False, and the node unchanged, when the file is
    /// refused; `error`, when given, tells why.
    bool loadParamsFile(const std::string& path, std::string* error = nullptr);

private:
    /// The parameters, with the texture's path as it is stored.
    CloudShadingParams storedParams() const;
    /// The same with the texture's path as files hold it.
    CloudShadingParams fileParams() const;

    static MObject shadingTexture, cloudColour, shadingOpacity, shadingBrightness, sunShadowAmount, groundShadowAmount,
        spriteShadowAmount, enableSelfShadow, selfShadowAmount, selfShadowFalloff, lightingAmbient,
        lightingSunGlowAmount, lightingSunGlowHaloSize, lightingRimGlow, sunDir, sunColour, sunIntensity;
};

} // namespace orvo
