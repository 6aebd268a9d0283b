#pragma once

#include "mel/Interpreter.h"
#include "scene/Evaluation.h"
#include "scene/Scene.h"
#include "scene/Sets.h"

#include <maya/MMatrix.h>
#include <maya/MPoint.h>
#include <maya/MVector.h>

#include <array>
#include <functional>
#include <memory>
#include <string>
#include <vector>

/// What the scene commands share: finding what names stand for, naming what they answer, units.
namespace host::mel {

inline scene::Scene& theScene() { return scene::Scene::current(); }

/// Registers a command whose SceneErrors reach the script as Errors. Most have flags, and look at them first.
enum class Flags { Told, None };
void registerSceneCommand(Interpreter& interpreter, const char* name, CommandFunction function,
                          Flags flags = Flags::Told);

/// @name Finding
/// Each throws "No object matches name: X" or "More than one object matches name: X".
/// @{
scene::Node& nodeNamed(const std::string& name);
scene::DagNode& dagNamed(const std::string& name);
/// As dagNamed; throws also for a shape.
scene::DagNode& transformNamed(const std::string& name);
/// All nodes that names, paths or patterns stand for, each once, in the order given.
std::vector<scene::Node*> nodesNamed(const StringArray& names);
/// Nodes, plugs and components ("pCube1.vtx[0:3]"); the node's part may be a pattern.
std::vector<scene::Selected> itemsNamed(const std::string& name);
/// What the names stand for, or the selection where there are none: nodes, and components of one kind and shape as one
/// item. Throws when there is nothing, and for plugs.
std::vector<scene::Selected> objectsGivenOrSelected(const StringArray& names);
/// "node.attribute": an attribute of a transform's shape may be named through the transform.
scene::Cell& plugNamed(const std::string& name);
/// The same, or null. `create` false leaves array elements that nobody has touched absent.
scene::Cell* findPlug(const std::string& name, bool create = true);
/// The objects of a call, or the selected nodes where it has none.
std::vector<scene::Node*> givenOrSelected(const ParsedArguments& arguments);
/// The selected nodes, and those that have something selected of them.
std::vector<scene::Node*> selectedNodes();
/// The same; throws when there is nothing, or something that is not in the DAG.
std::vector<scene::DagNode*> dagGivenOrSelected(const ParsedArguments& arguments);
/// @}

/// The shortest unique path, or the full one.
std::string nameOf(scene::Node& node, bool full = false);
/// An item's names: several where it is components that do not follow one another, or all of them one by one (`flat`).
StringArray namesOf(const scene::Selected& item, bool full = false, bool flat = false);
StringArray namesOf(const std::vector<scene::Node*>& nodes, bool full = false);
/// The name that a shape gets by itself below a transform of that name: "pCubeShape1" for "pCube1".
std::string shapeNameFor(const std::string& transformName);

void selectNodes(const std::vector<scene::Node*>& nodes);

/// The non-intermediate shapes of a transform, or the shape itself.
std::vector<scene::DagNode*> shapesOf(scene::DagNode& node);
/// The node, then all below it, parents before children.
std::vector<scene::DagNode*> withDescendants(scene::DagNode& node);
/// Whether the node and all above it are visible.
bool visibleInWorld(scene::DagNode& node);
/// The transform that holds a shape; other nodes themselves.
scene::Node& transformOf(scene::Node& node);

/// @name The user's units, in internal ones: centimetres, radians, ticks
/// @{
double lengthUnit();
double angleUnit();
double timeTicks();
/// @}

/// @name Transforms, in internal units
/// @{
MVector tripleOf(scene::Node& node, const char* attribute);
/// Sets those of the three numbers that change.
void setTriple(scene::Node& node, const char* attribute, const MVector& value);
inline MPoint pointOf(const MVector& v) { return MPoint(v.x, v.y, v.z); }
/// What the matrix does to directions.
MVector turned(const MVector& v, const MMatrix& m);
/// Sets translation, rotation, scale and shear so that the local matrix becomes the given one; pivots and the
/// rotate axis stay. With `leaveHeld`, channels that are locked or connected keep their values.
void setLocalMatrix(scene::DagNode& transform, const MMatrix& matrix, bool leaveHeld = false);
/// @}

/// An axis-aligned box that grows around points.
struct Bounds {
    std::array<double, 6> sides{1e20, 1e20, 1e20, -1e20, -1e20, -1e20}; ///< least x, y, z, then greatest
    bool empty() const { return sides[0] > sides[3]; }
    void include(const MPoint& p);
    void include(const Bounds& other);
    MVector centre() const;
};

/// Gives a mesh its present form as data of its own and cuts it off its history (undoable).
void deleteHistory(scene::Node& meshShape);

/// The vertices of components, and the mesh they belong to.
struct Points {
    explicit Points(const scene::Selected& components);
    scene::DagNode& shape;
    std::shared_ptr<const mesh::PolyMesh> mesh;
    std::vector<int> vertices; ///< ascending
    MPoint at(int vertex) const;
};

/// Moves the vertices of components to where `to` says, in the space of the world or of the mesh (undoable).
void placePoints(const scene::Selected& components, bool inWorld, const std::function<MPoint(const MPoint&)>& to);

/// The box around all shapes at and below the nodes, after `extra` is applied to the world's coordinates.
Bounds boundsOf(const std::vector<scene::Node*>& nodes, const MMatrix& extra = MMatrix(), bool visibleOnly = false);

} // namespace host::mel
