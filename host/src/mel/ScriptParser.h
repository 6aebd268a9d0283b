#pragma once

#include "mel/Ast.h"
#include "mel/Lexer.h"
#include "mel/Parser.h"
#include "mel/StackGuard.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace host::mel {

/// Parses one text, once, by recursive descent. A function stands in the file of what it parses: ParserExpressions,
/// ParserCommands (words in the syntax of commands), ParserStatements, ParserDeclarations; tokens and variables in
/// Parser.
class ScriptParser {
public:
    ScriptParser(std::string_view text, FileScope& scope, const GlobalLookup& globals)
        : lexer_(text), fileScope_(scope), globals_(globals), script_(std::make_shared<Script>()) {}

    std::shared_ptr<Script> parse();

private:
    using Type = Value::Type;
    using Kind = Token::Kind;

    static constexpr int nestingLimit = 400;
    static constexpr std::size_t matrixLimit = 4096; ///< elements

    struct Known {
        int slot; ///< -1: global
        Type type;
        int rows, columns;
    };
    using Scope = std::unordered_map<std::string, Known>;

    /// Counts how deeply the text nests: limited, so that a hostile text cannot exhaust the stack.
    struct Nesting {
        explicit Nesting(ScriptParser& p) : parser(p) {
            if (++parser.depth_ > nestingLimit) parser.fail("Syntax error: the text is nested too deeply");
            checkStack();
        }
        ~Nesting() { --parser.depth_; }
        ScriptParser& parser;
    };

    // Tokens

    [[noreturn]] void fail(const std::string& message, int line = 0) const;
    [[noreturn]] void failHere() const;
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
    void close(std::string_view op, std::string_view opener, int line);
    void endStatement();
    template <class T>
    std::unique_ptr<T> make(int line = 0) {
        auto node = std::make_unique<T>();
        node->line = line > 0 ? line : token_.line;
        return node;
    }

    // Variables

    std::optional<Known> find(const std::string& name) const;
    Known declare(const std::string& name, Type type, bool global, int rows, int columns, int line);
    std::unique_ptr<VariableUse> use(const std::string& name, const Known& known, int line);
    std::unique_ptr<VariableUse> parseVariable();

    // Expressions

    ExpressionPointer parseExpression(ExpressionPointer left = nullptr);
    /// `$new = ...` and `$new[i] = ...`, which declare the variable; it does not exist in the source expression yet.
    ExpressionPointer parseFirstAssignment();
    ExpressionPointer parseConditional(ExpressionPointer left);
    ExpressionPointer parseLogical(bool isAnd, ExpressionPointer left);
    std::optional<BinaryOperator> binaryOperator(int level) const;
    ExpressionPointer parseBinary(int level, ExpressionPointer left = nullptr);
    ExpressionPointer parseUnary();
    ExpressionPointer parseIndex();
    /// parseIndex, which also tells where the closing bracket ends.
    ExpressionPointer parseIndexNoting(std::size_t& end);
    ExpressionPointer parsePostfix(ExpressionPointer base);
    ExpressionPointer parseComponent(ExpressionPointer base);
    ExpressionPointer constant(Value value, int line);
    ExpressionPointer parsePrimary();
    ExpressionPointer parseNamed();
    ExpressionPointer parseParenthesis();
    std::vector<ExpressionPointer> parseArguments();
    ExpressionPointer parseArray();
    ExpressionPointer parseVectorLiteral();
    ExpressionPointer parseBackquote();

    // Commands

    ExpressionPointer finishCall(const std::string& name, std::vector<ExpressionPointer> arguments, int line);
    bool atCommandEnd() const;
    /// Whether an expression goes on behind the call `f(...)` that began a statement: otherwise the parenthesis was
    /// the first argument of a command, as in setAttr($n + ".tx") -1;
    bool expressionGoesOn() const;
    /// A command or procedure call in either syntax, from its name on.
    ExpressionPointer parseCommand();
    /// One argument of the command syntax.
    ExpressionPointer parseWord();
    /// A variable with its indices: nothing but what touches it belongs to it.
    ExpressionPointer parsePlainVariable();

    // Statements

    StatementPointer parseStatement();
    StatementPointer parseExpressionStatement();
    /// The statements between braces, in the scope that is current.
    std::unique_ptr<Block> parseBlock();
    StatementPointer parseBody();
    ExpressionPointer parseCondition();
    StatementPointer parseIf();
    StatementPointer parseLoopBody();
    StatementPointer parseWhile();
    std::vector<ExpressionPointer> parseList(std::string_view end);
    StatementPointer parseFor();
    StatementPointer parseForIn(const std::string& name, std::optional<Type> type, int line);
    StatementPointer parseSwitch();
    StatementPointer parseJump();

    // Declarations

    StatementPointer parseGlobal();
    bool acceptBrackets();
    int parseDimension();
    void parseMatrixSize(int& rows, int& columns);
    std::unique_ptr<Declaration> parseDeclaration(bool global);
    void parseProcedure(bool global);
    Procedure::Parameter parseParameter();

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

} // namespace host::mel
