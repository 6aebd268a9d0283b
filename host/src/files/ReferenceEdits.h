#pragma once

#include "files/Statement.h"
#include "scene/References.h"

#include <string>
#include <vector>

namespace host::files {

/// Takes the edits of a setAttr statement of the type "dataReferenceEdits" apart. Throws SceneError when they are not
/// what such a statement holds.
std::vector<scene::ReferenceEdit> readReferenceEdits(const Statement& setAttr);

/// The statement that says them, for the reference node of that name; empty when there are none.
std::string referenceEditsText(const std::string& referenceNode, const std::vector<scene::ReferenceEdit>& edits);

/// What a setAttr statement of the writer's says of a plug, as an edit has it: for `setAttr -k on ".tx" 5;` the words
/// `-k on` and `5`. `keyword` is what the statement begins with.
std::string editArguments(std::string_view statement, std::string_view keyword);

/// The statement that an edit stands for; empty for kinds that are not known here.
std::string editStatement(const scene::ReferenceEdit& edit);

} // namespace host::files
