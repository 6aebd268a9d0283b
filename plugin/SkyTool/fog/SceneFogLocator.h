#pragma once

#include "Common/OutputFile.h"
#include "SkyTool/SkyLocator.h"
#include "SkyTool/SkyProgram.h"
#include "SkyTool/clouds/MeshPreview.h"

#include <maya/MTypeId.h>
#include <optional>

namespace orvo {

/// Where distance fog begins and ends, and how dense it is in between.
struct SceneFogRange {
    double start, end; ///< metres, in ascending order
    /// Per centimetre, negative: e to the power of density x distance is the part of a colour that fog leaves. 0.003 of
    /// it is left at the end.
    double density;
};

/// The two distances (metres) may come in either order.
SceneFogRange sceneFogRange(double fogStart, double fogEnd);

/// Distance fog, previewed on the scene's own geometry: the meshes of the XeliLocatorNode locators, which another
/// plug-in brings, in a plain sunlit colour that goes over into the fog's. Exported as a SceneFog element.
class SceneFogLocator : public SwitchedSkyLocator<SceneFogLocator> {
public:
    static constexpr char nodeName[] = "SceneFogLocator", shapeName[] = "sceneFogShape#";
    static const MTypeId id;
    static MStatus initialize();
    /// The colour of the first live scene fog node, nothing when there is none.
    static std::optional<Vector3> firstLiveColour();

    /// Lets the colour follow the height fog's where the artist wants that. Every render does so first; it needs no GL.
    void bringUpToDate();
    /// The viewport preview, called by the sky renderer between the view's beginGL and endGL. The meshes are gathered
    /// once, and again after a node was off.
    void render(M3dView& view);
    /// Writes the SceneFog element. Always true.
    bool saveToXml(OutputFile& file, const char* indent);

private:
    friend SwitchedSkyLocator<SceneFogLocator>;
    void release();

    static MObject Enable, getColourFromExpHeightFog, fogStart, fogEnd, fogAlpha, fogColour, previewGeomColour, sunDir;

    SkyProgram program_;
    std::optional<std::vector<MeshArrays>> meshes_; ///< nothing before they were gathered
};

} // namespace orvo
