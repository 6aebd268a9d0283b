// Keeps a log of what happens in the scene:
//   watchNode NODE;               from now on, of this node
//   watchNode -endWatch NODE;     no more
//   watchNode -badly throw NODE;   with a callback that throws; "delete": one that deletes the node; "once": one that
//                                 removes itself
//   watchLog;                     what was logged since the last time
#include <maya/MArgDatabase.h>
#include <maya/MCallbackIdArray.h>
#include <maya/MDGMessage.h>
#include <maya/MDagMessage.h>
#include <maya/MEventMessage.h>
#include <maya/MFnDagNode.h>
#include <maya/MFnPlugin.h>
#include <maya/MGlobal.h>
#include <maya/MNodeMessage.h>
#include <maya/MPxCommand.h>
#include <maya/MSceneMessage.h>
#include <maya/MSelectionList.h>

#include <stdexcept>

static MStringArray theLog;
static MCallbackIdArray theIds;

static void note(const MString& line) { theLog.append(line); }
static MString label(const MPlug& plug) { return plug.partialName(true, false, false, false, false, true); }
static MString nameOf(const MObject& node) { return MFnDependencyNode(node).name(); }

static void attributeChanged(MNodeMessage::AttributeMessage msg, MPlug& plug, MPlug& other, void*) {
    if (msg & MNodeMessage::kAttributeSet) note("set " + label(plug));
    if (msg & MNodeMessage::kConnectionMade)
        note(MString(msg & MNodeMessage::kIncomingDirection ? "in " : "out ") + label(plug) + " " + label(other));
    if (msg & MNodeMessage::kConnectionBroken) note("cut " + label(plug));
    if (msg & MNodeMessage::kAttributeLocked) note("locked " + label(plug));
}

static void attributeAdded(MNodeMessage::AttributeMessage msg, MPlug& plug, void*) {
    note(MString(msg & MNodeMessage::kAttributeAdded ? "added " : "removed ") +
         plug.partialName(false, true, true, false, true, true));
}

static void renamed(MObject& node, const MString& before, void*) { note("renamed " + before + " " + nameOf(node)); }
static void dirty(MObject&, MPlug& plug, void*) {
    if (plug.partialName(false, true, true, false, false, true) == "translateX") note("dirty " + label(plug));
}
static void moved(MObject& node, MDagMessage::MatrixModifiedFlags&, void*) { note("moved " + nameOf(node)); }
static void aboutToDelete(MObject& node, MDGModifier& modifier, void*) {
    note("deleting " + nameOf(node));
    modifier.commandToExecute("createNode transform -n \"grave\"");
}
static void destroyed(void*) { note("destroyed"); }
static void nodeAdded(MObject& node, void*) { note("new " + nameOf(node)); }
static void nodeRemoved(MObject& node, void*) { note("gone " + nameOf(node)); }
static void parentAdded(MDagPath& child, MDagPath& parent, void*) {
    note("child " + child.partialPathName() + " of " + (parent.isValid() ? parent.partialPathName() : MString()));
}
static void timeChanged(MTime& time, void*) { note(MString("frame ") + time.as(MTime::uiUnit())); }
static void plain(void* text) { note((const char*)text); }
static void mayOpen(bool* allowed, MFileObject& file, void*) { *allowed = file.rawName() != "forbidden.ma"; }

static void throws(MNodeMessage::AttributeMessage msg, MPlug&, MPlug&, void*) {
    if (msg & MNodeMessage::kAttributeSet) throw std::runtime_error("out of patience");
}
static void deletes(MNodeMessage::AttributeMessage msg, MPlug& plug, MPlug&, void*) {
    MObject node = plug.node();
    if (msg & MNodeMessage::kAttributeSet) MGlobal::deleteNode(node);
}
static void once(MNodeMessage::AttributeMessage msg, MPlug& plug, MPlug&, void*) {
    if (!(msg & MNodeMessage::kAttributeSet)) return;
    note("once " + label(plug));
    MMessage::removeCallback(MMessage::currentCallbackId());
    plug.setDouble(plug.asDouble() + 1);
}

class watchNode : public MPxCommand {
public:
    virtual MStatus doIt(const MArgList& args) {
        MStatus status;
        MArgDatabase data(syntax(), args, &status);
        if (!status) return status;
        MSelectionList list;
        MObject node;
        MDagPath path;
        data.getObjects(list);
        list.getDependNode(0, node);
        list.getDagPath(0, path);
        if (data.isFlagSet("-endWatch")) {
            MCallbackIdArray ids;
            MMessage::nodeCallbacks(node, ids);
            setResult((int)ids.length());
            return MMessage::removeCallbacks(ids);
        }
        if (data.isFlagSet("-badly")) {
            MString kind = data.flagArgumentString("-badly", 0);
            MNodeMessage::MAttr2PlugFunction bad = kind == "throw" ? throws : kind == "delete" ? deletes : once;
            theIds.append(MNodeMessage::addAttributeChangedCallback(node, bad, NULL, &status));
            return status;
        }
        theIds.append(MNodeMessage::addAttributeChangedCallback(node, attributeChanged, NULL, &status));
        theIds.append(MNodeMessage::addAttributeAddedOrRemovedCallback(node, attributeAdded));
        theIds.append(MNodeMessage::addNameChangedCallback(node, renamed));
        theIds.append(MNodeMessage::addNodeDirtyPlugCallback(node, dirty));
        theIds.append(MNodeMessage::addNodeAboutToDeleteCallback(node, aboutToDelete));
        theIds.append(MNodeMessage::addNodeDestroyedCallback(node, destroyed));
        theIds.append(MDagMessage::addWorldMatrixModifiedCallback(path, moved));
        theIds.append(MDagMessage::addChildAddedDagPathCallback(path, parentAdded));
        return status;
    }
    virtual bool hasSyntax() const { return true; }
    static MSyntax newSyntax() {
        MSyntax syntax;
        syntax.addFlag("-en", "-endWatch");
        syntax.addFlag("-b", "-badly", MSyntax::kString);
        syntax.setObjectType(MSyntax::kSelectionList, 1, 1);
        return syntax;
    }
    static void* creator() { return new watchNode; }
};

class watchLog : public MPxCommand {
public:
    virtual MStatus doIt(const MArgList&) {
        setResult(theLog);
        theLog.clear();
        return MS::kSuccess;
    }
    static void* creator() { return new watchLog; }
};

MStatus initializePlugin(MObject obj) {
    MFnPlugin plugin(obj, "Somebody Else", "1.0", "Any");
    MStatus status = plugin.registerCommand("watchNode", watchNode::creator, watchNode::newSyntax);
    if (status) status = plugin.registerCommand("watchLog", watchLog::creator);
    theIds.append(MDGMessage::addNodeAddedCallback(nodeAdded, "transform"));
    theIds.append(MDGMessage::addNodeRemovedCallback(nodeRemoved, "transform"));
    theIds.append(MDGMessage::addTimeChangeCallback(timeChanged));
    theIds.append(MSceneMessage::addCallback(MSceneMessage::kBeforeOpen, plain, (void*)"before open"));
    theIds.append(MSceneMessage::addCallback(MSceneMessage::kAfterOpen, plain, (void*)"after open"));
    theIds.append(MSceneMessage::addCallback(MSceneMessage::kAfterSave, plain, (void*)"after save"));
    theIds.append(MSceneMessage::addCheckFileCallback(MSceneMessage::kBeforeOpenCheck, mayOpen));
    theIds.append(MEventMessage::addEventCallback("SelectionChanged", plain, (void*)"selection"));
    return status;
}

MStatus uninitializePlugin(MObject obj) {
    MFnPlugin plugin(obj);
    // The callbacks of nodes are left behind, as happens.
    plugin.deregisterCommand("watchLog");
    return plugin.deregisterCommand("watchNode");
}
