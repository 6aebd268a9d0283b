#pragma once

#include "files/FileUnits.h"
#include "files/Statement.h"
#include "scene/Scene.h"

#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace host::files {

/// A statement that is well formed and names things that are not known here: an attribute, or a kind of data. A scene
/// file keeps such a statement.
class UnknownHere : public scene::SceneError {
public:
    using scene::SceneError::SceneError;
};

/// Compound attributes that addAttr has begun and whose children are still to come.
class OpenCompounds {
public:
    /// Takes the attribute, or adds it to the compound `parent` of the node. Enters it into the node when nothing of
    /// it is missing. `children` is what the statement says will come.
    void add(scene::Scene& scene, scene::Node& node, scene::AttributePtr attribute, int children,
             const std::string& parent);
    /// Enters compounds with the children that they have got; those that could not be are named in the answer.
    std::vector<std::string> close(scene::Scene& scene);
    bool empty() const { return open_.empty(); }

private:
    struct Open {
        std::weak_ptr<scene::Node> node;
        scene::AttributePtr root;
        std::map<scene::Attribute*, int> missing; ///< compounds of the tree that lack children
    };
    static scene::Attribute* find(scene::Attribute& in, std::string_view name);
    static void enter(scene::Scene& scene, scene::Node& node, const scene::AttributePtr& attribute);
    std::vector<Open> open_;
};

/// What the statements of a scene file or of a script work on.
struct StatementContext {
    scene::Scene& scene;
    FileUnits units;
    /// The node that ".attribute" belongs to; may be null.
    scene::Node* target = nullptr;
    /// Finds nodes by the names that the statements use; empty: the scene's.
    std::function<scene::Node*(std::string_view name)> find;
    OpenCompounds& compounds;
    /// Whether an attribute of a shape may be named through the transform above it.
    bool throughShapes = false;

    scene::Node* findNode(std::string_view name) const;
    /// The node of "node.attribute" or ".attribute", and the part after the dot. Throws SceneError.
    scene::Node& plugNode(std::string_view plug, std::string_view& attribute) const;
};

/// What a createNode statement asks for.
struct CreateRequest {
    std::string type, name, parent;
    bool shared = false, skipSelect = false;

    /// Throws SceneError for unknown flags or a missing type.
    explicit CreateRequest(const Statement& statement);
};

/// @name The statements that scene files and scripts share. They throw SceneError, UnknownHere among them.
/// @{
/// Makes the node, or answers the one that is there when the request is for a shared one. A type that is not known
/// makes a node that stands for its statements: of the kind, or when that is not told a shape if it has a parent.
scene::Node& createNodeStatement(const StatementContext& context, const CreateRequest& request,
                                 std::optional<scene::NodeType::Kind> unknownKind = {});
/// setAttr [flags] plug [values]: sets values and the lock, keyable and channel box states. A plug may be a range
/// ("vt[0:7]"); numbers then fill its elements in order, and memory follows the numbers that are there.
void setAttrStatement(const StatementContext& context, const Statement& statement);
/// addAttr [flags]: adds an attribute to the node.
void addAttrStatement(const StatementContext& context, scene::Node& node, const Statement& statement);
/// The fields of an enumeration, from "red:green=5:blue". Throws SceneError for too many.
std::vector<std::pair<std::string, short>> enumFields(std::string_view text);
/// The words of an addAttr statement that are neither flags nor their values: the names of the nodes.
std::vector<std::string_view> addAttrObjects(const Statement& statement);
/// @}

/// The values of a list: words, then text that is not taken apart.
struct ListValues {
    std::span<const Word> words;
    std::string_view tail;

    bool empty() const { return words.empty() && tail.empty(); }
    /// All as one text, words separated by blanks.
    std::string text() const;
    /// The values as numbers. Throws SceneError for a word that is none.
    template <class T>
    std::vector<T> numbers() const;
};

/// Sets a list of a mesh (its points, edges, faces, normals, UVs, offsets). False when the path is none of these.
bool setMeshList(const StatementContext& context, scene::Node& node, std::string_view path, std::string_view type,
                 const ListValues& values);
/// Sets a list of an animation curve's keys. False when the path is none of these, and while changes are recorded: then
/// each element is to be set for itself.
bool setCurveList(const StatementContext& context, scene::Node& node, std::string_view path, const ListValues& values);

/// "uvSet[0].points[3:8]" taken apart at its range.
struct PlugRange {
    std::string_view array; ///< before the bracket; the whole path when there is no range
    std::string_view rest;  ///< behind the bracket
    int first = 0, last = 0;
    bool isRange = false;

    /// Throws SceneError for a range that is not ascending or out of bounds.
    explicit PlugRange(std::string_view path);
};

} // namespace host::files
