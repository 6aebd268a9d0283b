#pragma once

#include "mel/Command.h"
#include "scene/Attribute.h"

#include <string>

/// How the commands that ask about attributes put their properties.
namespace host::mel {

/// "translateX" becomes "Translate X", unless the attribute has a nice name of its own.
std::string niceName(const scene::Attribute& a);
/// The name that -attributeType answers: data of all kinds is "typed".
std::string attributeTypeName(const scene::Attribute& a);
/// The numbers of the default, in the user's units; none for attributes that are no numbers.
FloatArray defaultsOf(const scene::Attribute& a);

/// An enumeration's fields: "red:green=5:blue".
std::string enumText(const scene::Attribute& a);

/// addAttr -query and -edit: asks for properties of any attribute, changes those of added ones (undoable).
Value editOrQueryAddedAttribute(Call& call);

} // namespace host::mel
