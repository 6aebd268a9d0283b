#pragma once

#include "Common/InstanceList.h"

#include <maya/MPxLocatorNode.h>
#include <maya/MTypeId.h>

namespace orvo {

struct SkyNodeRecord;

/// Draws the whole sky system of the scene in one pass, in the order in which the game layers it: skies, sprite
/// clouds, height fog, particle clouds and domes, scene fog. It finds the nodes under "OrvoSkyData".
class SkyRendererLocator : public MPxLocatorNode {
public:
    static const MTypeId id;
    static MStatus initialize();

    void postConstructor() override;
    void draw(M3dView& view, const MDagPath& path, M3dView::DisplayStyle style, M3dView::DisplayStatus status) override;
    bool isBounded() const override { return false; }
    /// Stays when the artist hides the locators of a view: it is the sky, not an aid.
    bool excludeAsLocator() const override { return false; }

private:
    static MObject Enable;

    InstanceEntry<SkyRendererLocator> entry_{*this};
};

} // namespace orvo
