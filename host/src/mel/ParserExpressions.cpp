#include "mel/Keywords.h"
#include "mel/ScriptParser.h"

#include <tuple>
#include <utility>

namespace host::mel {

ExpressionPointer ScriptParser::parseExpression(ExpressionPointer left) {
    Nesting nesting(*this);
    const int line = token_.line;
    if (!left && token_.kind == Kind::Variable && !find(std::string(token_.spelling))) return parseFirstAssignment();
    ExpressionPointer target = parseConditional(std::move(left));
    static constexpr std::pair<std::string_view, BinaryOperator> compounds[] = {
        {"+=", BinaryOperator::Add},    {"-=", BinaryOperator::Subtract},  {"*=", BinaryOperator::Multiply},
        {"/=", BinaryOperator::Divide}, {"%=", BinaryOperator::Remainder}, {"^=", BinaryOperator::Cross}};
    auto node = make<Assignment>(line);
    if (!token_.is("=")) {
        for (const auto& [spelling, op] : compounds)
            if (token_.is(spelling)) {
                node->compound = true;
                node->op = op;
            }
        if (!node->compound) return target;
    }
    if (!target->isPlace()) fail("Syntax error: only a variable can be assigned to");
    advance();
    node->target = std::move(target);
    node->source = parseExpression();
    return node;
}

ExpressionPointer ScriptParser::parseFirstAssignment() {
    const std::string name(token_.spelling);
    const int line = token_.line;
    advance();
    ExpressionPointer index;
    if (token_.is("[")) index = parseIndex();
    if (!token_.is("=")) fail("\"$" + name + "\" is an undeclared variable.", line);
    advance();
    auto node = make<Assignment>(line);
    node->source = parseExpression();
    ExpressionPointer target = use(name, declare(name, Type::None, false, 0, 0, line), line);
    if (index) {
        auto element = make<ElementUse>(line);
        element->base = std::move(target);
        element->index = std::move(index);
        target = std::move(element);
    }
    node->target = std::move(target);
    return node;
}

ExpressionPointer ScriptParser::parseConditional(ExpressionPointer left) {
    ExpressionPointer condition = parseLogical(false, std::move(left));
    if (!token_.is("?")) return condition;
    auto node = make<Conditional>();
    advance();
    node->condition = std::move(condition);
    node->yes = parseExpression();
    expect(":");
    node->no = parseExpression();
    return node;
}

ExpressionPointer ScriptParser::parseLogical(bool isAnd, ExpressionPointer left) {
    auto operand = [&]() { return isAnd ? parseBinary(0, std::move(left)) : parseLogical(true, std::move(left)); };
    ExpressionPointer first = operand();
    const std::string_view op = isAnd ? "&&" : "||";
    if (!token_.is(op)) return first;
    auto node = make<LogicalChain>();
    node->isAnd = isAnd;
    node->operands.push_back(std::move(first));
    while (accept(op)) node->operands.push_back(operand());
    return node;
}

std::optional<BinaryOperator> ScriptParser::binaryOperator(int level) const {
    using Op = BinaryOperator;
    static constexpr std::tuple<std::string_view, Op, int> rows[] = {
        {"==", Op::Equal, 0},   {"!=", Op::NotEqual, 0},     {"<", Op::Less, 1},      {"<=", Op::LessEqual, 1},
        {">", Op::Greater, 1},  {">=", Op::GreaterEqual, 1}, {"+", Op::Add, 2},       {"-", Op::Subtract, 2},
        {"*", Op::Multiply, 3}, {"/", Op::Divide, 3},        {"%", Op::Remainder, 3}, {"^", Op::Cross, 3}};
    if (token_.kind != Kind::Operator) return std::nullopt;
    for (const auto& [spelling, op, rowLevel] : rows)
        if (rowLevel == level && spelling == token_.spelling) return op;
    return std::nullopt;
}

ExpressionPointer ScriptParser::parseBinary(int level, ExpressionPointer left) {
    if (level > 3) return left ? parsePostfix(std::move(left)) : parseUnary();
    ExpressionPointer first = parseBinary(level + 1, std::move(left));
    auto op = binaryOperator(level);
    if (!op) return first;
    auto node = make<BinaryChain>();
    node->first = std::move(first);
    while (op) {
        advance();
        ExpressionPointer operand = parseBinary(level + 1);
        node->links.push_back({*op, std::move(operand)});
        op = binaryOperator(level);
    }
    return node;
}

ExpressionPointer ScriptParser::parseUnary() {
    Nesting nesting(*this);
    if (token_.is("++") || token_.is("--")) {
        auto node = make<Increment>();
        node->prefix = true;
        node->step = token_.is("++") ? 1 : -1;
        advance();
        node->target = parseUnary();
        if (!node->target->isPlace()) fail("Syntax error: only a variable can be incremented");
        return node;
    }
    if (token_.is("-") || token_.is("!")) {
        auto node = make<Negation>();
        node->logical = token_.is("!");
        advance();
        node->operand = parseUnary();
        return node;
    }
    if (accept("+")) return parseUnary();
    return parsePostfix(parsePrimary());
}

ExpressionPointer ScriptParser::parseIndex() {
    std::size_t end = 0;
    return parseIndexNoting(end);
}

ExpressionPointer ScriptParser::parseIndexNoting(std::size_t& end) {
    const int line = token_.line;
    const bool quoted = std::exchange(inBackquote_, false);
    expect("[");
    ExpressionPointer index = parseExpression();
    inBackquote_ = quoted;
    end = token_.end;
    close("]", "[", line);
    return index;
}

ExpressionPointer ScriptParser::parsePostfix(ExpressionPointer base) {
    for (int steps = 0;; ++steps) {
        if (steps > nestingLimit) failHere();
        if (token_.is("[")) {
            auto node = make<ElementUse>();
            node->index = parseIndex();
            if (token_.is("[")) node->column = parseIndex();
            node->base = std::move(base);
            base = std::move(node);
        } else if (token_.is(".")) {
            base = parseComponent(std::move(base));
        } else if (token_.is("++") || token_.is("--")) {
            if (!base->isPlace()) fail("Syntax error: only a variable can be incremented");
            auto node = make<Increment>();
            node->step = token_.is("++") ? 1 : -1;
            advance();
            node->target = std::move(base);
            base = std::move(node);
        } else
            return base;
    }
}

ExpressionPointer ScriptParser::parseComponent(ExpressionPointer base) {
    auto node = make<ComponentUse>();
    advance();
    if (token_.kind != Kind::Identifier || token_.spelling.size() != 1 || token_.spelling[0] < 'x') failHere();
    node->component = token_.spelling[0] - 'x';
    node->base = std::move(base);
    advance();
    return node;
}

ExpressionPointer ScriptParser::constant(Value value, int line) {
    auto node = make<Constant>(line);
    node->value = std::move(value);
    return node;
}

ExpressionPointer ScriptParser::parsePrimary() {
    const int line = token_.line;
    switch (token_.kind) {
    case Kind::Number:
    case Kind::Text: {
        ExpressionPointer node = constant(std::move(token_.value), line);
        advance();
        return node;
    }
    case Kind::Variable: return parseVariable();
    case Kind::Identifier: return parseNamed();
    case Kind::Operator: break;
    default: failHere();
    }
    if (token_.is("(")) return parseParenthesis();
    if (token_.is("{")) return parseArray();
    if (token_.is("<<")) return parseVectorLiteral();
    if (token_.is("`") && !inBackquote_) return parseBackquote();
    failHere();
}

ExpressionPointer ScriptParser::parseNamed() {
    const int line = token_.line;
    if (auto value = constantWord(token_.spelling)) {
        advance();
        return constant(*value, line);
    }
    if (auto type = typeKeyword(token_)) {
        auto node = make<Cast>();
        node->type = *type;
        advance();
        if (!token_.is("(")) failHere();
        node->operand = parseParenthesis();
        return node;
    }
    if (isReserved(token_.spelling)) failHere();
    const std::string name(token_.spelling);
    advance();
    if (!token_.is("(")) fail("Syntax error: unexpected \"" + name + "\"", line);
    return finishCall(name, parseArguments(), line);
}

ExpressionPointer ScriptParser::parseParenthesis() {
    const int line = token_.line;
    const bool quoted = std::exchange(inBackquote_, false);
    expect("(");
    if (auto type = typeKeyword(token_)) { // (int)$x, but also (int($x) + 1)
        const Token keyword = token_;
        advance();
        if (accept(")")) {
            inBackquote_ = quoted;
            auto node = make<Cast>(line);
            node->type = *type;
            node->operand = parseUnary();
            return node;
        }
        moveTo({keyword.begin, keyword.line});
    }
    ExpressionPointer inner = parseExpression();
    inBackquote_ = quoted;
    close(")", "(", line);
    return inner;
}

std::vector<ExpressionPointer> ScriptParser::parseArguments() {
    const int line = token_.line;
    const bool quoted = std::exchange(inBackquote_, false);
    expect("(");
    std::vector<ExpressionPointer> arguments;
    if (!token_.is(")")) {
        do arguments.push_back(parseExpression());
        while (accept(","));
    }
    inBackquote_ = quoted;
    close(")", "(", line);
    return arguments;
}

ExpressionPointer ScriptParser::parseArray() {
    Nesting nesting(*this);
    auto node = make<ArrayLiteral>();
    const bool quoted = std::exchange(inBackquote_, false);
    expect("{");
    if (!token_.is("}")) {
        do node->elements.push_back(parseExpression());
        while (accept(","));
    }
    inBackquote_ = quoted;
    close("}", "{", node->line);
    return node;
}

ExpressionPointer ScriptParser::parseVectorLiteral() {
    Nesting nesting(*this);
    auto node = make<VectorLiteral>();
    const bool quoted = std::exchange(inBackquote_, false);
    expect("<<");
    std::size_t elements = 0;
    do {
        node->rows.emplace_back();
        do {
            node->rows.back().push_back(parseBinary(2)); // above comparisons: ">" ends the literal
            if (++elements > matrixLimit) fail("Syntax error: the matrix is too large");
        } while (accept(","));
        if (node->rows.back().size() != node->rows.front().size())
            fail("Syntax error: the rows of a matrix must be equally long");
    } while (accept(";"));
    inBackquote_ = quoted;
    close(">>", "<<", node->line);
    return node;
}

ExpressionPointer ScriptParser::parseBackquote() {
    Nesting nesting(*this);
    const int line = token_.line;
    inBackquote_ = true;
    expect("`");
    if (token_.kind != Kind::Identifier) failHere();
    ExpressionPointer command = parseCommand();
    inBackquote_ = false;
    accept(";");
    close("`", "`", line);
    return command;
}

} // namespace host::mel
