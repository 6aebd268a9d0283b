#pragma once

#include "mel/Operators.h"
#include "mel/Value.h"

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace host::mel {

struct Frame;
struct Command;

/// A variable's cell. Its type is fixed at its declaration, or by its first assignment.
struct Variable {
    Value value;
    Value::Type type = Value::Type::None;
    int rows = 0, columns = 0;    ///< of a matrix
    Variable* original = nullptr; ///< the caller's variable, for an array parameter

    /// Converts as MEL's assignment does; throws Error when the types do not go together.
    void assign(Value v);
    /// Gives an empty variable of a type its zero value.
    void reset(Value::Type newType, int newRows, int newColumns);
};

/// Where an assignment goes: a variable, one element of it, one component of that.
struct Place {
    Variable* variable = nullptr;
    int index = -1, column = -1, component = -1;

    Value read() const;
    void write(Value v) const;
};

struct Expression {
    virtual ~Expression() = default;
    virtual Value evaluate(Frame& frame) const = 0;
    /// Evaluates for the effect alone.
    virtual void run(Frame& frame) const { evaluate(frame); }
    /// The variable behind a plain `$x`; null for anything else.
    virtual Variable* variable(Frame&) const { return nullptr; }
    virtual bool isPlace() const { return false; }
    virtual Place place(Frame&) const { return {}; }
    int line = 0;
};
using ExpressionPointer = std::unique_ptr<Expression>;

struct Constant final : Expression {
    Value value;
    Value evaluate(Frame&) const override { return value; }
};

struct VariableUse final : Expression {
    std::string name;
    int slot = -1; ///< in the frame; -1 for a global variable
    Value::Type type = Value::Type::None;
    int rows = 0, columns = 0;
    mutable Variable* global = nullptr;

    Variable& resolve(Frame& frame) const;
    Value evaluate(Frame& frame) const override;
    Variable* variable(Frame& frame) const override { return &resolve(frame); }
    bool isPlace() const override { return true; }
    Place place(Frame& frame) const override { return {&resolve(frame)}; }
};

struct ElementUse final : Expression {
    ExpressionPointer base, index, column; ///< column only for a matrix
    Value evaluate(Frame& frame) const override;
    bool isPlace() const override { return dynamic_cast<VariableUse*>(base.get()) != nullptr; }
    Place place(Frame& frame) const override;
};

struct ComponentUse final : Expression {
    ExpressionPointer base;
    int component = 0; ///< 0 x, 1 y, 2 z
    Value evaluate(Frame& frame) const override;
    bool isPlace() const override { return base->isPlace(); }
    Place place(Frame& frame) const override;
};

/// Operators of one precedence, applied from left to right: flat, so that a long sum is no deep tree.
struct BinaryChain final : Expression {
    struct Link {
        BinaryOperator op;
        ExpressionPointer operand;
    };
    ExpressionPointer first;
    std::vector<Link> links;
    Value evaluate(Frame& frame) const override;
};

struct LogicalChain final : Expression {
    bool isAnd = false;
    std::vector<ExpressionPointer> operands;
    Value evaluate(Frame& frame) const override;
};

struct Negation final : Expression {
    bool logical = false;
    ExpressionPointer operand;
    Value evaluate(Frame& frame) const override;
};

struct Conditional final : Expression {
    ExpressionPointer condition, yes, no;
    Value evaluate(Frame& frame) const override;
};

struct Assignment final : Expression {
    ExpressionPointer target, source;
    bool compound = false;
    BinaryOperator op = BinaryOperator::Add;
    Value evaluate(Frame& frame) const override;
    void run(Frame& frame) const override;
};

struct Increment final : Expression {
    ExpressionPointer target;
    int step = 1;
    bool prefix = false;
    Value evaluate(Frame& frame) const override;
};

struct Cast final : Expression {
    Value::Type type = Value::Type::Int;
    ExpressionPointer operand;
    Value evaluate(Frame& frame) const override;
};

struct ArrayLiteral final : Expression {
    std::vector<ExpressionPointer> elements;
    Value evaluate(Frame& frame) const override;
};

/// <<x, y, z>> or a matrix of several rows.
struct VectorLiteral final : Expression {
    std::vector<std::vector<ExpressionPointer>> rows;
    Value evaluate(Frame& frame) const override;
};

struct CallExpression final : Expression {
    std::string name;
    std::vector<ExpressionPointer> arguments;
    Value evaluate(Frame& frame) const override;
};

/// catch and catchQuiet: whether the operand failed.
struct CatchExpression final : Expression {
    ExpressionPointer operand;
    bool quiet = false;
    Value evaluate(Frame& frame) const override;
};

enum class Flow { Normal, Break, Continue, Return };

struct Statement {
    virtual ~Statement() = default;
    virtual Flow execute(Frame& frame) const = 0;
    /// Runs as a top-level statement and stores what a script editor shows as its result.
    virtual Flow executeForResult(Frame& frame, Value& result) const;
    int line = 0;
};
using StatementPointer = std::unique_ptr<Statement>;

struct ExpressionStatement final : Statement {
    ExpressionPointer expression;
    Flow execute(Frame& frame) const override;
    Flow executeForResult(Frame& frame, Value& result) const override;
};

struct Declaration final : Statement {
    struct Item {
        std::unique_ptr<VariableUse> variable;
        ExpressionPointer size, initial;
    };
    std::vector<Item> items;
    Flow execute(Frame& frame) const override;
    Flow executeForResult(Frame& frame, Value& result) const override;
};

struct Block final : Statement {
    std::vector<StatementPointer> statements;
    Flow execute(Frame& frame) const override;
};

struct If final : Statement {
    std::vector<std::pair<ExpressionPointer, StatementPointer>> branches;
    StatementPointer otherwise;
    Flow execute(Frame& frame) const override;
};

/// while, do-while and for.
struct Loop final : Statement {
    bool testFirst = true;
    std::vector<ExpressionPointer> initial, conditions, steps; ///< of several conditions, the last one counts
    std::unique_ptr<Declaration> declaration;
    StatementPointer body;
    Flow execute(Frame& frame) const override;
};

struct ForIn final : Statement {
    std::unique_ptr<VariableUse> variable;
    ExpressionPointer array;
    StatementPointer body;
    Flow execute(Frame& frame) const override;
};

struct Switch final : Statement {
    struct Label {
        ExpressionPointer value; ///< null for default
        std::size_t start;       ///< index of the statement it stands before
    };
    ExpressionPointer subject;
    std::vector<Label> labels;
    std::vector<StatementPointer> statements;
    Flow execute(Frame& frame) const override;
};

struct Jump final : Statement {
    Flow flow = Flow::Break;
    ExpressionPointer value;
    Flow execute(Frame& frame) const override;
};

struct Procedure;
using ProcedureTable = std::map<std::string, std::shared_ptr<Procedure>, std::less<>>;

/// What belongs to one script file (or to everything entered without one): its local procedures.
struct FileScope {
    std::string file;
    ProcedureTable procedures;
};

struct Procedure : std::enable_shared_from_this<Procedure> {
    std::string name;
    bool isGlobal = false;
    Value::Type returns = Value::Type::None;
    struct Parameter {
        std::string name;
        Value::Type type;
        int rows = 0, columns = 0;
    };
    std::vector<Parameter> parameters; ///< in the first slots
    int slots = 0;
    Block body;
    FileScope* scope = nullptr;
};

struct Script {
    std::vector<StatementPointer> statements;
    std::vector<std::shared_ptr<Procedure>> procedures;
    std::set<std::string> calls;  ///< the names of all that it calls
    bool declaresGlobals = false; ///< by the word `global`
    int slots = 0;
};

} // namespace host::mel
