#pragma once

#include <maya/MArgList.h>
#include <maya/MString.h>
#include <maya/MSyntax.h>

#include <climits>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace host::api {

/// What a syntax holds. The flags query and edit are not among its flags.
struct SyntaxTable {
    struct Flag {
        std::string shortName, longName; ///< without dash
        std::vector<MSyntax::MArgType> arguments;
        bool multiUse = false, queryArguments = false, queryArgumentsOptional = false;
    };
    std::vector<Flag> flags;
    std::vector<MSyntax::MArgType> arguments;
    MSyntax::MObjectFormat format = MSyntax::kNone;
    unsigned minObjects = 0, maxObjects = UINT_MAX;
    bool selectionAsDefault = false, query = false, edit = false;

    /// By its exact name, with or without dash; -1 when there is none.
    int find(std::string_view name) const;
};

/// A number as the script gave it, or a text.
using Argument = std::variant<double, std::string>;

/// A call taken apart.
struct ParsedCall {
    struct Use {
        int flag; ///< its place in the table
        unsigned position;
        std::vector<Argument> arguments;
    };
    SyntaxTable syntax;
    std::vector<Use> uses; ///< in the order of the call
    std::vector<Argument> arguments;
    std::vector<std::string> objects;
    bool query = false, edit = false;
};

/// Takes the arguments apart; a call that does not keep to the syntax gets a text for the user, without which it does.
std::string parseCall(const SyntaxTable& syntax, const MArgList& list, ParsedCall& call);

} // namespace host::api
