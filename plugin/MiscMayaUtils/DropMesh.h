#pragma once

#include <maya/MPointArray.h>
#include <maya/MPxCommand.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MStringArray.h>
#include <memory>
#include <vector>

class MFnMesh;

namespace orvo {

/// orvo_dropMesh dropObject staticObjects offset
///
/// Drapes a mesh onto others: each vertex goes straight down (or up) onto the highest surface of the static meshes at
/// its place, and then up by the offset (world units along Y). A vertex beside all of them takes the height of the
/// point nearest to it, and one whose position is no number stays as it is. A drop object that is among the static ones
/// falls onto the surface that it had before.
class DropMeshCommand : public MPxCommand {
public:
    MStatus doIt(const MArgList& args) override;
    MStatus redoIt() override;
    MStatus undoIt() override;
    bool isUndoable() const override { return true; }

private:
    using Statics = std::vector<std::unique_ptr<MFnMesh>>;

    MStatus readArguments(const MArgList& args);
    MStatus drop();
    MStatus restore();
    /// The static meshes that there are, and their names; the others are warned of.
    MStatus findStatics(Statics& statics, MStringArray& names) const;
    MStatus keepUndoPositions(const MFnMesh& dropMesh, int numVerts);
    /// The lowest and highest Y of the boxes of the static objects, in world space.
    MStatus measureStatics(const MStringArray& names);
    /// Moves the points, in order, up to the first failure. `moved` tells how many were.
    MStatus dropPoints(MPointArray& points, const Statics& statics, unsigned& moved) const;

    double staticBottom_ = 0.0, staticTop_ = 0.0;
    MStringArray staticNames_;
    MString dropName_;
    double offset_ = 0.0;
    /// Object space, three a vertex, from before the first drop; null before that.
    std::unique_ptr<float[]> undoPositions_;
    int undoCount_ = 0;
};

} // namespace orvo
