#pragma once

#include "mel/Value.h"

#include <functional>
#include <initializer_list>
#include <map>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace host::mel {

class Interpreter;

/// A failed command or statement. A command throws it with the message alone; the interpreter adds the place.
class Error : public std::runtime_error {
public:
    explicit Error(const std::string& message, std::string file = {}, int line = 0)
        : std::runtime_error(message), file_(std::move(file)), line_(line) {}
    const std::string& file() const { return file_; }
    int line() const { return line_; } ///< 1-based; 0 when not known yet
    /// The message with its place, as a user is to read it: "file: PATH line N: MESSAGE".
    std::string described() const;
    /// True when the message has been shown to the user already (a command that reported its own failure).
    bool silent = false;

private:
    std::string file_;
    int line_;
};

/// One call of a command: its name and its arguments in order, flags included ("-name" and its values).
struct Call {
    Interpreter& interpreter;
    std::string name;
    std::vector<Value> arguments;
    bool asksForFlags = false; ///< ParsedArguments throws FlagList in place of reading the arguments
};

using CommandFunction = std::function<Value(Call&)>;

/// Describes one flag of a command. `values` is how many arguments follow it outside query mode.
struct FlagSpec {
    const char* shortName; ///< without dash
    const char* longName;
    int values = 0;
    bool valuesInQuery = false; ///< whether the values are expected in query mode, too
};

/// What a command answers that was asked for its flags. Nobody but `help` asks, and catches it.
struct FlagList {
    struct Flag {
        std::string shortName, longName;
        int values;
    };
    std::vector<Flag> flags;
};

FlagList flagList(std::span<const FlagSpec> flags);

/// The arguments of a call, taken apart by a command's flags.
///
/// Flags may stand before, between and behind the objects, may be abbreviated to any unambiguous prefix of their
/// long name, and may be given more than once. A word counts as a flag when it is a text that starts with a dash
/// followed by a letter. The flags query (q) and edit (e) are understood without being listed when
/// `queryAndEdit` is set. A vector or array given to a flag of several values supplies one value an element.
/// Throws Error("Invalid flag: '-xyz'") for an unknown flag, and Error("Flag '-x' must be passed a value") when its
/// values are missing.
class ParsedArguments {
public:
    ParsedArguments(const Call& call, std::initializer_list<FlagSpec> flags, bool queryAndEdit = false)
        : ParsedArguments(call, std::span<const FlagSpec>(flags.begin(), flags.size()), queryAndEdit) {}
    ParsedArguments(const Call& call, std::span<const FlagSpec> flags, bool queryAndEdit);

    bool has(std::string_view shortName) const;
    bool query() const { return has("q"); }
    bool edit() const { return has("e"); }
    /// The i-th value of the flag's occurrence-th use; the flag must be there.
    const Value& value(std::string_view shortName, std::size_t i = 0, std::size_t occurrence = 0) const;
    std::size_t occurrences(std::string_view shortName) const;
    std::string text(std::string_view shortName, std::string fallback = {}) const;
    double number(std::string_view shortName, double fallback) const;
    int integer(std::string_view shortName, int fallback) const;
    bool boolean(std::string_view shortName, bool fallback) const;

    /// The arguments that belong to no flag, in order. Array values are kept as one argument.
    const std::vector<Value>& objects() const { return objects_; }
    /// The same with arrays flattened and everything turned to text: the usual list of object names.
    StringArray names() const;

private:
    std::map<std::string, std::vector<std::vector<Value>>, std::less<>> flags_;
    std::vector<Value> objects_;
};

} // namespace host::mel
