// Stands in for another plug-in's locator, of which the scene fog knows no more than what is here:
//   XeliLocatorNode   snapMeshForm (integer): 1 for the mesh as geometry to snap to; outMesh: the mesh, in the
//                     locator's own space; here inMesh in that form, and nothing in any other
// Built with XELI_WITHOUT_PLUGS, the type has none of these.
#include <maya/MDataBlock.h>
#include <maya/MDataHandle.h>
#include <maya/MFnNumericAttribute.h>
#include <maya/MFnNumericData.h>
#include <maya/MFnPlugin.h>
#include <maya/MFnTypedAttribute.h>
#include <maya/MPlug.h>
#include <maya/MPxLocatorNode.h>
#include <maya/MString.h>
#include <maya/MTypeId.h>

namespace {

class XeliLocatorNode : public MPxLocatorNode {
public:
    static const MTypeId id;
    static void* creator() { return static_cast<MPxNode*>(new XeliLocatorNode); }
    static MStatus initialize();
    MStatus compute(const MPlug& plug, MDataBlock& data) override;

private:
    static MObject snapMeshForm, inMesh, outMesh;
};

const MTypeId XeliLocatorNode::id(0x7f210);
MObject XeliLocatorNode::snapMeshForm, XeliLocatorNode::inMesh, XeliLocatorNode::outMesh;

MStatus XeliLocatorNode::initialize() {
#ifndef XELI_WITHOUT_PLUGS
    MStatus status;
    MFnNumericAttribute number;
    snapMeshForm = number.create("snapMeshForm", "smf", MFnNumericData::kInt, 0, &status);
    if (!status) return status;
    MFnTypedAttribute typed;
    inMesh = typed.create("inMesh", "xim", MFnData::kMesh, MObject::kNullObj, &status);
    if (!status) return status;
    outMesh = typed.create("outMesh", "xom", MFnData::kMesh, MObject::kNullObj, &status);
    if (!status) return status;
    typed.setStorable(false);
    typed.setWritable(false);
    for (const MObject& attribute : {snapMeshForm, inMesh, outMesh})
        if (status = addAttribute(attribute); !status) return status;
    for (const MObject& input : {snapMeshForm, inMesh})
        if (status = attributeAffects(input, outMesh); !status) return status;
#endif
    return MS::kSuccess;
}

MStatus XeliLocatorNode::compute(const MPlug& plug, MDataBlock& data) {
    if (outMesh.isNull() || plug != outMesh) return MS::kUnknownParameter;
    MStatus status;
    const int form = data.inputValue(snapMeshForm, &status).asInt();
    if (!status) return status;
    const MObject mesh = data.inputValue(inMesh, &status).asMesh();
    if (!status) return status;
    MDataHandle out = data.outputValue(outMesh, &status);
    if (!status) return status;
    if (form == 1 && !mesh.isNull()) status = out.set(mesh);
    if (form != 1) status = out.set(MObject::kNullObj);
    out.setClean();
    return status;
}

} // namespace

MStatus initializePlugin(MObject object) {
    MFnPlugin plugin(object, "Somebody Else", "1.0", "Any");
    return plugin.registerNode("XeliLocatorNode", XeliLocatorNode::id, XeliLocatorNode::creator,
                               XeliLocatorNode::initialize, MPxNode::kLocatorNode);
}

MStatus uninitializePlugin(MObject object) { return MFnPlugin(object).deregisterNode(XeliLocatorNode::id); }
