#pragma once

#include <maya/MPxNode.h>
#include <maya/MTypeId.h>

namespace orvo {

/// Turns a transform matrix into what a shader wants: the direction that a light points along, seen backwards
/// (directional mode), or the transform's position (position mode); a fourth component, 0 or 1, tells them apart.
class OrvoSkyShadingConversionNode : public MPxNode {
public:
    static const MTypeId id;
    /// A group of attributes that cannot be made gives one message; the others follow all the same, and the status is
    /// that of the first failure.
    static MStatus initialize();

    MStatus compute(const MPlug& plug, MDataBlock& block) override;

private:
    MStatus computeVector(MDataBlock& block) const;
    MStatus computeW(MDataBlock& block) const;

    static MObject inMatrix, inVector, mode, outVectorX, outVectorY, outVectorZ, outVector, outW;
};

} // namespace orvo
