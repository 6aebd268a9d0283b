#pragma once

#include "mel/Ast.h"
#include "mel/Interpreter.h"
#include "mel/OpenFile.h"

#include <chrono>
#include <cstdint>
#include <deque>
#include <limits>
#include <random>
#include <set>
#include <unordered_map>

namespace host::mel {

/// The arguments of one of the language's own functions. A variable given as argument is passed itself, so that
/// arrays are neither copied nor out of a function's reach (tokenize fills one).
struct Arguments {
    Interpreter& interpreter;
    const std::string& name;
    std::vector<Value*> values;
    bool asksForFlags = false; ///< as a Call's

    std::size_t count() const { return values.size(); }
    const Value& operator[](std::size_t i) const { return *values[i]; }
    std::string text(std::size_t i) const { return values[i]->toString(); }
    double number(std::size_t i) const { return values[i]->toFloat(); }
    int integer(std::size_t i) const { return values[i]->toInt(); }
    /// Throws the usual Error unless there are between `least` and `most` arguments.
    void expect(std::size_t least, std::size_t most) const;
    void expect(std::size_t exactly) const { expect(exactly, exactly); }
    /// For functions with flags: the arguments as a command sees them.
    Call asCall() const;
};

using LanguageFunction = Value (*)(Arguments&);

struct Command {
    CommandFunction function;            ///< registered from outside, or
    LanguageFunction language = nullptr; ///< one of the language's own
    bool tellsFlags = false;
};

struct Interpreter::Impl {
    explicit Impl(Interpreter& owner) : owner(owner) {}
    ~Impl();

    Interpreter& owner;
    std::map<std::string, std::shared_ptr<Command>, std::less<>> commands;
    ProcedureTable procedures;
    std::map<std::string, std::unique_ptr<FileScope>, std::less<>> scopes; ///< by file; "" for what is entered
    std::unordered_map<std::string, std::unique_ptr<Variable>> globals;    ///< never removed: code points to them
    std::vector<std::filesystem::path> scriptPath;
    std::set<std::string> searched; ///< script files that were run in search of a procedure
    int depth = 0;                  ///< of texts and procedures that are running
    std::int64_t stepsLeft = 0;     ///< of this turn, before somebody may stop the script
    std::int64_t stepsBehind = std::numeric_limits<std::int64_t>::max(); ///< of later turns
    bool batch = true;                                ///< whether there is no window: what `about -batch` answers
    bool stopped = false;                             ///< by stopAsked; until all of it has ended
    std::chrono::steady_clock::time_point nextLook{}; ///< when stopAsked is asked next

    std::mt19937 random{0x4f52564f};
    std::map<int, std::unique_ptr<OpenFile>> files;

    /// Throws Error when the steps are used up, or somebody stops the script.
    void spend(std::int64_t steps) {
        if (stepsLeft < steps)
            spendOfNextTurn(steps);
        else
            stepsLeft -= steps;
    }
    void spendOfNextTurn(std::int64_t steps);
    /// Throws Error when somebody stops the script.
    void look();
    /// Begins an outermost text or call.
    void begin();
    [[noreturn]] void outOfSteps();

    struct Deferred {
        std::string text;
        int delay; ///< 0 to 2; the higher ones wait for the lower ones
    };
    std::deque<Deferred> deferred; ///< what evalDeferred keeps for the end of the outermost text, in order
    std::optional<int> exitCode;   ///< since a script called `quit`

    Variable& global(const std::string& name);
    /// One that `tellsFlags` makes its ParsedArguments before it does anything.
    void addLanguageFunction(const char* name, LanguageFunction function, bool tellsFlags = false);

    Value runText(std::string_view text, const std::string& file);
    Procedure* findProcedure(std::string_view name, const FileScope* from) const;
    std::optional<std::filesystem::path> findScript(const std::string& name) const;
    /// The procedure of that name, its script file being run first where it must; null when there is none.
    Procedure* autoLoad(const std::string& name);
    Value callValues(const std::string& name, std::vector<Value> arguments);
    Value runCommand(const std::shared_ptr<Command>& command, const std::string& name, std::vector<Value> arguments);
    Value runLanguage(const Command& command, Arguments& arguments);
    /// `arguments` are the parameters' values already, in the first of the procedure's slots.
    Value runProcedure(const std::shared_ptr<Procedure>& procedure, std::vector<Variable>& locals);
};

/// What running code sees.
struct Frame {
    Interpreter::Impl& impl;
    const FileScope& scope;
    Variable* locals;
    Value returned;
};

/// Adds the place to an error that has none, and passes it on. To be called in a catch block.
[[noreturn]] void rethrowAt(const FileScope& scope, int line);

/// Counts a running text or procedure; throws the Error of an endless recursion.
struct DepthCount {
    DepthCount(Interpreter::Impl& impl, const std::string& what);
    ~DepthCount() { --impl.depth; }
    Interpreter::Impl& impl;
};

/// How many characters a text has, or elements an array.
int melSize(const Value& v);
/// The steps of working on a value.
inline std::int64_t stepsFor(const Value& v) { return 1 + melSize(v) / 64; }

/// @name The language's functions by theme
/// @{
void addLanguageBasics(Interpreter::Impl& impl);
void addMathFunctions(Interpreter::Impl& impl);
void addStringFunctions(Interpreter::Impl& impl);
void addArrayFunctions(Interpreter::Impl& impl);
void addFileFunctions(Interpreter::Impl& impl);
/// @}

} // namespace host::mel
