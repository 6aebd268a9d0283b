// A node that turns polar coordinates into a position: a computing node with a compound output.
#include <maya/MDataBlock.h>
#include <maya/MDataHandle.h>
#include <maya/MFnCompoundAttribute.h>
#include <maya/MFnNumericAttribute.h>
#include <maya/MFnPlugin.h>
#include <maya/MGlobal.h>
#include <maya/MPlug.h>
#include <maya/MPxNode.h>
#include <maya/MString.h>
#include <maya/MTypeId.h>

#include <math.h>

class polarNode : public MPxNode {
public:
    polarNode() {}
    virtual ~polarNode() {}

    virtual MStatus compute(const MPlug& plug, MDataBlock& data);
    static void* creator() { return new polarNode(); }
    static MStatus initialize();

    static MTypeId id;
    static MObject aRadius;
    static MObject aDegrees;
    static MObject aOutX;
    static MObject aOutY;
    static MObject aOut;
};

MTypeId polarNode::id(0x80301);
MObject polarNode::aRadius;
MObject polarNode::aDegrees;
MObject polarNode::aOutX;
MObject polarNode::aOutY;
MObject polarNode::aOut;

MStatus polarNode::compute(const MPlug& plug, MDataBlock& data) {
    MStatus returnStatus;

    if (plug != aOut && plug != aOutX && plug != aOutY) return MS::kUnknownParameter;

    MDataHandle radiusHandle = data.inputValue(aRadius, &returnStatus);
    if (returnStatus != MS::kSuccess) {
        returnStatus.perror("ERROR getting radius");
        return returnStatus;
    }
    MDataHandle degreesHandle = data.inputValue(aDegrees, &returnStatus);
    CHECK_MSTATUS_AND_RETURN_IT(returnStatus);

    double radius = radiusHandle.asDouble();
    double angle = degreesHandle.asDouble() * 3.14159265358979323846 / 180.0;

    MDataHandle outHandle = data.outputValue(aOut, &returnStatus);
    CHECK_MSTATUS_AND_RETURN_IT(returnStatus);
    outHandle.child(aOutX).set(radius * cos(angle));
    outHandle.child(aOutY).set(radius * sin(angle));
    outHandle.setClean();
    data.setClean(plug);
    return MS::kSuccess;
}

MStatus polarNode::initialize() {
    MFnNumericAttribute nAttr;
    MFnCompoundAttribute cAttr;
    MStatus stat;

    aRadius = nAttr.create("radius", "rad", MFnNumericData::kDouble, 1.0, &stat);
    CHECK_MSTATUS_AND_RETURN_IT(stat);
    nAttr.setKeyable(true);
    nAttr.setMin(0.0);
    aDegrees = nAttr.create("degrees", "deg", MFnNumericData::kDouble, 0.0, &stat);
    CHECK_MSTATUS_AND_RETURN_IT(stat);
    nAttr.setKeyable(true);

    aOutX = nAttr.create("outX", "ox", MFnNumericData::kDouble);
    nAttr.setWritable(false);
    nAttr.setStorable(false);
    aOutY = nAttr.create("outY", "oy", MFnNumericData::kDouble);
    nAttr.setWritable(false);
    nAttr.setStorable(false);
    aOut = cAttr.create("out", "o", &stat);
    CHECK_MSTATUS_AND_RETURN_IT(stat);
    cAttr.addChild(aOutX);
    cAttr.addChild(aOutY);
    cAttr.setWritable(false);
    cAttr.setStorable(false);

    stat = addAttribute(aRadius);
    if (!stat) {
        stat.perror("addAttribute");
        return stat;
    }
    stat = addAttribute(aDegrees);
    if (!stat) {
        stat.perror("addAttribute");
        return stat;
    }
    stat = addAttribute(aOut);
    if (!stat) {
        stat.perror("addAttribute");
        return stat;
    }

    attributeAffects(aRadius, aOut);
    attributeAffects(aDegrees, aOut);
    return MS::kSuccess;
}

MStatus initializePlugin(MObject obj) {
    MFnPlugin plugin(obj, "Somebody Else", "3.0", "Any");
    MStatus status = plugin.registerNode("polarNode", polarNode::id, polarNode::creator, polarNode::initialize);
    if (!status) status.perror("registerNode");
    return status;
}

MStatus uninitializePlugin(MObject obj) {
    MFnPlugin plugin(obj);
    MStatus status = plugin.deregisterNode(polarNode::id);
    if (!status) status.perror("deregisterNode");
    return status;
}
