#pragma once

#include "scene/References.h"
#include "scene/Scene.h"

#include <string>
#include <string_view>
#include <vector>

/// What scripts and plug-ins do with namespaces. Names come as these write them: from the root with a colon in front,
/// else from the current namespace; those that are answered have no colons at their ends, and the root is "". What is
/// refused throws SceneError, before anything has changed.
namespace host::scene {

std::string withoutColons(std::string_view name);

/// The whole name that the text means, whether there is such a namespace or not.
std::string namespaceNamed(Scene& scene, std::string_view text);
/// The same of one that exists; else of one that exists seen from the root.
std::string existingNamespace(Scene& scene, std::string_view text);
/// Makes a namespace, with those above it. `parent` is a whole name.
std::string addNamespace(Scene& scene, std::string_view text, const std::string& parent);

enum class NamespaceContents { MustBeNone, Delete, ToParent, ToRoot };
void removeNamespace(Scene& scene, const std::string& name, NamespaceContents contents);
/// Gives the namespace another last part. @return its whole name then
std::string renameNamespace(Scene& scene, const std::string& name, std::string_view lastPart);
/// Moves what is in the namespace, and the namespaces below it, into another one. Names that are taken there are an
/// error, or with `force` get a number.
void moveNamespace(Scene& scene, const std::string& from, const std::string& to, bool force);

/// Right below the namespace, or with `below` at any depth, in alphabetic order.
std::vector<std::string> namespacesIn(Scene& scene, const std::string& name, bool below);
/// In the namespace, or with `below` in one below it, too, in the order of their creation.
std::vector<Node*> nodesInNamespace(Scene& scene, const std::string& name, bool below);

} // namespace host::scene
