#pragma once

#include "mel/Value.h"

#include <string>

namespace host::scene {
struct Reference;
}

namespace host::mel {

/// What `file` does with references.
/// @{
/// The name of a reference's file, which no other reference answers to: "/p/prop.ma{1}" for the second one to a file.
std::string fileOf(const scene::Reference& reference);
/// The files that the scene refers to itself, in their order.
StringArray referencedFiles();
/// The reference node or the namespace of the reference of a file, a node or a name. Throws Error.
std::string queryReference(const std::string& file, bool node);

struct NewReference {
    std::string nameSpace, node;
};
/// Free names for a reference to the file: after the wanted namespace, or the file.
NewReference namesForReference(const std::string& file, const std::string& wanted);
/// Takes a reference of the scene's own out of it, with all that it brought. This cannot be undone.
void removeReference(const std::string& name);
/// The same for one that is to come back: answers the statements that bring it, which say whether its file is to be
/// read, and may name another one. What the scene has below its nodes waits for them.
std::string withoutReference(const std::string& name, bool load, const std::string& otherFile);
/// @}

} // namespace host::mel
