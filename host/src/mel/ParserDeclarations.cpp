#include "mel/Keywords.h"
#include "mel/Operators.h"
#include "mel/ScriptParser.h"

#include <utility>

namespace host::mel {

StatementPointer ScriptParser::parseGlobal() {
    bool global = false;
    if (token_.isWord("global")) {
        global = true;
        advance();
    }
    if (!token_.isWord("proc")) {
        if (!typeKeyword(token_)) failHere();
        auto declaration = parseDeclaration(true);
        script_->declaresGlobals = true;
        endStatement();
        return declaration;
    }
    parseProcedure(global);
    return nullptr;
}

bool ScriptParser::acceptBrackets() {
    if (!accept("[")) return false;
    expect("]");
    return true;
}

int ScriptParser::parseDimension() {
    expect("[");
    if (token_.kind != Kind::Number || !token_.value.get<int>() || *token_.value.get<int>() < 1 ||
        *token_.value.get<int>() > static_cast<int>(matrixLimit))
        fail("Syntax error: a matrix needs its size in whole numbers, as in $m[3][4]");
    const int size = *token_.value.get<int>();
    advance();
    expect("]");
    return size;
}

void ScriptParser::parseMatrixSize(int& rows, int& columns) {
    rows = parseDimension();
    columns = parseDimension();
    if (static_cast<std::size_t>(rows) * static_cast<std::size_t>(columns) > matrixLimit)
        fail("Syntax error: the matrix is too large");
}

std::unique_ptr<Declaration> ScriptParser::parseDeclaration(bool global) {
    auto node = make<Declaration>();
    const Type base = *typeKeyword(token_);
    advance();
    do {
        if (token_.kind != Kind::Variable) failHere();
        const std::string name(token_.spelling);
        const int line = token_.line;
        advance();
        Declaration::Item item;
        Type type = base;
        int rows = 0, columns = 0;
        if (base == Type::Matrix)
            parseMatrixSize(rows, columns);
        else if (token_.is("[")) {
            type = arrayOf(base);
            const Token bracket = token_;
            advance();
            if (!accept("]")) {
                moveTo({bracket.begin, bracket.line});
                item.size = parseIndex();
            }
        }
        if (accept("=")) item.initial = parseExpression();
        item.variable = use(name, declare(name, type, global, rows, columns, line), line);
        node->items.push_back(std::move(item));
    } while (accept(","));
    return node;
}

void ScriptParser::parseProcedure(bool global) {
    if (inProcedure_) fail("Syntax error: a procedure cannot be defined within a procedure");
    auto procedure = std::make_shared<Procedure>();
    procedure->isGlobal = global;
    procedure->scope = &fileScope_;
    advance(); // "proc"
    if (auto type = typeKeyword(token_)) {
        advance();
        procedure->returns = acceptBrackets() ? arrayOf(*type) : *type;
    }
    if (token_.kind != Kind::Identifier || isReserved(token_.spelling)) failHere();
    procedure->name = token_.spelling;
    advance();

    std::vector<Scope> outerScopes = std::exchange(scopes_, std::vector<Scope>(1));
    const int outerSlots = std::exchange(slots_, 0), outerLoops = std::exchange(loopDepth_, 0),
              outerSwitches = std::exchange(switchDepth_, 0);
    inProcedure_ = true;
    returns_ = procedure->returns;
    const int line = token_.line;
    expect("(");
    if (!token_.is(")")) {
        do procedure->parameters.push_back(parseParameter());
        while (accept(","));
    }
    close(")", "(", line);
    if (!token_.is("{")) failHere();
    procedure->body = std::move(*parseBlock());
    procedure->slots = slots_;
    inProcedure_ = false;
    scopes_ = std::move(outerScopes);
    slots_ = outerSlots;
    loopDepth_ = outerLoops;
    switchDepth_ = outerSwitches;
    script_->procedures.push_back(std::move(procedure));
}

Procedure::Parameter ScriptParser::parseParameter() {
    const auto base = typeKeyword(token_);
    if (!base) failHere();
    advance();
    if (token_.kind != Kind::Variable) failHere();
    Procedure::Parameter parameter{std::string(token_.spelling), *base};
    const int line = token_.line;
    advance();
    if (*base == Type::Matrix)
        parseMatrixSize(parameter.rows, parameter.columns);
    else if (acceptBrackets())
        parameter.type = arrayOf(*base);
    if (scopes_.back().contains(parameter.name))
        fail("Invalid redeclaration of variable \"$" + parameter.name + "\".", line);
    declare(parameter.name, parameter.type, false, parameter.rows, parameter.columns, line);
    return parameter;
}

} // namespace host::mel
