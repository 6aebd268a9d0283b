#pragma once

#include "Common/InstanceList.h"

#include <maya/MBoundingBox.h>
#include <maya/MPxLocatorNode.h>
#include <maya/MTypeId.h>

namespace orvo {

/// A shape of a particle cloud: a unit sphere that the artist groups with the cloud, and moves, turns and scales to an
/// ellipsoid. The viewport shows it as wires in the colour that the host gives it.
class ParticleCloudSphereLoc : public MPxLocatorNode {
public:
    static const MTypeId id;
    /// Of the sprites made in the shape, doubles from 0 to 1: their opacity, and how many there are in comparison.
    static MObject opacity, density;

    static MStatus initialize();
    /// The live instance that a node's name or full path name stands for; null when there is none.
    static ParticleCloudSphereLoc* findInstance(const MString& name);

    void postConstructor() override;
    void draw(M3dView& view, const MDagPath& path, M3dView::DisplayStyle style, M3dView::DisplayStatus status) override;
    bool isBounded() const override { return true; }
    /// Of the unit sphere.
    MBoundingBox boundingBox() const override;

private:
    InstanceEntry<ParticleCloudSphereLoc> entry_{*this};
};

} // namespace orvo
