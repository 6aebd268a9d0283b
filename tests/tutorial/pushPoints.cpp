// An undoable command that moves the points of the selected meshes along a direction:
//   pushPoints x y z;
#include <maya/MArgList.h>
#include <maya/MDagPath.h>
#include <maya/MDagPathArray.h>
#include <maya/MFnMesh.h>
#include <maya/MFnPlugin.h>
#include <maya/MGlobal.h>
#include <maya/MIOStream.h>
#include <maya/MPointArray.h>
#include <maya/MPxCommand.h>
#include <maya/MSelectionList.h>
#include <maya/MString.h>
#include <maya/MVector.h>

class pushPoints : public MPxCommand {
public:
    pushPoints() {}
    virtual ~pushPoints() {}

    MStatus doIt(const MArgList& args);
    MStatus redoIt();
    MStatus undoIt();
    bool isUndoable() const { return true; }
    static void* creator() { return new pushPoints; }

private:
    MStatus move(const MVector& offset);
    MVector direction;
    MDagPathArray meshes;
};

MStatus pushPoints::doIt(const MArgList& args) {
    MStatus stat;
    if (args.length() != 3) {
        displayError("pushPoints needs three numbers");
        return MS::kFailure;
    }
    for (unsigned i = 0; i < 3; i++) {
        direction[i] = args.asDouble(i, &stat);
        if (!stat) {
            displayError("pushPoints: argument " + (MString() + (double)(i + 1)) + " is no number");
            return stat;
        }
    }

    MSelectionList slist;
    MGlobal::getActiveSelectionList(slist);
    for (unsigned i = 0; i < slist.length(); i++) {
        MDagPath path;
        if (!slist.getDagPath(i, path)) continue;
        if (!path.extendToShape() || !path.hasFn(MFn::kMesh)) continue;
        meshes.append(path);
    }
    if (meshes.length() == 0) {
        displayWarning("pushPoints: no mesh is selected");
        return MS::kSuccess;
    }
    setResult((int)meshes.length());
    return redoIt();
}

MStatus pushPoints::move(const MVector& offset) {
    for (unsigned i = 0; i < meshes.length(); i++) {
        MStatus stat;
        MFnMesh fn(meshes[i], &stat);
        if (!stat) return stat;
        MPointArray points;
        stat = fn.getPoints(points, MSpace::kWorld);
        if (!stat) return stat;
        for (unsigned k = 0; k < points.length(); k++) points[k] += offset;
        stat = fn.setPoints(points, MSpace::kWorld);
        if (!stat) return stat;
        fn.updateSurface();
    }
    return MS::kSuccess;
}

MStatus pushPoints::redoIt() { return move(direction); }
MStatus pushPoints::undoIt() { return move(-direction); }

MStatus initializePlugin(MObject obj) {
    MFnPlugin plugin(obj, "Somebody Else", "1.0", "Any");
    MStatus status = plugin.registerCommand("pushPoints", pushPoints::creator);
    if (!status) status.perror("registerCommand");
    return status;
}

MStatus uninitializePlugin(MObject obj) {
    MFnPlugin plugin(obj);
    MStatus status = plugin.deregisterCommand("pushPoints");
    if (!status) status.perror("deregisterCommand");
    return status;
}
