#pragma once

#include "files/Statement.h"

#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace host::files {

/// What a first look at a file finds: that its syntax is whole, and what tells transforms from shapes.
struct SceneSurvey {
    std::vector<RawList> lists;              ///< for the scanner that reads the file again
    std::unordered_set<std::string> parents; ///< names and paths of nodes that others are put below
    std::vector<bool> transforms;            ///< by createNode statement: whether a transform's values follow

    /// Throws SyntaxError.
    explicit SceneSurvey(std::string_view text);
    /// Whether a node of that path has children: a file gives parents the shortest path that is theirs alone.
    bool isParent(std::string_view fullPath) const;
};

} // namespace host::files
