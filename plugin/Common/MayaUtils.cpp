#include "MayaUtils.h"

#include "HostText.h"

#include <maya/MDistance.h>
#include <maya/MDoubleArray.h>
#include <maya/MFn.h>
#include <maya/MFnDagNode.h>
#include <maya/MFnDependencyNode.h>
#include <maya/MFnMatrixData.h>
#include <maya/MFnMesh.h>
#include <maya/MFnNumericData.h>
#include <maya/MGlobal.h>
#include <maya/MMatrix.h>
#include <maya/MPlugArray.h>
#include <maya/MPoint.h>
#include <maya/MSelectionList.h>

namespace orvo {
namespace {

template <class Value>
Value readPlug(const MObject& node, const MObject& attribute, Value fallback) {
    Value value = fallback;
    const MPlug plug(node, attribute);
    return succeeded(plug.getValue(value)) ? value : fallback;
}

template <class Number>
Vector3 readTriple(const MObject& node, const MObject& attribute) {
    MObject data;
    const MPlug plug(node, attribute);
    if (!succeeded(plug.getValue(data))) return {};
    MStatus status;
    MFnNumericData numbers(data, &status);
    if (!succeeded(status)) return {};
    Number x = 0, y = 0, z = 0;
    if (!succeeded(numbers.getData(x, y, z))) return {};
    return {x, y, z};
}

template <class Number>
MStatus writeTriple(const MObject& node, const MObject& attribute, MFnNumericData::Type type, const Vector3& value) {
    MStatus status;
    MFnNumericData numbers;
    MObject data = numbers.create(type, &status);
    if (!succeeded(status)) return status;
    status = numbers.setData(static_cast<Number>(value.x), static_cast<Number>(value.y), static_cast<Number>(value.z));
    if (!succeeded(status)) return status;
    MPlug plug(node, attribute);
    status = plug.setValue(data);
    succeeded(status);
    return status;
}

/// What is printed when getting a matrix fails, by step.
struct MatrixErrors {
    const char *object, *data, *matrix;
};

MStatus readMatrix(const MObject& node, const char* attribute, const MatrixErrors& errors, Matrix44& matrix) {
    matrix = {};
    const auto failed = [](const MStatus& status, const char* text) {
        status.perror(text);
        return status;
    };
    MStatus status;
    const MFnDependencyNode dependencyNode(node, &status);
    if (status.error()) return failed(status, errors.object);
    const MObject array = dependencyNode.attribute(attribute, &status);
    if (status.error()) return failed(status, errors.object);
    const MPlug element = MPlug(node, array).elementByLogicalIndex(0, &status);
    if (status.error()) return failed(status, errors.object);
    MObject value;
    status = element.getValue(value);
    if (status.error()) return failed(status, errors.object);
    const MFnMatrixData data(value, &status);
    if (status.error()) return failed(status, errors.data);
    const MMatrix& found = data.matrix(&status);
    if (status.error()) return failed(status, errors.matrix);
    status = found.get(matrix.m);
    return status.error() ? failed(status, errors.matrix) : status;
}

/// A boolean plug of the node, `fallback` when it cannot be read.
bool flag(const MFnDagNode& node, const char* attribute, bool fallback) {
    MStatus status;
    const MPlug plug = node.findPlug(attribute, true, &status);
    bool value = fallback;
    if (status.error() || plug.getValue(value).error()) return fallback;
    return value;
}

/// The node above; a null object for the world, and when there is none or it cannot be had.
MObject parentOf(const MFnDagNode& node) {
    MStatus status;
    if (node.parentCount(&status) == 0 || status.error()) return MObject::kNullObj;
    const MObject parent = node.parent(0, &status);
    return status.error() ? MObject::kNullObj : parent;
}

} // namespace

double readDouble(const MObject& node, const MObject& attribute) { return readPlug(node, attribute, 0.0); }
Vector3 readDouble3(const MObject& node, const MObject& attribute) { return readTriple<double>(node, attribute); }
Vector3 readFloat3(const MObject& node, const MObject& attribute) { return readTriple<float>(node, attribute); }
bool readBool(const MObject& node, const MObject& attribute) { return readPlug(node, attribute, false); }
MString readString(const MObject& node, const MObject& attribute) { return readPlug(node, attribute, MString()); }
int readInt(const MObject& node, const MObject& attribute) { return readPlug(node, attribute, 0); }

void writeString(const MObject& node, const MObject& attribute, const MString& value) {
    MPlug plug(node, attribute);
    succeeded(plug.setValue(value));
}

bool isFreeToChange(const MObject& node, const MObject& attribute) {
    MStatus status;
    return MPlug(node, attribute).isFreeToChange(true, true, &status) == MPlug::kFreeToChange && !status.error();
}

MStatus writeDouble3(const MObject& node, const MObject& attribute, const Vector3& value) {
    return writeTriple<double>(node, attribute, MFnNumericData::k3Double, value);
}

MStatus writeFloat3(const MObject& node, const MObject& attribute, const Vector3& value) {
    return writeTriple<float>(node, attribute, MFnNumericData::k3Float, value);
}

MStatus dependencyNodeByName(const MString& name, MObject& node) {
    MSelectionList list;
    const MStatus status = list.add(name);
    return status.error() ? status : list.getDependNode(0, node);
}

MStatus dagPathByName(const MString& name, MDagPath& path) {
    MSelectionList list;
    const MStatus status = list.add(name);
    return status.error() ? status : list.getDagPath(0, path);
}

std::unique_ptr<MFnMesh> meshByName(const MString& name, MDagPath& path, MStatus* status) {
    MStatus local;
    MStatus& result = status ? *status : local;
    result = dagPathByName(name, path);
    if (result.error()) return nullptr;
    // A path that is a shape already has none below it: that is not a failure.
    if (path.hasFn(MFn::kTransform)) result = path.extendToShape();
    if (result.error()) return nullptr;
    if (!path.hasFn(MFn::kMesh)) {
        result = MStatus::kInvalidParameter;
        return nullptr;
    }
    auto mesh = std::make_unique<MFnMesh>(path, &result);
    if (result.error()) mesh.reset();
    return mesh;
}

MPxNode* userNode(const MObject& node) {
    MStatus status;
    const MFnDependencyNode dependencyNode(node, &status);
    if (status.error()) return nullptr;
    MPxNode* user = dependencyNode.userNode(&status);
    return status.error() ? nullptr : user;
}

MString fullPathName(const MObject& dagNode) {
    MStatus status;
    const MFnDagNode node(dagNode, &status);
    if (status.error()) return {};
    MString name = node.fullPathName(&status);
    return status.error() ? MString() : name;
}

MObject onlyParent(const MObject& dagNode) {
    MStatus status;
    const MFnDagNode node(dagNode, &status);
    if (status.error() || node.parentCount(&status) != 1 || status.error()) return MObject::kNullObj;
    const MObject parent = node.parent(0, &status);
    return status.error() || parent.hasFn(MFn::kWorld) ? MObject::kNullObj : parent;
}

MString shapeConnectedTo(const MPlug& plug) {
    MPlugArray sources;
    MStatus status;
    if (!plug.connectedTo(sources, true, false, &status) || status.error() || sources.length() != 1) return {};
    const MObject shape = sources[0].node(&status);
    if (status.error()) return {};
    if (!shape.hasFn(MFn::kNurbsCurve) && !shape.hasFn(MFn::kMesh) && !shape.hasFn(MFn::kNurbsSurface)) return {};
    return fullPathName(shape);
}

MStatus nodeWorldMatrix(const MObject& node, Matrix44& matrix) {
    return readMatrix(node, "worldMatrix",
                      {"Error getting world matrix object\n", "Error getting world matrix data\n",
                       "Error getting world matrix data matrix\n"},
                      matrix);
}

MStatus nodeInverseWorldMatrix(const MObject& node, Matrix44& matrix) {
    return readMatrix(node, "worldInverseMatrix",
                      {"Error getting inverse world matrix object\n", "Error getting inverse world matrix data\n",
                       "Error getting inverse world matrix data matrix\n"},
                      matrix);
}

MStatus exactWorldBoundingBox(const MString& name, MBoundingBox& box) {
    MDoubleArray corners;
    const MStatus status = MGlobal::executeCommand(MString("exactWorldBoundingBox ") + name + ";", corners);
    if (status.error()) return status;
    if (corners.length() < 6) return MStatus::kFailure;
    double low[3], high[3];
    for (unsigned i = 0; i < 3; ++i) {
        low[i] = MDistance::uiToInternal(corners[i]);
        high[i] = MDistance::uiToInternal(corners[i + 3]);
        const double margin = (high[i] - low[i]) * 0.00001;
        high[i] += margin;
        low[i] -= margin;
    }
    box = MBoundingBox(MPoint(low[0], low[1], low[2]), MPoint(high[0], high[1], high[2]));
    return status;
}

void deleteIfExists(std::string& name) {
    if (name.empty()) return;
    const MString object = hostText(name);
    name.clear();
    int exists = 0;
    if (!succeeded(MGlobal::executeCommand(MString("objExists ") + object + ";", exists)) || exists != 1) return;
    succeeded(MGlobal::executeCommand(MString("delete ") + object + ";"));
}

bool isVisibleAlongDag(const MObject& dagNode) {
    MStatus status;
    for (MObject at = dagNode; !at.isNull();) {
        const MFnDagNode node(at, &status);
        if (status.error()) return true;
        const MObject parent = parentOf(node);
        if (parent.isNull()) return true;
        if (!flag(node, "visibility", true)) return false;
        at = parent;
    }
    return true;
}

bool isTemplatedAlongDag(const MObject& dagNode) {
    MStatus status;
    for (MObject at = dagNode; !at.isNull();) {
        const MFnDagNode node(at, &status);
        if (status.error()) return false;
        const MObject parent = parentOf(node);
        if (parent.isNull()) return false;
        if (flag(node, "template", false)) return true;
        at = parent;
    }
    return false;
}

void renameNode(const MObject& node, const char* name, const SourcePlace& where) {
    MStatus status;
    MFnDependencyNode dependencyNode(node, &status);
    if (!succeeded(status, where)) return;
    dependencyNode.setName(name, &status);
    succeeded(status, where);
}

} // namespace orvo
