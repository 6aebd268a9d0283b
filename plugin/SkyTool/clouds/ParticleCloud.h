#pragma once

#include "CloudSpriteRenderer.h"
#include "CloudVertexData.h"
#include "Common/OutputFile.h"
#include "SkyTool/SkyLocator.h"

#include <maya/MTypeId.h>
#include <memory>
#include <optional>
#include <vector>

namespace orvo {

/// A cloud of sprites in the shape of the ellipsoids that are grouped with it. Commands refresh it, and a draw does so
/// by itself once the first refresh has run. Drawn by the sky renderer; exported as a ParticleCloud element with its
/// sprites in the cloud data; saved as an element of a cloud library.
///
/// The shapes, and so the sprites, stand in world space, wherever the cloud's own transform is.
class ParticleCloud : public SwitchedSkyLocator<ParticleCloud> {
public:
    static constexpr char nodeName[] = "ParticleCloud", shapeName[] = "ParticleCloudShape#";
    static const MTypeId id;

    static MStatus initialize();

    bool isBounded() const override { return true; }
    /// Around the sprites, in the node's space; the unit box while there are none.
    MBoundingBox boundingBox() const override;

    /// Generates the sprites anew when they do not follow from the scene as it is now, or never did. Needs no GL.
    void bringUpToDate();
    /// Gathers the shapes and generates the sprites anew, with the first live shading parameters; without such a node
    /// nothing happens. A failed gathering is reported and leaves the sprites as they are.
    void refresh();
    /// Gathers the shapes that are grouped with the cloud; null after a failure, which is reported.
    std::unique_ptr<CloudShapeSet> GenerateSpriteData();
    /// The sprites at present.
    int numSprites() const { return geom_ ? geom_->numSprites : 0; }
    CloudSettings settings() const;
    /// Lets the sprite texture be loaded again at the next draw.
    void reloadTexture() { renderer_.reloadTexture(); }

    /// The viewport preview, called by the sky renderer with the node's matrix applied.
    void render(M3dView& view);
    /// Writes the ParticleCloud element and appends the sprites' data; nothing for a cloud without sprites.
    bool saveToXml(OutputFile& file, const char* indent, std::vector<unsigned char>& cloudVertices);

private:
    friend SwitchedSkyLocator<ParticleCloud>;
    void release() {
        renderer_.release();
        sprites_ = {};
    }
    /// One grouped ellipsoid as the scene holds it.
    struct ShapeInput {
        Matrix44 world;
        double opacity, density;
        bool operator==(const ShapeInput&) const = default;
    };
    /// All that the sprites follow from.
    struct GenerationInputs {
        double density, size;
        bool groundFade;
        double groundFadeEnd;
        bool shadow;
        Vector3 lightDirection;
        std::vector<ShapeInput> shapes;
        std::string name;
        bool operator==(const GenerationInputs&) const = default;
    };

    /// The grouped shapes; nothing when they cannot be had. Reports failures unless `quiet`.
    std::optional<std::vector<ShapeInput>> gatherShapes(bool quiet) const;
    GenerationInputs inputsOf(const CloudShadingParams& shading) const;
    void generate(const CloudShadingParams& shading);

    static MObject enable, renderWireFrame, renderDepthTest, autoUpdate, particleDensity, particleSize,
        groundShadowOffset, enableGroundFade, groundFadeEnd, domeYOffset;

    std::unique_ptr<CloudShapeSet> shapes_;
    std::unique_ptr<ParticleCloudGeom> geom_;
    std::optional<GenerationInputs> lastInputs_; ///< of the last refresh; nothing before the first
    bool failed_ = false;                        ///< whether the last refresh could not gather the shapes
    CloudSpriteRenderer renderer_;
    CloudSprites sprites_; ///< of the geometry
};

} // namespace orvo
