#include "mel/Keywords.h"
#include "mel/ScriptParser.h"

#include <utility>

namespace host::mel {

StatementPointer ScriptParser::parseStatement() {
    Nesting nesting(*this);
    if (accept(";")) return nullptr;
    if (token_.is("{")) {
        scopes_.emplace_back();
        auto block = parseBlock();
        scopes_.pop_back();
        return block;
    }
    if (token_.kind != Kind::Identifier) return parseExpressionStatement();
    const std::string_view word = token_.spelling;
    if (word == "if") return parseIf();
    if (word == "while" || word == "do") return parseWhile();
    if (word == "for") return parseFor();
    if (word == "switch") return parseSwitch();
    if (word == "break" || word == "continue" || word == "return") return parseJump();
    if (word == "proc" || word == "global") return parseGlobal();
    if (typeKeyword(token_)) {
        const Token next = lexer_.token({token_.end, token_.line});
        if (!next.is("(")) {
            auto declaration = parseDeclaration(false);
            endStatement();
            return declaration;
        }
        return parseExpressionStatement();
    }
    auto node = make<ExpressionStatement>();
    node->expression = parseCommand();
    endStatement();
    return node;
}

StatementPointer ScriptParser::parseExpressionStatement() {
    auto node = make<ExpressionStatement>();
    node->expression = parseExpression();
    endStatement();
    return node;
}

std::unique_ptr<Block> ScriptParser::parseBlock() {
    auto block = make<Block>();
    const int outerLine = std::exchange(blockLine_, token_.line);
    ++blockDepth_;
    expect("{");
    while (!token_.is("}") && token_.kind != Kind::End)
        if (StatementPointer statement = parseStatement()) block->statements.push_back(std::move(statement));
    close("}", "{", block->line);
    --blockDepth_;
    blockLine_ = outerLine;
    return block;
}

StatementPointer ScriptParser::parseBody() {
    scopes_.emplace_back();
    StatementPointer body = token_.is("{") ? parseBlock() : parseStatement();
    scopes_.pop_back();
    return body ? std::move(body) : make<Block>();
}

ExpressionPointer ScriptParser::parseCondition() {
    if (token_.is("(")) return parseParenthesis();
    failHere();
}

StatementPointer ScriptParser::parseIf() {
    auto node = make<If>();
    do {
        advance(); // "if"
        ExpressionPointer condition = parseCondition();
        StatementPointer body = parseBody();
        node->branches.emplace_back(std::move(condition), std::move(body));
        if (!token_.isWord("else")) return node;
        advance();
    } while (token_.isWord("if"));
    node->otherwise = parseBody();
    return node;
}

StatementPointer ScriptParser::parseLoopBody() {
    ++loopDepth_;
    StatementPointer body = parseBody();
    --loopDepth_;
    return body;
}

StatementPointer ScriptParser::parseWhile() {
    auto node = make<Loop>();
    node->testFirst = token_.isWord("while");
    advance();
    if (node->testFirst) {
        node->conditions.push_back(parseCondition());
        node->body = parseLoopBody();
        return node;
    }
    node->body = parseLoopBody();
    if (!token_.isWord("while")) failHere();
    advance();
    node->conditions.push_back(parseCondition());
    endStatement();
    return node;
}

std::vector<ExpressionPointer> ScriptParser::parseList(std::string_view end) {
    std::vector<ExpressionPointer> out;
    if (!token_.is(end)) {
        do out.push_back(parseExpression());
        while (accept(","));
    }
    return out;
}

StatementPointer ScriptParser::parseFor() {
    const int line = token_.line;
    advance();
    expect("(");
    const auto type = typeKeyword(token_);
    const Token first = token_;
    if (type) advance();
    if (token_.kind == Kind::Variable) {
        const std::string name(token_.spelling);
        Token next = lexer_.token({token_.end, token_.line});
        if (next.is("[") && type) next = lexer_.token({lexer_.token({next.end, next.line}).end, next.line});
        if (next.isWord("in")) return parseForIn(name, type, line);
    }
    if (type) moveTo({first.begin, first.line});
    auto node = make<Loop>(line);
    if (type)
        node->declaration = parseDeclaration(false);
    else
        node->initial = parseList(";");
    expect(";");
    node->conditions = parseList(";");
    expect(";");
    node->steps = parseList(")");
    close(")", "(", line);
    node->body = parseLoopBody();
    return node;
}

StatementPointer ScriptParser::parseForIn(const std::string& name, std::optional<Type> type, int line) {
    auto node = make<ForIn>(line);
    advance(); // the variable
    advance(); // "in"
    node->array = parseExpression();
    close(")", "(", line);
    auto known = type ? std::nullopt : find(name);
    if (!known) known = declare(name, type.value_or(Type::None), false, 0, 0, line);
    node->variable = use(name, *known, line);
    node->body = parseLoopBody();
    return node;
}

StatementPointer ScriptParser::parseSwitch() {
    auto node = make<Switch>();
    advance();
    node->subject = parseCondition();
    const int line = token_.line;
    scopes_.emplace_back();
    ++switchDepth_;
    const int outerLine = std::exchange(blockLine_, line);
    ++blockDepth_;
    expect("{");
    while (!token_.is("}") && token_.kind != Kind::End) {
        if (token_.isWord("case") || token_.isWord("default")) {
            const bool isCase = token_.isWord("case");
            advance();
            // A conditional would take the label's colon for its own.
            node->labels.push_back({isCase ? parseLogical(false, nullptr) : nullptr, node->statements.size()});
            expect(":");
        } else if (node->labels.empty())
            failHere();
        else if (StatementPointer statement = parseStatement())
            node->statements.push_back(std::move(statement));
    }
    close("}", "{", line);
    --blockDepth_;
    blockLine_ = outerLine;
    --switchDepth_;
    scopes_.pop_back();
    return node;
}

StatementPointer ScriptParser::parseJump() {
    auto node = make<Jump>();
    const std::string word(token_.spelling);
    if (word == "break" && loopDepth_ + switchDepth_ == 0) fail("Syntax error: break outside of a loop or switch");
    if (word == "continue" && loopDepth_ == 0) fail("Syntax error: continue outside of a loop");
    node->flow = word == "break" ? Flow::Break : word == "continue" ? Flow::Continue : Flow::Return;
    advance();
    if (node->flow == Flow::Return && !token_.is(";") && token_.kind != Kind::End) {
        node->value = parseExpression();
        if (inProcedure_ && returns_ == Type::None)
            fail("A procedure without a return type cannot return a value.", node->line);
    }
    endStatement();
    return node;
}

} // namespace host::mel
