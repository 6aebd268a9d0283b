#include "mel/Execution.h"

namespace host::mel {
namespace {

using Type = Value::Type;

bool holdsLast(const std::vector<ExpressionPointer>& conditions, Frame& frame) {
    bool result = true;
    frame.impl.spend(static_cast<std::int64_t>(conditions.size()));
    for (const ExpressionPointer& e : conditions) result = isTrue(e->evaluate(frame));
    return result;
}

void evaluateAll(const std::vector<ExpressionPointer>& expressions, Frame& frame) {
    frame.impl.spend(static_cast<std::int64_t>(expressions.size()));
    for (const ExpressionPointer& e : expressions) e->run(frame);
}

/// Runs statements in order until one of them leaves.
Flow runFrom(const std::vector<StatementPointer>& statements, std::size_t start, Frame& frame) {
    std::size_t i = start;
    try {
        for (; i < statements.size(); ++i) {
            frame.impl.spend(1);
            if (const Flow flow = statements[i]->execute(frame); flow != Flow::Normal) return flow;
        }
        return Flow::Normal;
    } catch (const Error& e) {
        if (e.line() > 0) throw;
        rethrowAt(frame.scope, statements[i]->line);
    } catch (const std::exception&) {
        rethrowAt(frame.scope, statements[i]->line);
    }
}

Value arrayElement(const Value& array, std::size_t i) {
    switch (array.type()) {
    case Type::IntArray: return (*array.get<IntArray>())[i];
    case Type::FloatArray: return (*array.get<FloatArray>())[i];
    case Type::StringArray: return (*array.get<StringArray>())[i];
    case Type::VectorArray: return (*array.get<VectorArray>())[i];
    default: return array;
    }
}

} // namespace

Flow Statement::executeForResult(Frame& frame, Value& result) const {
    result = Value();
    return execute(frame);
}

Flow ExpressionStatement::execute(Frame& frame) const {
    expression->run(frame);
    return Flow::Normal;
}

Flow ExpressionStatement::executeForResult(Frame& frame, Value& result) const {
    result = expression->evaluate(frame);
    return Flow::Normal;
}

Flow Declaration::execute(Frame& frame) const {
    for (const Item& item : items) {
        const VariableUse& use = *item.variable;
        Value initial = item.initial ? item.initial->evaluate(frame) : Value();
        const int size = item.size ? converted(item.size->evaluate(frame), Type::Int).toInt() : 0;
        if (item.size && (size < 0 || size > (1 << 25)))
            throw Error("Invalid array size " + std::to_string(size) + '.');
        frame.impl.spend(1 + size / 64);
        Variable* variable;
        if (use.slot >= 0) {
            variable = &frame.locals[use.slot];
            variable->original = nullptr;
            variable->reset(use.type, use.rows, use.columns);
        } else { // a global variable keeps its value when it is declared again
            variable = &use.resolve(frame);
            if (variable->type != use.type ||
                (use.type == Type::Matrix && (variable->rows != use.rows || variable->columns != use.columns)))
                throw Error("Invalid redeclaration of variable \"$" + use.name + "\" as a different type.");
        }
        if (size > 0 && variable->value.size() == 0) Place{variable, size - 1}.write(zeroValue(elementOf(use.type)));
        if (item.initial) variable->assign(std::move(initial));
    }
    return Flow::Normal;
}

Flow Declaration::executeForResult(Frame& frame, Value& result) const {
    execute(frame);
    result = items.back().initial ? items.back().variable->evaluate(frame) : Value();
    return Flow::Normal;
}

Flow Block::execute(Frame& frame) const { return runFrom(statements, 0, frame); }

Flow If::execute(Frame& frame) const {
    for (const auto& [condition, body] : branches)
        if (isTrue(condition->evaluate(frame))) return body->execute(frame);
    return otherwise ? otherwise->execute(frame) : Flow::Normal;
}

Flow Loop::execute(Frame& frame) const {
    if (declaration) declaration->execute(frame);
    evaluateAll(initial, frame);
    if (testFirst && !holdsLast(conditions, frame)) return Flow::Normal;
    do {
        frame.impl.spend(1);
        const Flow flow = body->execute(frame);
        if (flow == Flow::Return) return flow;
        if (flow == Flow::Break) break;
        evaluateAll(steps, frame);
    } while (holdsLast(conditions, frame));
    return Flow::Normal;
}

Flow ForIn::execute(Frame& frame) const {
    const Value all = array->evaluate(frame);
    Variable& element = variable->resolve(frame);
    if (variable->slot >= 0 && variable->type != Type::None && element.type == Type::None)
        element.reset(variable->type, 0, 0);
    for (std::size_t i = 0; i < all.size(); ++i) {
        frame.impl.spend(1);
        element.assign(arrayElement(all, i));
        const Flow flow = body->execute(frame);
        if (flow == Flow::Return) return flow;
        if (flow == Flow::Break) break;
    }
    return Flow::Normal;
}

Flow Switch::execute(Frame& frame) const {
    const Value value = subject->evaluate(frame);
    const Label* chosen = nullptr;
    frame.impl.spend(static_cast<std::int64_t>(labels.size()));
    for (const Label& label : labels) {
        if (!label.value) {
            if (!chosen) chosen = &label;
        } else if (applyBinary(BinaryOperator::Equal, value, label.value->evaluate(frame)).toBool()) {
            chosen = &label;
            break;
        }
    }
    if (!chosen) return Flow::Normal;
    const Flow flow = runFrom(statements, chosen->start, frame);
    return flow == Flow::Break ? Flow::Normal : flow;
}

Flow Jump::execute(Frame& frame) const {
    if (value) frame.returned = value->evaluate(frame);
    return flow;
}

} // namespace host::mel
