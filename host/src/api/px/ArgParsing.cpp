#include "api/px/ArgParsing.h"

#include "api/px/ArgListAccess.h"
#include "base/Letters.h"
#include "base/NumberText.h"
#include "values/Text.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>

namespace host::api {
namespace {

std::string_view withoutDash(std::string_view name) { return name.starts_with('-') ? name.substr(1) : name; }

/// The flag's name without dash, or nothing when the argument is no flag.
std::optional<std::string_view> flagName(const Argument& argument) {
    const auto* text = std::get_if<std::string>(&argument);
    if (!text || text->size() < 2 || (*text)[0] != '-' || !isLetter((*text)[1])) return std::nullopt;
    return std::string_view(*text).substr(1);
}

constexpr int queryFlag = -2, editFlag = -3, unknownFlag = -1, ambiguousFlag = -4;

/// The flag that a name or the start of a long name means.
int lookUp(const SyntaxTable& syntax, std::string_view name) {
    if (const int exact = syntax.find(name); exact >= 0) return exact;
    if (syntax.query && (name == "q" || name == "query")) return queryFlag;
    if (syntax.edit && (name == "e" || name == "edit")) return editFlag;
    int found = unknownFlag;
    const auto consider = [&](std::string_view longName, int flag) {
        if (longName.starts_with(name)) found = found == unknownFlag ? flag : ambiguousFlag;
    };
    for (std::size_t i = 0; i < syntax.flags.size(); ++i) consider(syntax.flags[i].longName, static_cast<int>(i));
    if (syntax.query) consider("query", queryFlag);
    if (syntax.edit) consider("edit", editFlag);
    return found;
}

/// The call's words: arrays give one an element.
std::vector<Argument> words(const MArgList& list) {
    std::vector<Argument> all;
    ArgListAccess::each(list, [&](const auto& argument) {
        using T = std::decay_t<decltype(argument)>;
        if constexpr (std::is_arithmetic_v<T>)
            all.emplace_back(static_cast<double>(argument));
        else if constexpr (std::is_same_v<T, MString>)
            all.emplace_back(toText(argument));
        else if constexpr (std::is_same_v<T, MStringArray>)
            for (const MString& s : argument) all.emplace_back(toText(s));
        else
            for (const auto number : argument) all.emplace_back(static_cast<double>(number));
    });
    return all;
}

bool isTruth(const std::string& text) {
    constexpr const char* known[] = {"on", "off", "true", "false", "yes", "no"};
    return std::any_of(std::begin(known), std::end(known), [&](const char* word) { return text == word; });
}

std::optional<double> wholeNumber(std::string_view text) {
    const auto value = takeDouble(text);
    return text.empty() ? value : std::nullopt;
}

const char* kindOf(MSyntax::MArgType type) {
    switch (type) {
    case MSyntax::kBoolean: return "a boolean";
    case MSyntax::kLong:
    case MSyntax::kUnsigned: return "an integer";
    case MSyntax::kString:
    case MSyntax::kSelectionItem: return "a string";
    default: return "a number";
    }
}

/// Brings the word to what the type holds; false when it is none.
bool fits(Argument& word, MSyntax::MArgType type) {
    if (type == MSyntax::kString || type == MSyntax::kSelectionItem) return true; // numbers are texts, too
    if (const auto* text = std::get_if<std::string>(&word)) {
        if (type == MSyntax::kBoolean && isTruth(*text)) {
            word = *text == "on" || *text == "true" || *text == "yes" ? 1.0 : 0.0;
        } else if (const auto number = wholeNumber(*text)) {
            word = *number;
        } else {
            return false;
        }
    }
    const double number = std::get<double>(word);
    if (type == MSyntax::kLong) return number >= INT32_MIN && number <= INT32_MAX;
    if (type == MSyntax::kUnsigned) return number >= 0 && number <= UINT32_MAX;
    return true;
}

std::string shown(const Argument& word) {
    const auto* text = std::get_if<std::string>(&word);
    return text ? "\"" + *text + "\"" : "a number that is out of range";
}

} // namespace

int SyntaxTable::find(std::string_view name) const {
    name = withoutDash(name);
    for (std::size_t i = 0; i < flags.size(); ++i)
        if (name == flags[i].shortName || name == flags[i].longName) return static_cast<int>(i);
    return -1;
}

std::string parseCall(const SyntaxTable& syntax, const MArgList& list, ParsedCall& call) {
    call = ParsedCall{syntax, {}, {}, {}, false, false};
    std::vector<Argument> all = words(list);
    for (const Argument& word : all)
        if (const auto name = flagName(word)) {
            const int flag = lookUp(syntax, *name);
            call.query |= flag == queryFlag;
            call.edit |= flag == editFlag;
        }
    if (call.query && call.edit) return "Flags '-query' and '-edit' cannot be used together.";

    std::vector<Argument> rest;
    for (std::size_t i = 0; i < all.size(); ++i) {
        const auto name = flagName(all[i]);
        if (!name) {
            rest.push_back(all[i]);
            continue;
        }
        const std::string given = "-" + std::string(*name);
        const int found = lookUp(syntax, *name);
        if (found == ambiguousFlag) return "Ambiguous flag: '" + given + "'";
        if (found == unknownFlag) return "Invalid flag: '" + given + "'";
        if (found < 0) continue;
        const SyntaxTable::Flag& flag = syntax.flags[static_cast<std::size_t>(found)];
        if (!flag.multiUse && std::any_of(call.uses.begin(), call.uses.end(), [&](auto& u) { return u.flag == found; }))
            return "Flag '" + given + "' cannot be used more than once.";
        ParsedCall::Use use{found, static_cast<unsigned>(i), {}};
        const bool takes = !call.query || flag.queryArguments;
        const bool needed = takes && !(call.query && flag.queryArgumentsOptional);
        const std::size_t wanted = takes ? flag.arguments.size() : 0;
        while (use.arguments.size() < wanted) {
            const auto next = i + 1 < all.size() ? flagName(all[i + 1]) : std::nullopt;
            const bool ends = i + 1 >= all.size() || (next && lookUp(syntax, *next) != unknownFlag);
            const MSyntax::MArgType type = flag.arguments[use.arguments.size()];
            if (ends || (!needed && use.arguments.empty() && !fits(all[i + 1], type))) {
                if (!needed && use.arguments.empty()) break;
                return "Flag '" + given + "' must be passed " +
                       (wanted == 1 ? std::string(kindOf(type)) + " argument" : std::to_string(wanted) + " arguments");
            }
            Argument word = all[++i];
            if (!fits(word, type))
                return "Invalid argument of flag '" + given + "': expected " + kindOf(type) + ", got " + shown(word) +
                       ".";
            use.arguments.push_back(std::move(word));
        }
        call.uses.push_back(std::move(use));
    }

    std::size_t taken = 0;
    for (; taken < syntax.arguments.size() && taken < rest.size(); ++taken) {
        if (!fits(rest[taken], syntax.arguments[taken]))
            return "Invalid argument " + std::to_string(taken + 1) + ": expected " + kindOf(syntax.arguments[taken]) +
                   ", got " + shown(rest[taken]) + ".";
        call.arguments.push_back(rest[taken]);
    }
    // What is asked for by a query or edited is named, but the command's own arguments are not repeated.
    if (taken < syntax.arguments.size() && !call.query) return "Not enough objects or values.";
    const bool objects = syntax.format == MSyntax::kStringObjects || syntax.format == MSyntax::kSelectionList;
    if (!objects && taken < rest.size()) return "Too many objects or values.";
    for (; taken < rest.size(); ++taken) {
        const auto* text = std::get_if<std::string>(&rest[taken]);
        call.objects.push_back(text ? *text : toText(MString() + std::get<double>(rest[taken])));
    }
    return {};
}

} // namespace host::api
