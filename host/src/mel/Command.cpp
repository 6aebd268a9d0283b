#include "mel/Command.h"

#include "base/Letters.h"

namespace host::mel {
namespace {

constexpr FlagSpec kQuery{"q", "query"}, kEdit{"e", "edit"};

/// The flag's name without dash, or nothing when the argument is no flag.
std::optional<std::string_view> flagName(const Value& argument) {
    auto text = argument.get<std::string>();
    if (!text || text->size() < 2 || (*text)[0] != '-' || !isLetter((*text)[1])) return std::nullopt;
    return std::string_view(*text).substr(1);
}

class FlagTable {
public:
    FlagTable(std::span<const FlagSpec> flags, bool queryAndEdit) : flags_(flags.begin(), flags.end()) {
        if (queryAndEdit) flags_.insert(flags_.end(), {kQuery, kEdit});
    }

    /// Exact names win over abbreviations; an abbreviation must fit one long name only.
    const FlagSpec* find(std::string_view name) const {
        for (const FlagSpec& flag : flags_)
            if (name == flag.shortName || name == flag.longName) return &flag;
        const FlagSpec* found = nullptr;
        for (const FlagSpec& flag : flags_)
            if (std::string_view(flag.longName).starts_with(name)) {
                if (found) return nullptr;
                found = &flag;
            }
        return found;
    }

    FlagList list() const { return flagList(flags_); }

private:
    std::vector<FlagSpec> flags_;
};

void spread(const Value& value, std::vector<Value>& out) {
    if (auto a = value.get<StringArray>())
        for (const auto& e : *a) out.emplace_back(e);
    else if (auto ints = value.get<IntArray>())
        for (int e : *ints) out.emplace_back(e);
    else if (value.isArray() || value.type() == Value::Type::Vector)
        for (double e : value.toFloatArray()) out.emplace_back(e);
    else
        out.push_back(value);
}

} // namespace

std::string Error::described() const {
    std::string out;
    if (!file_.empty()) out += "file: " + file_ + ' ';
    if (line_ > 0) out += "line " + std::to_string(line_) + ": ";
    return out + what();
}

FlagList flagList(std::span<const FlagSpec> flags) {
    FlagList all;
    for (const FlagSpec& flag : flags) all.flags.push_back({flag.shortName, flag.longName, flag.values});
    return all;
}

ParsedArguments::ParsedArguments(const Call& call, std::span<const FlagSpec> flags, bool queryAndEdit) {
    const FlagTable table(flags, queryAndEdit);
    if (call.asksForFlags) throw table.list();
    const std::vector<Value>& arguments = call.arguments;
    bool querying = false;
    if (queryAndEdit)
        for (const Value& argument : arguments)
            if (auto name = flagName(argument); name && (*name == "q" || *name == "query")) querying = true;

    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const auto name = flagName(arguments[i]);
        if (!name) {
            objects_.push_back(arguments[i]);
            continue;
        }
        const FlagSpec* flag = table.find(*name);
        if (!flag) throw Error("Invalid flag: '-" + std::string(*name) + "'");
        std::vector<Value> values;
        const std::size_t wanted = querying && !flag->valuesInQuery ? 0 : static_cast<std::size_t>(flag->values);
        while (values.size() < wanted) {
            const Value* next = i + 1 < arguments.size() ? &arguments[i + 1] : nullptr;
            const auto nextName = next ? flagName(*next) : std::nullopt;
            if (!next || (nextName && table.find(*nextName)))
                throw Error("Flag '-" + std::string(*name) + "' must be passed " +
                            (wanted == 1 ? "a value" : std::to_string(wanted) + " values"));
            if (wanted > 1)
                spread(*next, values);
            else
                values.push_back(*next);
            ++i;
        }
        flags_[flag->shortName].push_back(std::move(values));
    }
}

bool ParsedArguments::has(std::string_view shortName) const { return flags_.find(shortName) != flags_.end(); }

std::size_t ParsedArguments::occurrences(std::string_view shortName) const {
    auto found = flags_.find(shortName);
    return found == flags_.end() ? 0 : found->second.size();
}

const Value& ParsedArguments::value(std::string_view shortName, std::size_t i, std::size_t occurrence) const {
    auto found = flags_.find(shortName);
    if (found == flags_.end() || occurrence >= found->second.size() || i >= found->second[occurrence].size())
        throw Error("Flag '-" + std::string(shortName) + "' must be passed a value");
    return found->second[occurrence][i];
}

std::string ParsedArguments::text(std::string_view shortName, std::string fallback) const {
    return has(shortName) ? value(shortName).toString() : fallback;
}

double ParsedArguments::number(std::string_view shortName, double fallback) const {
    return has(shortName) ? value(shortName).toFloat() : fallback;
}

int ParsedArguments::integer(std::string_view shortName, int fallback) const {
    return has(shortName) ? value(shortName).toInt() : fallback;
}

bool ParsedArguments::boolean(std::string_view shortName, bool fallback) const {
    return has(shortName) ? value(shortName).toBool() : fallback;
}

StringArray ParsedArguments::names() const {
    StringArray out;
    for (const Value& object : objects_) {
        StringArray part = object.toStringArray();
        out.insert(out.end(), std::make_move_iterator(part.begin()), std::make_move_iterator(part.end()));
    }
    return out;
}

} // namespace host::mel
