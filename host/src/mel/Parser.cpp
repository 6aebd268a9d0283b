#include "mel/Parser.h"

#include "mel/Command.h"
#include "mel/Keywords.h"
#include "mel/Lexer.h"
#include "mel/StackGuard.h"

#include <optional>
#include <tuple>
#include <unordered_map>
#include <utility>

namespace host::mel {
namespace {

using Type = Value::Type;
using Kind = Token::Kind;

constexpr int kNestingLimit = 400;
constexpr std::size_t kMatrixLimit = 4096;

class Parser {
public:
    Parser(std::string_view text, FileScope& scope, const GlobalLookup& globals)
        : lexer_(text), fileScope_(scope), globals_(globals), script_(std::make_shared<Script>()) {}

    std::shared_ptr<Script> parse() {
        scopes_.emplace_back();
        moveTo({0, 1});
        while (token_.kind != Kind::End) {
            if (StatementPointer statement = parseStatement()) script_->statements.push_back(std::move(statement));
        }
        script_->slots = slots_;
        return script_;
    }

private:
    struct Known {
        int slot; ///< -1: global
        Type type;
        int rows, columns;
    };
    using Scope = std::unordered_map<std::string, Known>;

    /// Counts how deeply the text nests: limited, so that a hostile text cannot exhaust the stack.
    struct Nesting {
        explicit Nesting(Parser& p) : parser(p) {
            if (++parser.depth_ > kNestingLimit) parser.fail("Syntax error: the text is nested too deeply");
            checkStack();
        }
        ~Nesting() { --parser.depth_; }
        Parser& parser;
    };

    [[noreturn]] void fail(const std::string& message, int line = 0) const {
        throw Error(message, fileScope_.file, line > 0 ? line : token_.line);
    }
    [[noreturn]] void failHere() const {
        if (token_.kind == Kind::End) fail("Syntax error: unexpected end of the text");
        fail("Syntax error: unexpected \"" + std::string(token_.kind == Kind::Variable ? "$" : "") +
             std::string(token_.spelling.substr(0, 80)) + "\"");
    }

    void moveTo(Position position) { token_ = lexer_.token(position); }
    void advance() {
        int line = token_.line;
        for (char c : token_.spelling) line += c == '\n';
        moveTo({token_.end, line});
    }
    bool accept(std::string_view op) {
        if (!token_.is(op)) return false;
        advance();
        return true;
    }
    void expect(std::string_view op) {
        if (!accept(op)) failHere();
    }
    /// Expects what closes something; a text that ends instead is an error where that began.
    void close(std::string_view op, std::string_view opener, int line) {
        if (token_.kind == Kind::End)
            fail("Syntax error: unexpected end of the text, \"" + std::string(opener) + "\" is never closed", line);
        expect(op);
    }
    void endStatement() {
        if (token_.kind != Kind::End)
            expect(";");
        else if (blockDepth_ > 0)
            close(";", "{", blockLine_);
    }
    template <class T>
    std::unique_ptr<T> make(int line = 0) {
        auto node = std::make_unique<T>();
        node->line = line > 0 ? line : token_.line;
        return node;
    }

    // Variables

    std::optional<Known> find(const std::string& name) const {
        for (auto scope = scopes_.rbegin(); scope != scopes_.rend(); ++scope)
            if (auto found = scope->find(name); found != scope->end()) return found->second;
        if (inProcedure_) return std::nullopt;
        if (const Variable* global = globals_(name)) return Known{-1, global->type, global->rows, global->columns};
        return std::nullopt;
    }

    Known declare(const std::string& name, Type type, bool global, int rows, int columns, int line) {
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

    std::unique_ptr<VariableUse> use(const std::string& name, const Known& known, int line) {
        auto node = make<VariableUse>(line);
        node->name = name;
        node->slot = known.slot;
        node->type = known.type;
        node->rows = known.rows;
        node->columns = known.columns;
        return node;
    }

    std::unique_ptr<VariableUse> parseVariable() {
        const std::string name(token_.spelling);
        auto known = find(name);
        if (!known) fail("\"$" + name + "\" is an undeclared variable.");
        auto node = use(name, *known, token_.line);
        advance();
        return node;
    }

    // Expressions

    ExpressionPointer parseExpression(ExpressionPointer left = nullptr) {
        Nesting nesting(*this);
        const int line = token_.line;
        if (!left && token_.kind == Kind::Variable && !find(std::string(token_.spelling)))
            return parseFirstAssignment();
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

    /// `$new = ...` and `$new[i] = ...`, which declare the variable; it does not exist in the source expression yet.
    ExpressionPointer parseFirstAssignment() {
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

    ExpressionPointer parseConditional(ExpressionPointer left) {
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

    ExpressionPointer parseLogical(bool isAnd, ExpressionPointer left) {
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

    std::optional<BinaryOperator> binaryOperator(int level) const {
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

    ExpressionPointer parseBinary(int level, ExpressionPointer left = nullptr) {
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

    ExpressionPointer parseUnary() {
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

    ExpressionPointer parseIndex() {
        std::size_t end = 0;
        return parseIndexNoting(end);
    }

    ExpressionPointer parsePostfix(ExpressionPointer base) {
        for (int steps = 0;; ++steps) {
            if (steps > kNestingLimit) failHere();
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

    ExpressionPointer parseComponent(ExpressionPointer base) {
        auto node = make<ComponentUse>();
        advance();
        if (token_.kind != Kind::Identifier || token_.spelling.size() != 1 || token_.spelling[0] < 'x') failHere();
        node->component = token_.spelling[0] - 'x';
        node->base = std::move(base);
        advance();
        return node;
    }

    ExpressionPointer constant(Value value, int line) {
        auto node = make<Constant>(line);
        node->value = std::move(value);
        return node;
    }

    ExpressionPointer parsePrimary() {
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

    ExpressionPointer parseNamed() {
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

    ExpressionPointer parseParenthesis() {
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

    std::vector<ExpressionPointer> parseArguments() {
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

    ExpressionPointer parseArray() {
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

    ExpressionPointer parseVectorLiteral() {
        Nesting nesting(*this);
        auto node = make<VectorLiteral>();
        const bool quoted = std::exchange(inBackquote_, false);
        expect("<<");
        std::size_t elements = 0;
        do {
            node->rows.emplace_back();
            do {
                node->rows.back().push_back(parseBinary(2)); // above comparisons: ">" ends the literal
                if (++elements > kMatrixLimit) fail("Syntax error: the matrix is too large");
            } while (accept(","));
            if (node->rows.back().size() != node->rows.front().size())
                fail("Syntax error: the rows of a matrix must be equally long");
        } while (accept(";"));
        inBackquote_ = quoted;
        close(">>", "<<", node->line);
        return node;
    }

    ExpressionPointer parseBackquote() {
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

    // Commands

    ExpressionPointer finishCall(const std::string& name, std::vector<ExpressionPointer> arguments, int line) {
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

    bool atCommandEnd() const {
        return token_.kind == Kind::End || token_.is(";") || token_.is(")") || token_.is("]") || token_.is("}") ||
               token_.is(",") || (inBackquote_ && token_.is("`"));
    }

    /// Whether an expression goes on behind the call `f(...)` that began a statement: otherwise the parenthesis was
    /// the first argument of a command, as in setAttr($n + ".tx") -1;
    bool expressionGoesOn() const {
        if (token_.is("-")) {
            const char next = lexer_.at(token_.end);
            return next == ' ' || next == '\t';
        }
        for (int level = 0; level < 4; ++level)
            if (binaryOperator(level)) return true;
        return token_.is("?") || token_.is("&&") || token_.is("||") || token_.is("[");
    }

    /// A command or procedure call in either syntax, from its name on.
    ExpressionPointer parseCommand() {
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

    /// One argument of the command syntax.
    ExpressionPointer parseWord() {
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

    /// A variable with its indices: nothing but what touches it belongs to it.
    ExpressionPointer parsePlainVariable() {
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

    /// parseIndex, which also tells where the closing bracket ends.
    ExpressionPointer parseIndexNoting(std::size_t& end) {
        const int line = token_.line;
        const bool quoted = std::exchange(inBackquote_, false);
        expect("[");
        ExpressionPointer index = parseExpression();
        inBackquote_ = quoted;
        end = token_.end;
        close("]", "[", line);
        return index;
    }

    // Statements

    StatementPointer parseStatement() {
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

    StatementPointer parseExpressionStatement() {
        auto node = make<ExpressionStatement>();
        node->expression = parseExpression();
        endStatement();
        return node;
    }

    /// The statements between braces, in the scope that is current.
    std::unique_ptr<Block> parseBlock() {
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

    StatementPointer parseBody() {
        scopes_.emplace_back();
        StatementPointer body = token_.is("{") ? parseBlock() : parseStatement();
        scopes_.pop_back();
        return body ? std::move(body) : make<Block>();
    }

    ExpressionPointer parseCondition() {
        if (token_.is("(")) return parseParenthesis();
        failHere();
    }

    StatementPointer parseIf() {
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

    StatementPointer parseLoopBody() {
        ++loopDepth_;
        StatementPointer body = parseBody();
        --loopDepth_;
        return body;
    }

    StatementPointer parseWhile() {
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

    std::vector<ExpressionPointer> parseList(std::string_view end) {
        std::vector<ExpressionPointer> out;
        if (!token_.is(end)) {
            do out.push_back(parseExpression());
            while (accept(","));
        }
        return out;
    }

    StatementPointer parseFor() {
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

    StatementPointer parseForIn(const std::string& name, std::optional<Type> type, int line) {
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

    StatementPointer parseSwitch() {
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

    StatementPointer parseJump() {
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

    StatementPointer parseGlobal() {
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

    bool acceptBrackets() {
        if (!accept("[")) return false;
        expect("]");
        return true;
    }

    int parseDimension() {
        expect("[");
        if (token_.kind != Kind::Number || !token_.value.get<int>() || *token_.value.get<int>() < 1 ||
            *token_.value.get<int>() > static_cast<int>(kMatrixLimit))
            fail("Syntax error: a matrix needs its size in whole numbers, as in $m[3][4]");
        const int size = *token_.value.get<int>();
        advance();
        expect("]");
        return size;
    }

    void parseMatrixSize(int& rows, int& columns) {
        rows = parseDimension();
        columns = parseDimension();
        if (static_cast<std::size_t>(rows) * static_cast<std::size_t>(columns) > kMatrixLimit)
            fail("Syntax error: the matrix is too large");
    }

    std::unique_ptr<Declaration> parseDeclaration(bool global) {
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

    void parseProcedure(bool global) {
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

    Procedure::Parameter parseParameter() {
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

    Lexer lexer_;
    FileScope& fileScope_;
    const GlobalLookup& globals_;
    std::shared_ptr<Script> script_;
    Token token_;
    std::vector<Scope> scopes_;
    int slots_ = 0, depth_ = 0, blockDepth_ = 0, blockLine_ = 0, loopDepth_ = 0, switchDepth_ = 0;
    bool inProcedure_ = false, inBackquote_ = false;
    Type returns_ = Type::None;
};

} // namespace

std::shared_ptr<Script> parseScript(std::string_view text, FileScope& scope, const GlobalLookup& globals) {
    try {
        return Parser(text, scope, globals).parse();
    } catch (const Error& e) {
        if (!e.file().empty() || scope.file.empty()) throw;
        throw Error(e.what(), scope.file, e.line());
    }
}

} // namespace host::mel
