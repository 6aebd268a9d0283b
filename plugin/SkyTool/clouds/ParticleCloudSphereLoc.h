#pragma once

#include "SkyTool/SkyLocator.h"

#include <maya/MBoundingBox.h>
#include <maya/MTypeId.h>

namespace orvo {

/// A shape of a particle cloud: a unit sphere that the artist groups with the cloud, and moves, turns and scales to an
/// ellipsoid. The viewport shows it as wires in the colour that the host gives it.
class ParticleCloudSphereLoc : public SkyLocator<ParticleCloudSphereLoc> {
public:
    static constexpr char nodeName[] = "ParticleCloudSphereLoc", shapeName[] = "ParticleCloudSphere#";
    static const MTypeId id;
    /// Of the sprites made in the shape, doubles from 0 to 1: their opacity, and how many there are in comparison.
    static MObject opacity, density;

    static MStatus initialize();

    void draw(M3dView& view, const MDagPath& path, M3dView::DisplayStyle style, M3dView::DisplayStatus status) override;
    bool isBounded() const override { return true; }
    /// Of the unit sphere.
    MBoundingBox boundingBox() const override;

private:
};

} // namespace orvo
