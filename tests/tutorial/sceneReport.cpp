// Looks over a scene and sets it up, with function sets and iterators alone:
//   sceneReport sets;             the members of every set, as "set: a b"
//   sceneReport lights;           every light with its intensity and direction
//   sceneReport upstream NODE;    the nodes that a node depends on
//   sceneReport curve PLUG;       keys a plug with a ramp from 0 to 10 over one second
//   sceneReport save FILE;        saves the scene, and opens it again
//   sceneReport refer FILE;       refers to a file, tells what it brings, and takes the reference away again
//   sceneReport types;            what it finds of the node type "directionalLight"
#include <maya/MAnimControl.h>
#include <maya/MComputation.h>
#include <maya/MFileIO.h>
#include <maya/MFileObject.h>
#include <maya/MFnAmbientLight.h>
#include <maya/MFnAnimCurve.h>
#include <maya/MFnDirectionalLight.h>
#include <maya/MFnPlugin.h>
#include <maya/MFnSet.h>
#include <maya/MGlobal.h>
#include <maya/MItDag.h>
#include <maya/MItDependencyGraph.h>
#include <maya/MItDependencyNodes.h>
#include <maya/MNodeClass.h>
#include <maya/MProgressWindow.h>
#include <maya/MPxCommand.h>
#include <maya/MSelectionList.h>
#include <maya/MUuid.h>

class sceneReport : public MPxCommand {
public:
    virtual MStatus doIt(const MArgList& args) {
        MString what = args.asString(0), name = args.length() > 1 ? args.asString(1) : MString();
        if (what == "sets") return sets();
        if (what == "lights") return lights();
        if (what == "upstream") return upstream(name);
        if (what == "curve") return curve(name);
        if (what == "save") return save(name);
        if (what == "refer") return refer(name);
        if (what == "types") return types();
        displayError("sceneReport: there is no report \"" + what + "\"");
        return MS::kInvalidParameter;
    }
    static void* creator() { return new sceneReport; }

private:
    MStatus sets() {
        MComputation progress;
        progress.beginComputation();
        for (MItDependencyNodes it(MFn::kSet); !it.isDone(); it.next()) {
            if (progress.isInterruptRequested()) break;
            MFnSet fn(it.thisNode());
            if (fn.isDefaultNode()) continue;
            MSelectionList members;
            fn.getMembers(members, false);
            MStringArray names;
            members.getSelectionStrings(names);
            MString line = fn.name() + ":";
            for (unsigned i = 0; i < names.length(); i++) line += MString(" ") + names[i];
            appendToResult(line);
        }
        progress.endComputation();
        return MS::kSuccess;
    }

    MStatus lights() {
        for (MItDag it(MItDag::kDepthFirst, MFn::kLight); !it.isDone(); it.next()) {
            MDagPath path;
            it.getPath(path);
            MFnLight light(path);
            MFloatVector d = light.lightDirection();
            MString line = light.name() + " " + light.intensity();
            if (path.hasFn(MFn::kDirectionalLight)) line += MString(" ") + d.x + " " + d.y + " " + d.z;
            if (path.hasFn(MFn::kAmbientLight)) line += MString(" shade ") + MFnAmbientLight(path).ambientShade();
            appendToResult(line);
        }
        return MS::kSuccess;
    }

    MStatus upstream(const MString& name) {
        MSelectionList list;
        MObject node;
        MStatus status = list.add(name);
        if (!status) return status;
        list.getDependNode(0, node);
        MItDependencyGraph it(node, MFn::kInvalid, MItDependencyGraph::kUpstream, MItDependencyGraph::kBreadthFirst,
                              MItDependencyGraph::kNodeLevel, &status);
        if (!status) return status;
        for (; !it.isDone(); it.next()) appendToResult(MFnDependencyNode(it.currentItem()).name());
        return MS::kSuccess;
    }

    MStatus curve(const MString& name) {
        MSelectionList list;
        MPlug plug;
        MStatus status = list.add(name);
        if (!status) return status;
        list.getPlug(0, plug);
        MFnAnimCurve fn;
        fn.create(plug, NULL, &status);
        if (!status) {
            displayError("sceneReport: " + name + " cannot be animated");
            return status;
        }
        MAnimControl::setMinMaxTime(MTime(0.0, MTime::uiUnit()), MTime(1.0, MTime::kSeconds));
        fn.addKey(MAnimControl::minTime(), 0.0, MFnAnimCurve::kTangentLinear, MFnAnimCurve::kTangentLinear);
        fn.addKey(MAnimControl::maxTime(), 10.0, MFnAnimCurve::kTangentLinear, MFnAnimCurve::kTangentLinear);
        MAnimControl::setCurrentTime(MTime(0.25, MTime::kSeconds));
        setResult(plug.asDouble());
        return MS::kSuccess;
    }

    MStatus save(const MString& name) {
        MStatus status = MFileIO::saveAs(name, NULL, true);
        if (!status) return status;
        MFileObject file;
        file.setRawFullName(MFileIO::currentFile());
        if (!file.exists()) return MS::kNotFound;
        status = MFileIO::open(file.resolvedFullName(), NULL, true);
        setResult(file.resolvedName());
        return status;
    }

    MStatus refer(const MString& name) {
        MStatus status = MFileIO::reference(name, false, false, "asset");
        if (!status) return status;
        MStringArray files, nodes;
        MFileIO::getReferences(files);
        for (unsigned i = 0; i < files.length(); i++) {
            MFileIO::getReferenceNodes(files[i], nodes);
            for (unsigned k = 0; k < nodes.length(); k++) {
                MSelectionList list;
                MObject node;
                list.add(nodes[k]);
                list.getDependNode(0, node);
                if (MFnDependencyNode(node).isFromReferencedFile()) appendToResult(nodes[k]);
            }
        }
        MObject node;
        MSelectionList list;
        list.add("assetRN");
        list.getDependNode(0, node);
        MFileObject file;
        file.setRawFullName(MFileIO::getReferenceFileByNode(node, &status));
        if (!status) return status;
        appendToResult(file.rawName());
        MFileIO::unloadReferenceByNode(node, &status);
        if (!status) return status;
        MFileIO::getReferenceNodes(files[0], nodes);
        appendToResult(MString() + nodes.length());
        file.setRawFullName(MFileIO::loadReferenceByNode(node, &status));
        if (!status) return status;
        MFileIO::getReferenceNodes(files[0], nodes);
        appendToResult(file.rawName() + nodes.length());
        return MFileIO::removeReference(files[0], MFileIO::kForceDeleteNamespaceContent);
    }

    MStatus types() {
        MNodeClass type("directionalLight");
        appendToResult(type.typeName());
        appendToResult(MString() + (int)type.hasAttribute("lightAngle"));
        appendToResult(MNodeClass("noSuchType").typeName());
        appendToResult(MString() + (int)MProgressWindow::reserve());
        MUuid id;
        id.generate();
        appendToResult(MString() + (int)(id.valid() && MUuid(id.asString()) == id));
        return MS::kSuccess;
    }
};

MStatus initializePlugin(MObject obj) {
    MFnPlugin plugin(obj, "Somebody Else", "1.0", "Any");
    return plugin.registerCommand("sceneReport", sceneReport::creator);
}

MStatus uninitializePlugin(MObject obj) {
    MFnPlugin plugin(obj);
    return plugin.deregisterCommand("sceneReport");
}
