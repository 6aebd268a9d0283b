#include "mel/Parser.h"

#include "mel/Command.h"
#include "mel/ScriptParser.h"

namespace host::mel {

std::shared_ptr<Script> ScriptParser::parse() {
    scopes_.emplace_back();
    moveTo({0, 1});
    while (token_.kind != Kind::End) {
        if (StatementPointer statement = parseStatement()) script_->statements.push_back(std::move(statement));
    }
    script_->slots = slots_;
    return script_;
}

void ScriptParser::fail(const std::string& message, int line) const {
    throw Error(message, fileScope_.file, line > 0 ? line : token_.line);
}

void ScriptParser::failHere() const {
    if (token_.kind == Kind::End) fail("Syntax error: unexpected end of the text");
    fail("Syntax error: unexpected \"" + std::string(token_.kind == Kind::Variable ? "$" : "") +
         std::string(token_.spelling.substr(0, 80)) + "\"");
}

void ScriptParser::close(std::string_view op, std::string_view opener, int line) {
    if (token_.kind == Kind::End)
        fail("Syntax error: unexpected end of the text, \"" + std::string(opener) + "\" is never closed", line);
    expect(op);
}

void ScriptParser::endStatement() {
    if (token_.kind != Kind::End)
        expect(";");
    else if (blockDepth_ > 0)
        close(";", "{", blockLine_);
}

std::optional<ScriptParser::Known> ScriptParser::find(const std::string& name) const {
    for (auto scope = scopes_.rbegin(); scope != scopes_.rend(); ++scope)
        if (auto found = scope->find(name); found != scope->end()) return found->second;
    if (inProcedure_) return std::nullopt;
    if (const Variable* global = globals_(name)) return Known{-1, global->type, global->rows, global->columns};
    return std::nullopt;
}

ScriptParser::Known ScriptParser::declare(const std::string& name, Type type, bool global, int rows, int columns,
                                          int line) {
    global = global || (scopes_.size() == 1 && !inProcedure_);
    Type before = Type::None;
    if (auto found = scopes_.back().find(name); found != scopes_.back().end())
        before = found->second.type;
    else if (const Variable* existing = global ? globals_(name) : nullptr)
        before = existing->type;
    if (before != Type::None && type != Type::None && before != type)
        fail("Invalid redeclaration of variable \"$" + name + "\" as a different type.", line);
    Known known{global ? -1 : slots_++, type, rows, columns};
    scopes_.back()[name] = known;
    return known;
}

std::unique_ptr<VariableUse> ScriptParser::use(const std::string& name, const Known& known, int line) {
    auto node = make<VariableUse>(line);
    node->name = name;
    node->slot = known.slot;
    node->type = known.type;
    node->rows = known.rows;
    node->columns = known.columns;
    return node;
}

std::unique_ptr<VariableUse> ScriptParser::parseVariable() {
    const std::string name(token_.spelling);
    auto known = find(name);
    if (!known) fail("\"$" + name + "\" is an undeclared variable.");
    auto node = use(name, *known, token_.line);
    advance();
    return node;
}

std::shared_ptr<Script> parseScript(std::string_view text, FileScope& scope, const GlobalLookup& globals) {
    try {
        return ScriptParser(text, scope, globals).parse();
    } catch (const Error& e) {
        if (!e.file().empty() || scope.file.empty()) throw;
        throw Error(e.what(), scope.file, e.line());
    }
}

} // namespace host::mel
