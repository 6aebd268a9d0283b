#pragma once

#include "mel/Command.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host::mel {

/// The MEL language: parses and runs script text, and keeps global variables, procedures and the table of
/// commands. It knows nothing of scenes: commands are registered from outside.
///
/// Numbers are read and printed independently of the process's locale. Not for use from several threads.
class Interpreter {
public:
    Interpreter();
    ~Interpreter();
    Interpreter(const Interpreter&) = delete;
    Interpreter& operator=(const Interpreter&) = delete;

    /// Runs script text. `file` names it in errors. Answers the value of the last statement that was an
    /// expression or command (None otherwise). Throws Error with message, file and line when a statement fails.
    Value execute(std::string_view text, const std::string& file = {});

    /// Reads the file and runs it (MEL's `source`). Throws Error when it cannot be read.
    Value sourceFile(const std::filesystem::path& file);

    /// Registers a native command; replaces an earlier one of the same name. One that `tellsFlags` makes its
    /// ParsedArguments before it does anything, so that `help` may ask it for its flags.
    void registerCommand(std::string name, CommandFunction function, bool tellsFlags = false);
    void unregisterCommand(const std::string& name);
    bool hasCommand(std::string_view name) const;

    /// Whether a call of this name would find a command, a procedure or a script file that defines one.
    bool isCallable(const std::string& name);

    /// What MEL's `whatIs` answers: "Command", "Mel procedure found in: PATH", "Mel procedure entered
    /// interactively.", "Script found in: PATH", "Unknown".
    std::string whatIs(const std::string& name);

    /// Calls a procedure or command by name.
    Value call(const std::string& name, std::vector<Value> arguments);

    /// Folders that are searched, in order, for NAME.mel on the first call of an unknown procedure NAME, and for
    /// relative names by `source`.
    void setScriptPath(std::vector<std::filesystem::path> folders);
    const std::vector<std::filesystem::path>& scriptPath() const;

    /// Called around every top-level statement of a text that was not itself called from MEL, and around a call()
    /// from outside (for undo chunks). `after` also runs when the statement threw.
    std::function<void()> beforeTopLevelStatement, afterTopLevelStatement;
    /// Called around every native command (for undo entries). `after` also runs when the command threw. The
    /// language's own functions (sin, size, eval...) change no scene and are not reported.
    std::function<void(const std::string&name)> beforeCommand, afterCommand;

    /// Global variables, for hosts and tests. Names are without "$".
    std::optional<Value> globalVariable(const std::string& name) const;
    void setGlobalVariable(const std::string& name, Value value);

    /// The exit code of a script that called `quit`, after which nothing of it runs any more.
    std::optional<int> exitCode() const;

    /// Lets scripts take so many steps from now on; then they fail, whatever they catch. A step is a statement, a turn
    /// of a loop, a call, or 64 characters or elements that one of them works on. Without a limit they may take any.
    void setStepLimit(std::int64_t steps);

    /// Asked while scripts run, from a fifth of a second after the outermost one began, twenty times a second: true
    /// ends it, whatever it catches. It must run no scripts.
    std::function<bool()> stopAsked;

    /// Lets scripts run again after one that called `quit`. @return its exit code, when there was one
    std::optional<int> takeExitCode();

    /// Sets the global string array $argv: the arguments the scripts were started with.
    void setArguments(std::vector<std::string> arguments);

    struct Impl;
    Impl& impl() { return *impl_; }

private:
    std::unique_ptr<Impl> impl_;
};

/// The commands that belong to the language alone: print, warning, error, source, eval, catch and its kin,
/// string, array, maths and file-test functions, whatIs, exists, getenv, putenv.
void registerLanguageCommands(Interpreter& interpreter);

} // namespace host::mel
