#pragma once

#include "Common/InstanceList.h"
#include "Common/OutputFile.h"
#include "SkyTool/SkyProgram.h"
#include "SkyTool/clouds/MeshPreview.h"
#include "SkyTool/export/ExportNode.h"

#include <maya/MPxLocatorNode.h>
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
class SceneFogLocator : public MPxLocatorNode, public ExportNode {
public:
    static const MTypeId id;
    static MStatus initialize();
    /// The live instance that a node's name or full path name stands for; null when there is none.
    static SceneFogLocator* findInstance(const MString& name);
    /// The colour of the first live scene fog node, nothing when there is none.
    static std::optional<Vector3> firstLiveColour();

    void postConstructor() override;
    /// The host's draw shows nothing; it frees the program and meshes of a node that is switched off.
    void draw(M3dView& view, const MDagPath& path, M3dView::DisplayStyle style, M3dView::DisplayStatus status) override;
    bool isBounded() const override { return false; }
    bool isEnabled() override;

    /// Lets the colour follow the height fog's where the artist wants that. Every render does so first; it needs no GL.
    void bringUpToDate();
    /// The viewport preview, called by the sky renderer between the view's beginGL and endGL. The meshes are gathered
    /// once, and again after a node was off.
    void render(M3dView& view);
    /// Writes the SceneFog element. Always true.
    bool saveToXml(OutputFile& file, const char* indent);

private:
    void release();

    static MObject Enable, getColourFromExpHeightFog, fogStart, fogEnd, fogAlpha, fogColour, previewGeomColour, sunDir;

    SkyProgram program_;
    std::optional<std::vector<MeshArrays>> meshes_; ///< nothing before they were gathered
    InstanceEntry<SceneFogLocator> entry_{*this};
};

} // namespace orvo
