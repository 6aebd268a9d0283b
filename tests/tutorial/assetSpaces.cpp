// Keeps assets apart by namespaces:
//   assetSpaces stow NAME OBJECT...;   puts objects into a namespace made for them, and answers its name
//   assetSpaces list [PARENT];         every namespace below, as "name: object object"
//   assetSpaces rename OLD NEW;        gives a namespace another name
//   assetSpaces merge FROM TO;         moves what is in one namespace into another, and removes the first
//   assetSpaces discard NAME;          deletes a namespace with what is in it
#include <maya/MFnDependencyNode.h>
#include <maya/MFnPlugin.h>
#include <maya/MNamespace.h>
#include <maya/MPxCommand.h>
#include <maya/MSelectionList.h>

class assetSpaces : public MPxCommand {
public:
    virtual MStatus doIt(const MArgList& args) {
        MString what = args.asString(0), name = args.length() > 1 ? args.asString(1) : MString(":");
        if (what == "stow") return stow(name, args);
        if (what == "list") return list(name);
        MStatus status = MS::kInvalidParameter;
        if (what == "rename") status = MNamespace::renameNamespace(name, args.asString(2));
        if (what == "discard") status = MNamespace::removeNamespace(name, true);
        if (what == "merge") {
            status = MNamespace::moveNamespace(name, args.asString(2));
            if (status) status = MNamespace::removeNamespace(name);
        }
        if (!status) displayError("assetSpaces: cannot " + what + " " + name + ": " + status.errorString());
        return status;
    }
    static void* creator() { return new assetSpaces; }

private:
    MStatus stow(const MString& wanted, const MArgList& args) {
        MStatus status;
        MString name = MNamespace::validateName(wanted, &status);
        if (!status) return status;
        MString whole = MNamespace::makeNamepathAbsolute(name);
        if (!MNamespace::namespaceExists(whole)) {
            status = MNamespace::addNamespace(name);
            if (!status) return status;
        }
        for (unsigned i = 2; i < args.length(); i++) {
            MSelectionList list;
            MObject node;
            status = list.add(args.asString(i));
            if (!status) return status;
            list.getDependNode(0, node);
            MFnDependencyNode fn(node);
            MString from = MNamespace::getNamespaceFromName(fn.name());
            if (from.length() > 0) displayInfo(fn.name() + " leaves " + from);
            fn.setName(whole + ":" + MNamespace::stripNamespaceFromName(fn.name()), &status);
            if (!status) return status;
        }
        setResult(whole);
        return MS::kSuccess;
    }

    MStatus list(const MString& parent) {
        MStatus status;
        MStringArray names = MNamespace::getNamespaces(parent, true, &status);
        if (!status) return status;
        for (unsigned i = 0; i < names.length(); i++) {
            MString line = names[i] + ":";
            MObjectArray objects = MNamespace::getNamespaceObjects(MNamespace::rootNamespace() + names[i]);
            for (unsigned k = 0; k < objects.length(); k++)
                line += " " + MNamespace::stripNamespaceFromName(MFnDependencyNode(objects[k]).name());
            appendToResult(line);
        }
        return MS::kSuccess;
    }
};

MStatus initializePlugin(MObject obj) {
    MFnPlugin plugin(obj, "Studio", "1.0", "Any");
    return plugin.registerCommand("assetSpaces", assetSpaces::creator);
}

MStatus uninitializePlugin(MObject obj) { return MFnPlugin(obj).deregisterCommand("assetSpaces"); }
