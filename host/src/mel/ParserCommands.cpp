#include "mel/Keywords.h"
#include "mel/ScriptParser.h"

#include <utility>

namespace host::mel {

ExpressionPointer ScriptParser::finishCall(const std::string& name, std::vector<ExpressionPointer> arguments,
                                           int line) {
    script_->calls.insert(name);
    if ((name == "catch" || name == "catchQuiet") && arguments.size() == 1) {
        auto node = make<CatchExpression>(line);
        node->quiet = name == "catchQuiet";
        node->operand = std::move(arguments.front());
        return node;
    }
    auto node = make<CallExpression>(line);
    node->name = name;
    node->arguments = std::move(arguments);
    return node;
}

bool ScriptParser::atCommandEnd() const {
    return token_.kind == Kind::End || token_.is(";") || token_.is(")") || token_.is("]") || token_.is("}") ||
           token_.is(",") || (inBackquote_ && token_.is("`"));
}

bool ScriptParser::expressionGoesOn() const {
    if (token_.is("-")) {
        const char next = lexer_.at(token_.end);
        return next == ' ' || next == '\t';
    }
    for (int level = 0; level < 4; ++level)
        if (binaryOperator(level)) return true;
    return token_.is("?") || token_.is("&&") || token_.is("||") || token_.is("[");
}

ExpressionPointer ScriptParser::parseCommand() {
    Nesting nesting(*this);
    const int line = token_.line;
    if (isReserved(token_.spelling)) failHere();
    const std::string name(token_.spelling);
    advance();
    std::vector<ExpressionPointer> arguments;
    if (token_.is("(")) {
        arguments = parseArguments();
        if (atCommandEnd()) return finishCall(name, std::move(arguments), line);
        if (expressionGoesOn()) return parseExpression(finishCall(name, std::move(arguments), line));
        if (arguments.size() != 1) failHere();
    }
    while (!atCommandEnd()) arguments.push_back(parseWord());
    return finishCall(name, std::move(arguments), line);
}

ExpressionPointer ScriptParser::parseWord() {
    const int line = token_.line;
    if (token_.kind == Kind::Text) return parsePrimary();
    if (token_.kind == Kind::Variable) return parsePlainVariable();
    if (token_.is("(")) return parseParenthesis();
    if (token_.is("{")) return parseArray();
    if (token_.is("<<")) return parseVectorLiteral();
    if (token_.is("`")) {
        const bool quoted = inBackquote_;
        ExpressionPointer node = parseBackquote();
        inBackquote_ = quoted;
        return node;
    }
    if (token_.is("-") && (lexer_.at(token_.end) == '$' || lexer_.at(token_.end) == '(')) {
        auto node = make<Negation>();
        advance();
        node->operand = parseWord();
        return node;
    }
    Token word = lexer_.word({token_.begin, line});
    if (word.kind == Kind::Invalid) failHere();
    moveTo({word.end, line});
    const bool name =
        isNameStart(word.spelling.front()) && word.spelling.find_first_of(".:|*?[>") == std::string_view::npos;
    if (name && token_.is("(") && token_.begin == word.end && !isReserved(word.spelling))
        return finishCall(std::string(word.spelling), parseArguments(), line);
    if (auto value = constantWord(word.spelling)) return constant(*value, line);
    return constant(std::move(word.value), line);
}

ExpressionPointer ScriptParser::parsePlainVariable() {
    std::size_t end = token_.end;
    ExpressionPointer node = parseVariable();
    while (token_.begin == end && (token_.is("[") || token_.is("."))) {
        if (token_.is(".")) {
            end = token_.end + 1;
            node = parseComponent(std::move(node));
            continue;
        }
        auto element = make<ElementUse>();
        element->index = parseIndexNoting(end);
        if (token_.is("[") && token_.begin == end) element->column = parseIndexNoting(end);
        element->base = std::move(node);
        node = std::move(element);
    }
    if (token_.begin == end && (token_.is("++") || token_.is("--"))) {
        auto increment = make<Increment>();
        increment->step = token_.is("++") ? 1 : -1;
        advance();
        increment->target = std::move(node);
        return increment;
    }
    return node;
}

} // namespace host::mel
