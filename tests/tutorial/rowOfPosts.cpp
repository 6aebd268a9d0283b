// An undoable command with flags that puts a row of locators below a group:
//   rowOfPosts -count 3 -spacing 2.5 -along 0 0 1 -name "post" group1;
//   rowOfPosts -query -count group1;
#include <maya/MArgDatabase.h>
#include <maya/MArgList.h>
#include <maya/MDagModifier.h>
#include <maya/MFnDagNode.h>
#include <maya/MFnPlugin.h>
#include <maya/MGlobal.h>
#include <maya/MPxCommand.h>
#include <maya/MSelectionList.h>
#include <maya/MSyntax.h>

static const char* countFlag = "-c";
static const char* countLongFlag = "-count";
static const char* spacingFlag = "-s";
static const char* spacingLongFlag = "-spacing";
static const char* alongFlag = "-al";
static const char* alongLongFlag = "-along";
static const char* nameFlag = "-n";
static const char* nameLongFlag = "-name";
static const char* tagFlag = "-t";
static const char* tagLongFlag = "-tags";

class rowOfPosts : public MPxCommand {
public:
    rowOfPosts() : count(1), spacing(1.0), name("post"), along(1, 0, 0) {}
    virtual ~rowOfPosts() {}

    virtual MStatus doIt(const MArgList& args);
    virtual MStatus redoIt();
    virtual MStatus undoIt() { return dagMod.undoIt(); }
    virtual bool isUndoable() const { return !query; }
    virtual bool hasSyntax() const { return true; }
    static MSyntax newSyntax();
    static void* creator() { return new rowOfPosts; }

private:
    MStatus parseArgs(const MArgList& args);

    int count;
    MDistance spacing;
    MString name;
    MVector along;
    MStringArray tags;
    MObject group;
    bool query = false;
    MDagModifier dagMod;
};

MSyntax rowOfPosts::newSyntax() {
    MSyntax syntax;
    syntax.addFlag(countFlag, countLongFlag, MSyntax::kLong);
    syntax.addFlag(spacingFlag, spacingLongFlag, MSyntax::kDistance);
    syntax.addFlag(alongFlag, alongLongFlag, MSyntax::kDouble, MSyntax::kDouble, MSyntax::kDouble);
    syntax.addFlag(nameFlag, nameLongFlag, MSyntax::kString);
    syntax.addFlag(tagFlag, tagLongFlag, MSyntax::kString);
    syntax.makeFlagMultiUse(tagFlag);
    syntax.enableQuery(true);
    syntax.enableEdit(false);
    syntax.useSelectionAsDefault(true);
    syntax.setObjectType(MSyntax::kSelectionList, 1, 1);
    return syntax;
}

MStatus rowOfPosts::parseArgs(const MArgList& args) {
    MStatus status;
    MArgDatabase argData(syntax(), args, &status);
    if (!status) return status;

    query = argData.isQuery();
    MSelectionList objects;
    status = argData.getObjects(objects);
    if (!status) return status;
    status = objects.getDependNode(0, group);
    if (!status) return status;
    if (query) {
        if (argData.isFlagSet(countFlag)) setResult((int)MFnDagNode(group).childCount());
        return MS::kSuccess;
    }

    if (argData.isFlagSet(countFlag)) argData.getFlagArgument(countFlag, 0, count);
    if (argData.isFlagSet(spacingFlag)) argData.getFlagArgument(spacingFlag, 0, spacing);
    if (argData.isFlagSet(nameFlag)) argData.getFlagArgument(nameFlag, 0, name);
    if (argData.isFlagSet(alongFlag))
        for (unsigned i = 0; i < 3; i++) argData.getFlagArgument(alongFlag, i, along[i]);
    for (unsigned i = 0; i < argData.numberOfFlagUses(tagFlag); i++) {
        MArgList use;
        argData.getFlagArgumentList(tagFlag, i, use);
        tags.append(use.asString(0));
    }
    return MS::kSuccess;
}

MStatus rowOfPosts::doIt(const MArgList& args) {
    MStatus status = parseArgs(args);
    if (!status || query) return status;
    for (int i = 0; i < count; i++) {
        MObject post = dagMod.createNode("transform", group, &status);
        if (!status) return status;
        MObject shape = dagMod.createNode("locator", post, &status);
        if (!status) return status;
        MString postName = name;
        for (unsigned k = 0; k < tags.length(); k++) postName += MString("_") + tags[k];
        dagMod.renameNode(post, postName + (i + 1));
        MFnDagNode fn(post);
        const char* axes[] = {"translateX", "translateY", "translateZ"};
        for (unsigned k = 0; k < 3; k++)
            dagMod.newPlugValueDouble(fn.findPlug(axes[k], true), along[k] * spacing.asCentimeters() * i);
    }
    return redoIt();
}

MStatus rowOfPosts::redoIt() {
    setResult(count);
    return dagMod.doIt();
}

MStatus initializePlugin(MObject obj) {
    MFnPlugin plugin(obj, "Somebody Else", "1.2", "Any");
    MStatus status = plugin.registerCommand("rowOfPosts", rowOfPosts::creator, rowOfPosts::newSyntax);
    if (!status) status.perror("registerCommand");
    return status;
}

MStatus uninitializePlugin(MObject obj) {
    MFnPlugin plugin(obj);
    MStatus status = plugin.deregisterCommand("rowOfPosts");
    if (!status) status.perror("deregisterCommand");
    return status;
}
