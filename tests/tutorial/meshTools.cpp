// Three commands that walk over meshes component by component:
//   pushVertices 0.5;    moves the selected vertices along their normals
//   selectBorder;        selects the vertices at the borders of the selected meshes
//   meshReport pCube1;   answers the area, the number of border edges, of corners, and of corners with a UV
#include <maya/MArgList.h>
#include <maya/MFnPlugin.h>
#include <maya/MFnSingleIndexedComponent.h>
#include <maya/MGlobal.h>
#include <maya/MItMeshEdge.h>
#include <maya/MItMeshFaceVertex.h>
#include <maya/MItMeshPolygon.h>
#include <maya/MItMeshVertex.h>
#include <maya/MItSelectionList.h>
#include <maya/MPxCommand.h>

class pushVertices : public MPxCommand {
public:
    virtual MStatus doIt(const MArgList& args) {
        MStatus status;
        distance = args.asDouble(0, &status);
        if (!status) return status;
        MGlobal::getActiveSelectionList(selection);
        return redoIt();
    }
    virtual MStatus redoIt() { return push(distance); }
    virtual MStatus undoIt() {
        unsigned at = 0;
        for (MItSelectionList it(selection, MFn::kMeshVertComponent); !it.isDone(); it.next()) {
            MDagPath path;
            MObject component;
            it.getDagPath(path, component);
            for (MItMeshVertex v(path, component); !v.isDone(); v.next()) v.setPosition(before[at++]);
        }
        return MS::kSuccess;
    }
    virtual bool isUndoable() const { return true; }
    static void* creator() { return new pushVertices; }

private:
    MStatus push(double by) {
        MStatus status;
        before.clear();
        for (MItSelectionList it(selection, MFn::kMeshVertComponent); !it.isDone(); it.next()) {
            MDagPath path;
            MObject component;
            it.getDagPath(path, component);
            MItMeshVertex v(path, component, &status);
            if (!status) return status;
            MVectorArray normals;
            for (; !v.isDone(); v.next()) {
                MVector n;
                v.getNormal(n, MSpace::kWorld);
                normals.append(n);
                before.append(v.position());
            }
            unsigned at = 0;
            for (v.reset(); !v.isDone(); v.next()) {
                status = v.translateBy(normals[at++] * by, MSpace::kWorld);
                if (!status) return status;
            }
            v.updateSurface();
        }
        setResult((int)before.length());
        return status;
    }

    double distance;
    MSelectionList selection;
    MPointArray before;
};

class selectBorder : public MPxCommand {
public:
    virtual MStatus doIt(const MArgList&) {
        MSelectionList selection, border;
        MGlobal::getActiveSelectionList(selection);
        for (MItSelectionList it(selection); !it.isDone(); it.next()) {
            MDagPath path;
            if (!it.getDagPath(path) || !path.extendToShape()) continue;
            MFnSingleIndexedComponent fn;
            MObject component = fn.create(MFn::kMeshVertComponent);
            for (MItMeshVertex v(path); !v.isDone(); v.next())
                if (v.onBoundary()) fn.addElement(v.index());
            if (!fn.isEmpty()) border.add(path, component);
        }
        MGlobal::setActiveSelectionList(border);
        MStringArray names;
        border.getSelectionStrings(names);
        setResult(names);
        return MS::kSuccess;
    }
    static void* creator() { return new selectBorder; }
};

class meshReport : public MPxCommand {
public:
    virtual MStatus doIt(const MArgList& args) {
        MSelectionList list;
        MDagPath path;
        MStatus status = list.add(args.asString(0));
        if (!status) {
            displayError("meshReport: there is no " + args.asString(0));
            return status;
        }
        list.getDagPath(0, path);
        double area = 0;
        for (MItMeshPolygon p(path); !p.isDone(); p.next()) {
            double a;
            p.getArea(a, MSpace::kWorld);
            area += a;
        }
        int borders = 0, corners = 0, withUv = 0;
        for (MItMeshEdge e(path); !e.isDone(); e.next())
            if (e.onBoundary()) borders++;
        for (MItMeshFaceVertex c(path); !c.isDone(); c.next()) {
            corners++;
            if (c.hasUVs()) withUv++;
        }
        appendToResult(area);
        appendToResult((double)borders);
        appendToResult((double)corners);
        appendToResult((double)withUv);
        return MS::kSuccess;
    }
    static void* creator() { return new meshReport; }
};

MStatus initializePlugin(MObject obj) {
    MFnPlugin plugin(obj, "Somebody Else", "1.0", "Any");
    MStatus status = plugin.registerCommand("pushVertices", pushVertices::creator);
    if (status) status = plugin.registerCommand("selectBorder", selectBorder::creator);
    if (status) status = plugin.registerCommand("meshReport", meshReport::creator);
    return status;
}

MStatus uninitializePlugin(MObject obj) {
    MFnPlugin plugin(obj);
    plugin.deregisterCommand("pushVertices");
    plugin.deregisterCommand("selectBorder");
    return plugin.deregisterCommand("meshReport");
}
