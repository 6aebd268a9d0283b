#include "mel/Interpreter.h"

#include "base/TextFile.h"
#include "mel/Execution.h"
#include "mel/Parser.h"
#include "mel/StackGuard.h"

#include <algorithm>
#include <utility>

namespace host::mel {
namespace {

constexpr int kDepthLimit = 1000;
constexpr std::int64_t kStepsOfTurn = 256;
constexpr std::chrono::milliseconds kFirstLook{200}, kLookEvery{50};

/// Calls a hook at the end of a block, also when that ends by an error.
struct AtEnd {
    const std::function<void()> hook;
    ~AtEnd() {
        if (!hook) return;
        try {
            hook();
        } catch (...) { // the statement's own outcome counts
        }
    }
};

/// Texts that a script defers run when the outermost one has ended well; those of a failed one are forgotten.
class Deferral {
public:
    explicit Deferral(Interpreter::Impl& impl) : impl_(impl), outermost_(impl.depth == 0) {
        if (!outermost_) return;
        impl_.deferred.clear();
        impl_.begin();
    }
    void run() const {
        while (outermost_ && !impl_.deferred.empty()) {
            const std::string text = std::move(impl_.deferred.front().text);
            impl_.deferred.pop_front();
            impl_.runText(text, {});
        }
    }

private:
    Interpreter::Impl& impl_;
    bool outermost_;
};

bool isFile(const std::filesystem::path& path) {
    std::error_code status;
    return std::filesystem::is_regular_file(path, status);
}

} // namespace

void rethrowAt(const FileScope& scope, int line) {
    try {
        throw;
    } catch (const Error& e) {
        Error placed(e.what(), scope.file, line);
        placed.silent = e.silent;
        throw placed;
    } catch (const std::exception& e) {
        throw Error(e.what(), scope.file, line);
    }
}

DepthCount::DepthCount(Interpreter::Impl& impl, const std::string& what) : impl(impl) {
    if (impl.depth >= kDepthLimit) throw Error("Stack overflow: " + what + " is nested too deeply.");
    checkStack();
    ++impl.depth;
}

Variable& Interpreter::Impl::global(const std::string& name) {
    auto& cell = globals[name];
    if (!cell) cell = std::make_unique<Variable>();
    return *cell;
}

void Interpreter::Impl::addLanguageFunction(const char* name, LanguageFunction function, bool tellsFlags) {
    commands[name] = std::make_shared<Command>(Command{{}, function, tellsFlags});
}

Value Interpreter::Impl::runText(std::string_view text, const std::string& file) {
    const bool outermost = depth == 0;
    DepthCount count(*this, file.empty() ? "the script" : file);
    auto& scope = scopes[file];
    if (!scope) scope = std::make_unique<FileScope>(FileScope{file, {}});
    const auto script = parseScript(text, *scope, [this](std::string_view name) -> const Variable* {
        auto found = globals.find(std::string(name));
        return found == globals.end() ? nullptr : found->second.get();
    });
    for (const auto& procedure : script->procedures)
        (procedure->isGlobal ? procedures : scope->procedures)[procedure->name] = procedure;

    std::vector<Variable> locals(static_cast<std::size_t>(script->slots));
    Frame frame{*this, *scope, locals.data(), {}};
    Value result;
    for (const StatementPointer& statement : script->statements) {
        if (outermost && owner.beforeTopLevelStatement) owner.beforeTopLevelStatement();
        AtEnd end{outermost ? owner.afterTopLevelStatement : nullptr};
        try {
            if (statement->executeForResult(frame, result) == Flow::Return) {
                result = std::move(frame.returned);
                break;
            }
        } catch (const Error& e) {
            if (e.line() > 0) throw;
            rethrowAt(*scope, statement->line);
        } catch (const std::exception&) {
            rethrowAt(*scope, statement->line);
        }
    }
    return result;
}

Procedure* Interpreter::Impl::findProcedure(std::string_view name, const FileScope* from) const {
    auto in = [&](const ProcedureTable& table) -> Procedure* {
        auto found = table.find(name);
        return found == table.end() ? nullptr : found->second.get();
    };
    Procedure* local = from && !from->procedures.empty() ? in(from->procedures) : nullptr;
    return local ? local : in(procedures);
}

std::optional<std::filesystem::path> Interpreter::Impl::findScript(const std::string& name) const {
    if (name.empty() || name.find('\0') != std::string::npos) return std::nullopt;
    for (const auto& folder : scriptPath)
        if (isFile(folder / name)) return folder / name;
    return std::nullopt;
}

Procedure* Interpreter::Impl::autoLoad(const std::string& name) {
    const auto file = findScript(name + ".mel");
    if (!file || !searched.insert(file->string()).second) return nullptr;
    try {
        owner.sourceFile(*file);
    } catch (...) {
        searched.erase(file->string()); // once it is mended it may be tried again
        throw;
    }
    return findProcedure(name, nullptr);
}

Value Interpreter::Impl::runCommand(const std::shared_ptr<Command>& command, const std::string& name,
                                    std::vector<Value> arguments) {
    if (command->language) {
        Arguments passed{owner, name, {}};
        for (Value& v : arguments) passed.values.push_back(&v);
        return runLanguage(*command, passed);
    }
    spend(1);
    look(); // a command may take long
    DepthCount count(*this, name);
    if (owner.beforeCommand) owner.beforeCommand(name);
    AtEnd end{owner.afterCommand ? std::function<void()>([&] { owner.afterCommand(name); }) : nullptr};
    Call call{owner, name, std::move(arguments)};
    return command->function(call);
}

Value Interpreter::Impl::runLanguage(const Command& command, Arguments& arguments) {
    for (const Value* v : arguments.values) spend(stepsFor(*v));
    Value result = command.language(arguments);
    spend(stepsFor(result));
    return result;
}

Value Interpreter::Impl::runProcedure(const std::shared_ptr<Procedure>& procedure, std::vector<Variable>& locals) {
    DepthCount count(*this, "the procedure \"" + procedure->name + '"');
    Frame frame{*this, *procedure->scope, locals.data(), {}};
    procedure->body.execute(frame);
    if (procedure->returns == Value::Type::None) return {};
    if (frame.returned.isNone()) return zeroValue(procedure->returns);
    return converted(std::move(frame.returned), procedure->returns);
}

Value Interpreter::Impl::callValues(const std::string& name, std::vector<Value> arguments) {
    auto& entered = scopes[""];
    if (!entered) entered = std::make_unique<FileScope>();
    Procedure* procedure = findProcedure(name, entered.get());
    if (!procedure) {
        if (auto command = commands.find(name); command != commands.end()) {
            const auto held = command->second;
            return runCommand(held, name, std::move(arguments));
        }
        procedure = autoLoad(name);
    }
    if (!procedure) throw Error("Cannot find procedure \"" + name + "\".");
    const auto held = procedure->shared_from_this();
    if (arguments.size() != held->parameters.size()) throw Error("Wrong number of arguments on call to " + name + '.');
    std::vector<Variable> locals(static_cast<std::size_t>(held->slots));
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const Procedure::Parameter& parameter = held->parameters[i];
        locals[i].reset(parameter.type, parameter.rows, parameter.columns);
        locals[i].assign(std::move(arguments[i]));
    }
    return runProcedure(held, locals);
}

Interpreter::Impl::~Impl() = default;

Interpreter::Interpreter() : impl_(std::make_unique<Impl>(*this)) {}
Interpreter::~Interpreter() = default;

Value Interpreter::execute(std::string_view text, const std::string& file) {
    const Deferral deferral(*impl_);
    Value result = impl_->runText(text, file);
    deferral.run();
    return result;
}

Value Interpreter::sourceFile(const std::filesystem::path& file) {
    std::string content;
    try {
        content = files::readFile(file);
    } catch (const files::FileError& e) {
        throw Error(std::string("Cannot open the file: ") + e.what() + '.');
    }
    if (content.starts_with("\xEF\xBB\xBF")) content.erase(0, 3);
    return execute(content, file.string());
}

void Interpreter::registerCommand(std::string name, CommandFunction function, bool tellsFlags) {
    impl_->commands[std::move(name)] = std::make_shared<Command>(Command{std::move(function), nullptr, tellsFlags});
}

void Interpreter::unregisterCommand(const std::string& name) { impl_->commands.erase(name); }

bool Interpreter::hasCommand(std::string_view name) const {
    return impl_->commands.find(name) != impl_->commands.end();
}

bool Interpreter::isCallable(const std::string& name) {
    if (hasCommand(name) || impl_->findScript(name + ".mel")) return true;
    auto entered = impl_->scopes.find("");
    return impl_->findProcedure(name, entered == impl_->scopes.end() ? nullptr : entered->second.get()) != nullptr;
}

std::string Interpreter::whatIs(const std::string& name) {
    auto entered = impl_->scopes.find("");
    if (const Procedure* procedure =
            impl_->findProcedure(name, entered == impl_->scopes.end() ? nullptr : entered->second.get()))
        return procedure->scope->file.empty() ? "Mel procedure entered interactively."
                                              : "Mel procedure found in: " + procedure->scope->file;
    if (hasCommand(name)) return "Command";
    if (auto file = impl_->findScript(name + ".mel")) return "Script found in: " + file->string();
    return "Unknown";
}

Value Interpreter::call(const std::string& name, std::vector<Value> arguments) {
    const bool outermost = impl_->depth == 0;
    const Deferral deferral(*impl_);
    Value result;
    {
        if (outermost && beforeTopLevelStatement) beforeTopLevelStatement();
        AtEnd end{outermost ? afterTopLevelStatement : nullptr};
        DepthCount count(*impl_, name);
        result = impl_->callValues(name, std::move(arguments));
    }
    deferral.run();
    return result;
}

void Interpreter::setScriptPath(std::vector<std::filesystem::path> folders) {
    impl_->scriptPath = std::move(folders);
    impl_->searched.clear();
}

const std::vector<std::filesystem::path>& Interpreter::scriptPath() const { return impl_->scriptPath; }

std::optional<Value> Interpreter::globalVariable(const std::string& name) const {
    auto found = impl_->globals.find(name);
    if (found == impl_->globals.end() || found->second->type == Value::Type::None) return std::nullopt;
    return found->second->value;
}

void Interpreter::setGlobalVariable(const std::string& name, Value value) {
    if (value.isNone()) return;
    impl_->global(name).assign(std::move(value));
}

void Interpreter::setStepLimit(std::int64_t steps) {
    impl_->stepsLeft = 0;
    impl_->stepsBehind = steps;
}

void Interpreter::Impl::begin() {
    stopped = false;
    nextLook = std::chrono::steady_clock::now() + kFirstLook;
}

void Interpreter::Impl::look() {
    if (!stopped && owner.stopAsked && std::chrono::steady_clock::now() >= nextLook) {
        stopped = owner.stopAsked();
        nextLook = std::chrono::steady_clock::now() + kLookEvery;
    }
    if (stopped) throw Error("The script was stopped.");
}

void Interpreter::Impl::spendOfNextTurn(std::int64_t steps) {
    stepsBehind += std::exchange(stepsLeft, 0);
    look();
    if (stepsBehind < steps) outOfSteps();
    stepsBehind -= steps;
    stepsLeft = std::min(stepsBehind, kStepsOfTurn);
    stepsBehind -= stepsLeft;
}

void Interpreter::Impl::outOfSteps() {
    stepsLeft = stepsBehind = 0;
    throw Error(exitCode ? "The script has called quit." : "The script takes too many steps.");
}

std::optional<int> Interpreter::exitCode() const { return impl_->exitCode; }

std::optional<int> Interpreter::takeExitCode() {
    if (impl_->exitCode) setStepLimit(std::numeric_limits<std::int64_t>::max());
    return std::exchange(impl_->exitCode, std::nullopt);
}

void Interpreter::setArguments(std::vector<std::string> arguments) {
    setGlobalVariable("argv", StringArray(std::move(arguments)));
}

} // namespace host::mel
