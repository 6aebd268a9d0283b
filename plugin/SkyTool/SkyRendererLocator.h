#pragma once

#include "SkyTool/SkyLocator.h"

#include <maya/MTypeId.h>

namespace orvo {

struct SkyNodeRecord;

/// Draws the whole sky system of the scene in one pass, in the order in which the game layers it: skies, sprite
/// clouds, height fog, particle clouds and domes, scene fog. It finds the nodes under "OrvoSkyData".
class SkyRendererLocator : public SkyLocator<SkyRendererLocator> {
public:
    static constexpr char nodeName[] = "SkyRendererLocator", shapeName[] = "orvosky_SkyRendererShape#";
    static const MTypeId id;
    static MStatus initialize();

    void draw(M3dView& view, const MDagPath& path, M3dView::DisplayStyle style, M3dView::DisplayStatus status) override;
    /// Stays when the artist hides the locators of a view: it is the sky, not an aid.
    bool excludeAsLocator() const override { return false; }

private:
    static MObject Enable;
};

} // namespace orvo
