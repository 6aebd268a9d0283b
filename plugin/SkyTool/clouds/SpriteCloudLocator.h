#pragma once

#include "Common/OutputFile.h"
#include "MeshPreview.h"
#include "SkyTool/SkyLocator.h"
#include "SkyTool/SkyProgram.h"
#include "SkyTool/SkyTexture.h"

#include <maya/MDagPath.h>
#include <maya/MTypeId.h>
#include <optional>

namespace orvo {

/// Textured cloud layers that the artist models as polygon meshes. The locator stands in a group together with the
/// meshes, which it takes for one; the sky renderer shows them with the sprite texture, and the export writes them as
/// a SpriteCloud element.
class SpriteCloudLocator : public SwitchedSkyLocator<SpriteCloudLocator> {
public:
    static constexpr char nodeName[] = "SpriteCloudLocator", shapeName[] = "orvosky_SpriteCloudLocatorShape#";
    static const MTypeId id;
    static MStatus initialize();

    /// Gathers the group's meshes, anew where the artist wants that, and brings the image's path into its stored form.
    /// Every render does so first; it needs no GL.
    void bringUpToDate();
    /// The viewport preview, called by the sky renderer between the view's beginGL and endGL.
    void render(M3dView& view);
    /// Writes the SpriteCloud element, with the meshes gathered for the preview, or gathered now.
    /// @return false when there is no mesh, or one of the meshes has no UVs; the element then stays open
    bool saveToXml(OutputFile& file, const char* indent);

private:
    friend SwitchedSkyLocator<SpriteCloudLocator>;
    void release();
    /// Gathers the group's meshes, unless some are held. Afterwards the mesh is empty when the group has none, and
    /// missing when there is no group; both are reported.
    void refreshCloudMesh();

    static MObject enable, alwaysUpdateMesh, spriteTexture, RenderMode, tint, brightness, alphaScale, textureMipBias;

    SkyProgram program_;
    SkyTexture texture_;               ///< white for an image that cannot be loaded
    std::optional<TriMesh> mesh_;      ///< world space, centimetres
    std::optional<MeshArrays> arrays_; ///< of the mesh, once drawn
};

} // namespace orvo
