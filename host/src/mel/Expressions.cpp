#include "base/Messages.h"
#include "mel/Execution.h"
#include "mel/TextTools.h"

#include <algorithm>

namespace host::mel {
namespace {

using Type = Value::Type;

constexpr int kArrayLimit = 1 << 25;

template <class Array>
typename Array::value_type elementAt(const Array& array, int index) {
    const auto i = static_cast<std::size_t>(index);
    return i < array.size() ? array[i] : typename Array::value_type{};
}

Value element(const Value& array, int index, int column) {
    if (index < 0) throw Error("Array index " + std::to_string(index) + " is negative.");
    if (auto m = array.get<Matrix>()) {
        if (column < 0 && m->rows == 1) {
            column = index;
            index = 0;
        }
        if (index >= m->rows || column < 0 || column >= m->columns) throw Error("Matrix index is out of range.");
        return m->elements[static_cast<std::size_t>(index * m->columns + column)];
    }
    if (column >= 0) throw Error("Only a matrix has two indices.");
    switch (array.type()) {
    case Type::IntArray: return elementAt(*array.get<IntArray>(), index);
    case Type::FloatArray: return elementAt(*array.get<FloatArray>(), index);
    case Type::StringArray: return elementAt(*array.get<StringArray>(), index);
    case Type::VectorArray: return elementAt(*array.get<VectorArray>(), index);
    default: throw Error(std::string("Cannot index data of type ") + typeName(array.type()) + '.');
    }
}

template <class Array>
typename Array::value_type& grown(Array& array, int index) {
    const auto i = static_cast<std::size_t>(index);
    if (i >= array.size()) {
        // In steps: filling an array from its first element on must not copy it each time.
        if (i >= array.capacity()) array.reserve(std::max(i + 1, array.capacity() * 2));
        array.resize(i + 1);
    }
    return array[i];
}

void setElement(Variable& variable, int index, int column, const Value& v) {
    if (variable.type == Type::None) {
        const Type type = arrayOf(v.type());
        if (type == Type::None)
            throw Error(std::string("Cannot make an array of data of type ") + typeName(v.type()) + '.');
        variable.reset(type, 0, 0);
    }
    if (index < 0) throw Error("Array index " + std::to_string(index) + " is negative.");
    Value& array = variable.value;
    if (auto m = array.get<Matrix>()) {
        if (column < 0 && m->rows == 1) {
            column = index;
            index = 0;
        }
        if (index >= m->rows || column < 0 || column >= m->columns) throw Error("Matrix index is out of range.");
        m->elements[static_cast<std::size_t>(index * m->columns + column)] = converted(v, Type::Float).toFloat();
        return;
    }
    if (column >= 0) throw Error("Only a matrix has two indices.");
    if (index >= kArrayLimit) throw Error("Array index " + std::to_string(index) + " is too large.");
    if (auto a = array.get<IntArray>())
        grown(*a, index) = converted(v, Type::Int).toInt();
    else if (auto f = array.get<FloatArray>())
        grown(*f, index) = converted(v, Type::Float).toFloat();
    else if (auto s = array.get<StringArray>())
        grown(*s, index) = converted(v, Type::String).toString();
    else if (auto p = array.get<VectorArray>())
        grown(*p, index) = converted(v, Type::Vector).toVector();
    else
        throw Error(std::string("Cannot index data of type ") + typeName(array.type()) + '.');
}

double component(const Value& v, int i) {
    auto vector = v.get<Vector>();
    if (!vector) throw Error(std::string("Only a vector has components, not data of type ") + typeName(v.type()) + '.');
    return i == 0 ? vector->x : i == 1 ? vector->y : vector->z;
}

Matrix fitted(const Matrix& m, int rows, int columns) {
    if (m.rows > rows || m.columns > columns) throw Error("The matrix is larger than the variable it is assigned to.");
    Matrix out{rows, columns, FloatArray(static_cast<std::size_t>(rows) * static_cast<std::size_t>(columns))};
    for (int r = 0; r < m.rows; ++r)
        for (int c = 0; c < m.columns; ++c)
            out.elements[static_cast<std::size_t>(r * columns + c)] =
                m.elements[static_cast<std::size_t>(r * m.columns + c)];
    return out;
}

} // namespace

void Variable::assign(Value v) {
    if (type == v.type() && type != Type::Matrix) {
        value = std::move(v);
        return;
    }
    if (type == Type::None) {
        if (v.isNone()) throw Error("Cannot assign data of type void.");
        type = v.type();
        if (auto m = v.get<Matrix>()) {
            rows = m->rows;
            columns = m->columns;
        }
        value = std::move(v);
        return;
    }
    v = converted(std::move(v), type);
    if (auto m = v.get<Matrix>(); m && (m->rows != rows || m->columns != columns)) v = fitted(*m, rows, columns);
    value = std::move(v);
}

void Variable::reset(Type newType, int newRows, int newColumns) {
    type = newType;
    rows = newRows;
    columns = newColumns;
    value = type == Type::Matrix ? Value(fitted({}, rows, columns)) : zeroValue(type);
}

Value Place::read() const {
    Value v = index < 0 ? variable->value : element(variable->value, index, column);
    return component < 0 ? v : Value(mel::component(v, component));
}

void Place::write(Value v) const {
    if (component >= 0) {
        Place whole = *this;
        whole.component = -1;
        Value old = whole.read();
        mel::component(old, component);
        auto vector = old.get<Vector>();
        (component == 0 ? vector->x : component == 1 ? vector->y : vector->z) = converted(v, Type::Float).toFloat();
        v = std::move(old);
    }
    if (index < 0)
        variable->assign(std::move(v));
    else
        setElement(*variable, index, column, v);
}

Variable& VariableUse::resolve(Frame& frame) const {
    if (slot >= 0) {
        Variable& local = frame.locals[slot];
        return local.original ? *local.original : local;
    }
    if (!global) {
        global = &frame.impl.global(name);
        if (global->type == Type::None && type != Type::None) global->reset(type, rows, columns);
    }
    return *global;
}

Value VariableUse::evaluate(Frame& frame) const { return resolve(frame).value; }

Value ElementUse::evaluate(Frame& frame) const {
    const int i = converted(index->evaluate(frame), Type::Int).toInt();
    const int j = column ? converted(column->evaluate(frame), Type::Int).toInt() : -1;
    if (column && j < 0) throw Error("Array index " + std::to_string(j) + " is negative.");
    if (const Variable* v = base->variable(frame)) return element(v->value, i, j);
    return element(base->evaluate(frame), i, j);
}

Place ElementUse::place(Frame& frame) const {
    Place place = base->place(frame);
    place.index = converted(index->evaluate(frame), Type::Int).toInt();
    if (column) place.column = converted(column->evaluate(frame), Type::Int).toInt();
    if (place.index < 0 || (column && place.column < 0)) throw Error("Array index is negative.");
    return place;
}

Value ComponentUse::evaluate(Frame& frame) const { return mel::component(base->evaluate(frame), component); }

Place ComponentUse::place(Frame& frame) const {
    Place place = base->place(frame);
    place.component = component;
    return place;
}

Value BinaryChain::evaluate(Frame& frame) const {
    Value result = first->evaluate(frame);
    for (const Link& link : links) {
        result = applyBinary(link.op, result, link.operand->evaluate(frame));
        frame.impl.spend(stepsFor(result));
    }
    return result;
}

Value LogicalChain::evaluate(Frame& frame) const {
    frame.impl.spend(static_cast<std::int64_t>(operands.size() / 2));
    for (const ExpressionPointer& operand : operands)
        if (isTrue(operand->evaluate(frame)) != isAnd) return !isAnd;
    return isAnd;
}

Value Negation::evaluate(Frame& frame) const {
    Value v = operand->evaluate(frame);
    return logical ? Value(!isTrue(v)) : negated(v);
}

Value Conditional::evaluate(Frame& frame) const {
    return isTrue(condition->evaluate(frame)) ? yes->evaluate(frame) : no->evaluate(frame);
}

void Assignment::run(Frame& frame) const {
    if (Variable* variable = target->variable(frame)) {
        Value v = source->evaluate(frame);
        auto* text = compound && op == BinaryOperator::Add ? variable->value.get<std::string>() : nullptr;
        if (text && (v.isNumber() || v.get<std::string>())) {
            // In place: a text that grows piece by piece must not be copied each time.
            const std::string more = v.toString();
            requireTextSize(text->size() + more.size());
            text->append(more);
            frame.impl.spend(stepsFor(v));
            return;
        }
        variable->assign(compound ? applyBinary(op, variable->value, v) : std::move(v));
        frame.impl.spend(stepsFor(variable->value));
        return;
    }
    const Place place = target->place(frame);
    frame.impl.spend(1 + place.index / 64);
    Value v = source->evaluate(frame);
    place.write(compound ? applyBinary(op, place.read(), v) : std::move(v));
}

Value Assignment::evaluate(Frame& frame) const {
    if (Variable* variable = target->variable(frame)) {
        run(frame);
        return variable->value;
    }
    const Place place = target->place(frame); // once: the index may have effects
    frame.impl.spend(1 + place.index / 64);
    Value v = source->evaluate(frame);
    place.write(compound ? applyBinary(op, place.read(), v) : std::move(v));
    return place.read();
}

Value Increment::evaluate(Frame& frame) const {
    const Place place = target->place(frame);
    if (place.index < 0 && place.component < 0) {
        if (auto i = place.variable->value.get<int>()) {
            const int old = *i;
            *i = static_cast<int>(static_cast<unsigned>(old) + static_cast<unsigned>(step));
            return prefix ? *i : old;
        }
    }
    const Value old = place.read();
    if (!old.isNumber()) throw Error(std::string("Cannot increment data of type ") + typeName(old.type()) + '.');
    place.write(applyBinary(BinaryOperator::Add, old, step));
    return prefix ? place.read() : old;
}

Value Cast::evaluate(Frame& frame) const { return converted(operand->evaluate(frame), type); }

Value ArrayLiteral::evaluate(Frame& frame) const {
    frame.impl.spend(static_cast<std::int64_t>(elements.size()));
    std::vector<Value> values;
    values.reserve(elements.size());
    Type widest = Type::Int;
    for (const ExpressionPointer& e : elements) {
        values.push_back(e->evaluate(frame));
        const Type type = values.back().type();
        if (arrayOf(type) == Type::None)
            throw Error(std::string("An array cannot contain data of type ") + typeName(type) + '.');
        // A text turns every element to text; a vector does so with numbers.
        if (type == Type::String || widest == Type::String)
            widest = Type::String;
        else
            widest = std::max(widest, type);
    }
    auto collect = [&](auto array, auto convert) {
        array.reserve(values.size());
        for (const Value& v : values) array.push_back(convert(v));
        return Value(std::move(array));
    };
    switch (widest) {
    case Type::Int: return collect(IntArray{}, [](const Value& v) { return v.toInt(); });
    case Type::Float: return collect(FloatArray{}, [](const Value& v) { return v.toFloat(); });
    case Type::String: return collect(StringArray{}, [](const Value& v) { return v.toString(); });
    default: return collect(VectorArray{}, [](const Value& v) { return v.toVector(); });
    }
}

Value VectorLiteral::evaluate(Frame& frame) const {
    Matrix m{static_cast<int>(rows.size()), static_cast<int>(rows.front().size()), {}};
    frame.impl.spend(m.rows * m.columns / 4);
    for (const auto& row : rows)
        for (const ExpressionPointer& e : row)
            m.elements.push_back(converted(e->evaluate(frame), Type::Float).toFloat());
    if (m.rows == 1 && m.columns == 3) return Vector{m.elements[0], m.elements[1], m.elements[2]};
    return m;
}

Value CallExpression::evaluate(Frame& frame) const {
    Interpreter::Impl& impl = frame.impl;
    try {
        Procedure* found = impl.findProcedure(name, &frame.scope);
        auto command = impl.commands.end();
        if (!found) {
            command = impl.commands.find(name);
            if (command == impl.commands.end() && !(found = impl.autoLoad(name)))
                throw Error("Cannot find procedure \"" + name + "\".");
        }
        if (!found) {
            const std::shared_ptr<Command> held = command->second; // it may unregister itself
            if (!held->language) {
                std::vector<Value> values;
                values.reserve(arguments.size());
                for (const ExpressionPointer& e : arguments) values.push_back(e->evaluate(frame));
                return impl.runCommand(held, name, std::move(values));
            }
            std::vector<Value> temporary;
            temporary.reserve(arguments.size());
            Arguments passed{impl.owner, name, {}};
            passed.values.reserve(arguments.size());
            for (const ExpressionPointer& e : arguments) {
                if (Variable* variable = e->variable(frame))
                    passed.values.push_back(&variable->value);
                else
                    passed.values.push_back(&temporary.emplace_back(e->evaluate(frame)));
            }
            return impl.runLanguage(*held, passed);
        }
        const std::shared_ptr<Procedure> procedure = found->shared_from_this();
        if (arguments.size() != procedure->parameters.size())
            throw Error("Wrong number of arguments on call to " + name + ": " + std::to_string(arguments.size()) +
                        " instead of " + std::to_string(procedure->parameters.size()) + '.');
        std::vector<Variable> locals(static_cast<std::size_t>(procedure->slots));
        for (std::size_t i = 0; i < arguments.size(); ++i) {
            const Procedure::Parameter& parameter = procedure->parameters[i];
            Variable* variable = parameter.type >= Type::IntArray ? arguments[i]->variable(frame) : nullptr;
            if (variable && variable->type == parameter.type) {
                locals[i].original = variable;
                continue;
            }
            locals[i].reset(parameter.type, parameter.rows, parameter.columns);
            locals[i].assign(arguments[i]->evaluate(frame));
        }
        return impl.runProcedure(procedure, locals);
    } catch (const Error& e) {
        if (e.line() > 0) throw;
        rethrowAt(frame.scope, line);
    } catch (const std::exception&) {
        rethrowAt(frame.scope, line);
    }
}

Value CatchExpression::evaluate(Frame& frame) const {
    try {
        operand->evaluate(frame);
        return 0;
    } catch (const Error& e) {
        if (!quiet && !e.silent) showError(e.described());
        return 1;
    }
}

} // namespace host::mel
