#pragma once

#include "CloudDomePlacement.h"
#include "CloudSpriteRenderer.h"
#include "Common/OutputFile.h"
#include "SkyTool/SkyLocator.h"

#include <maya/M3dView.h>
#include <maya/MTypeId.h>
#include <optional>
#include <string>
#include <vector>

class MDagPath;

namespace orvo {

/// A square of sky full of particle clouds: copies of the clouds of a library or a folder, scattered so that they keep
/// clear of one another, bent to a dome, carried along by the wind and faded out towards the rim. What is loaded and
/// generated stays until the node is refreshed or switched off; the first draw after that loads it again.
class ParticleCloudDome : public SwitchedSkyLocator<ParticleCloudDome> {
public:
    static constexpr char nodeName[] = "ParticleCloudDome", shapeName[] = "ParticleCloudDomeShape#";
    static const MTypeId id;

    static MStatus initialize();

    /// Loads the templates again, as nobody watches what the library on disk holds, and generates the clouds anew when
    /// they do not follow from the templates, the layout and the shading as they are now. Needs no GL. A node that is
    /// switched off only forgets them.
    void bringUpToDate();
    /// Loads the templates again and generates the clouds; the earlier ones stay until there are others, and when the
    /// artist gives that up (Esc), which is an error. Without a shading-parameters node in the
    /// scene there are templates only: the clouds come with the first draw that finds one.
    void refresh();
    /// Takes the clouds from a library file or a folder of cloud files, and refreshes.
    void loadFromDisk(const std::string& path);
    const std::vector<DomeCloud>& clouds() const { return clouds_; }

    /// The viewport preview, called by the sky renderer between the view's beginGL and endGL.
    void render(M3dView& view);
    /// Writes the ParticleCloudDome element and those of its generated clouds, and appends their vertex data. False,
    /// with a message, when there is no shading-parameters node or a cloud could not be written.
    bool saveToXml(OutputFile& file, const char* indent, std::vector<unsigned char>& cloudVertices);

private:
    friend SwitchedSkyLocator<ParticleCloudDome>;
    void release() { freeAll(); }
    /// What the clouds were placed and generated for.
    struct BuildInputs {
        DomeLayout layout;
        bool selfShadow = false;
        bool operator==(const BuildInputs&) const = default;
    };

    static MObject Enable, renderWireFrame, renderDepthTest, time, windVelocity, windDir, domeHeight, domeCurvature,
        domeInnerRadius, domeOuterRadius, placementDensity, cloudScale, cloudDataDir;

    DomeParams readParams();
    BuildInputs readBuildInputs(const CloudShadingParams& shading);
    void freeAll();
    void forgetClouds();
    void dropClouds();
    void loadTemplates();
    void loadFolder(const std::string& folder);
    void placeAndGenerate(const CloudShadingParams& shading);
    /// Loads the templates and places the clouds, unless that is done for the inputs as they are.
    void prepareClouds(const CloudShadingParams& shading);
    void drawClouds(const DomeParams& params, M3dView& view, const Matrix44& world);

    std::vector<CloudTemplate> templates_;
    bool templatesLoaded_ = false; ///< also when there were none to be found
    std::vector<DomeCloud> clouds_;
    std::optional<BuildInputs> builtFor_; ///< nothing before the clouds are placed
    Vector3 builtSunDir_;                 ///< towards which the light was marched
    bool complete_ = false;               ///< whether all clouds were generated
    CloudSpriteRenderer renderer_;
    std::vector<CloudSprites> sprites_; ///< of the clouds, in their order; none before they are drawn
};

} // namespace orvo
