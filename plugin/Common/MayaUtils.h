#pragma once

#include "Matrix44.h"
#include "Messages.h"
#include "Vector3.h"

#include <maya/MBoundingBox.h>
#include <maya/MDagPath.h>
#include <maya/MObject.h>
#include <maya/MPlug.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <memory>
#include <string>

class MFnMesh;
class MPxNode;

/// How nodes and commands talk to the host's scene. Main thread only. Failures are reported, not thrown.
namespace orvo {

/// @name Attribute values
/// A failed read is reported and answers 0, (0, 0, 0), false or an empty text.
/// @{
double readDouble(const MObject& node, const MObject& attribute);
/// For attributes of three doubles.
Vector3 readDouble3(const MObject& node, const MObject& attribute);
/// For colours and other attributes of three floats.
Vector3 readFloat3(const MObject& node, const MObject& attribute);
bool readBool(const MObject& node, const MObject& attribute);
MString readString(const MObject& node, const MObject& attribute);
int readInt(const MObject& node, const MObject& attribute);
void writeString(const MObject& node, const MObject& attribute, const MString& value);
/// Whether a value that is written would stay: the attribute and its children are neither locked nor connected. Asked
/// before a node corrects an attribute of its own accord; the artist's lock holds then, without a word.
bool isFreeToChange(const MObject& node, const MObject& attribute);
/// Writes an attribute of three doubles.
MStatus writeDouble3(const MObject& node, const MObject& attribute, const Vector3& value);
/// Writes a colour or another attribute of three floats.
MStatus writeFloat3(const MObject& node, const MObject& attribute, const Vector3& value);
/// @}

/// @name Look-ups: silent, the status says whether there is such an object
/// @{
MStatus dependencyNodeByName(const MString& name, MObject& node);
MStatus dagPathByName(const MString& name, MDagPath& path);
/// The path goes on to the shape below, which must be a mesh (else kInvalidParameter). Null when the look-up failed.
std::unique_ptr<MFnMesh> meshByName(const MString& name, MDagPath& path, MStatus* status = nullptr);
/// What the plug-in that made the node's type keeps for it; null for the host's own types.
MPxNode* userNode(const MObject& node);
/// Empty when the object is no DAG node.
MString fullPathName(const MObject& dagNode);
/// The only parent of a DAG node; a null object when there is none, or more than one. The world is none.
MObject onlyParent(const MObject& dagNode);
/// The full path name of the one NURBS curve, mesh or NURBS surface whose plug feeds this one; empty otherwise.
MString shapeConnectedTo(const MPlug& plug);
/// @}

/// @name Matrices: a failure is printed and gives the identity and its status
/// @{
MStatus nodeWorldMatrix(const MObject& node, Matrix44& matrix);
MStatus nodeInverseWorldMatrix(const MObject& node, Matrix44& matrix);
/// @}

/// The exact box of a named object in world space, in centimetres, larger by a hundred-thousandth of its size on every
/// side.
MStatus exactWorldBoundingBox(const MString& name, MBoundingBox& box);

/// Deletes the object of that name when there is one, and empties the name.
void deleteIfExists(std::string& name);

/// Whether the node and all above it are visible.
bool isVisibleAlongDag(const MObject& dagNode);
/// Whether the node or one above it is templated: its `template` attribute, which is what stands for "isTemplated" on
/// DAG nodes.
bool isTemplatedAlongDag(const MObject& dagNode);

/// Renames a new node in its postConstructor; a "#" at the end becomes the next free number.
void renameNode(const MObject& node, const char* name, const SourcePlace& where = SourcePlace::current());

} // namespace orvo
