#include "mel/Operators.h"

#include "mel/Command.h"
#include "mel/TextTools.h"

#include <climits>
#include <cmath>
#include <compare>

namespace host::mel {
namespace {

using Op = BinaryOperator;
using Type = Value::Type;

[[noreturn]] void throwUnusable(const Value& v) {
    throw Error(std::string("Cannot use data of type ") + typeName(v.type()) + " in a scalar operation.");
}

[[noreturn]] void throwMismatch(const Value& a, const Value& b) {
    throw Error(std::string("Invalid operands: ") + typeName(a.type()) + " and " + typeName(b.type()) + '.');
}

int wrapped(unsigned v) { return static_cast<int>(v); }

template <class Order>
bool holds(Op op, Order order) {
    switch (op) {
    case Op::Less: return order < 0;
    case Op::LessEqual: return order <= 0;
    case Op::Greater: return order > 0;
    case Op::GreaterEqual: return order >= 0;
    case Op::Equal: return order == 0;
    default: return order != 0;
    }
}

Value onInts(Op op, int a, int b) {
    const auto ua = static_cast<unsigned>(a), ub = static_cast<unsigned>(b);
    switch (op) {
    case Op::Add: return wrapped(ua + ub);
    case Op::Subtract: return wrapped(ua - ub);
    case Op::Multiply: return wrapped(ua * ub);
    case Op::Divide:
        if (b == 0) throw Error("Cannot divide by zero.");
        return b == -1 ? wrapped(0u - ua) : a / b;
    case Op::Remainder:
        if (b == 0) throw Error("Cannot take the remainder of a division by zero.");
        return b == -1 ? 0 : a % b;
    case Op::Cross: throw Error("The operator ^ needs vectors.");
    default: return holds(op, a <=> b);
    }
}

Value onFloats(Op op, double a, double b) {
    switch (op) {
    case Op::Add: return a + b;
    case Op::Subtract: return a - b;
    case Op::Multiply: return a * b;
    case Op::Divide:
        if (b == 0) throw Error("Cannot divide by zero.");
        return a / b;
    case Op::Remainder:
        if (b == 0) throw Error("Cannot take the remainder of a division by zero.");
        return std::fmod(a, b);
    case Op::Cross: throw Error("The operator ^ needs vectors.");
    default: return holds(op, a <=> b);
    }
}

Value onVectors(Op op, const Value& left, const Value& right) {
    const Vector a = left.toVector(), b = right.toVector();
    const bool both = left.type() == Type::Vector && right.type() == Type::Vector;
    switch (op) {
    case Op::Add: return Vector{a.x + b.x, a.y + b.y, a.z + b.z};
    case Op::Subtract: return Vector{a.x - b.x, a.y - b.y, a.z - b.z};
    case Op::Multiply:
        if (both) return a.x * b.x + a.y * b.y + a.z * b.z;
        return Vector{a.x * b.x, a.y * b.y, a.z * b.z};
    case Op::Divide:
        if (b.x == 0 || b.y == 0 || b.z == 0) throw Error("Cannot divide by zero.");
        return Vector{a.x / b.x, a.y / b.y, a.z / b.z};
    case Op::Cross:
        if (!both) throwMismatch(left, right);
        return Vector{a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
    case Op::Equal: return a == b;
    case Op::NotEqual: return !(a == b);
    case Op::Remainder: throwMismatch(left, right);
    default: return holds(op, Value(a).toFloat() <=> Value(b).toFloat());
    }
}

Value onMatrices(Op op, const Value& left, const Value& right) {
    auto a = left.get<Matrix>(), b = right.get<Matrix>();
    if (!a || !b) {
        const Matrix* m = a ? a : b;
        const Value& other = a ? right : left;
        if (!other.isNumber() || !(op == Op::Multiply || (op == Op::Divide && a))) throwMismatch(left, right);
        Matrix out = *m;
        for (double& e : out.elements) e = onFloats(op, e, other.toFloat()).toFloat();
        return out;
    }
    if (op == Op::Equal) return *a == *b;
    if (op == Op::NotEqual) return !(*a == *b);
    if (op == Op::Add || op == Op::Subtract) {
        if (a->rows != b->rows || a->columns != b->columns) throw Error("The matrices differ in size.");
        Matrix out = *a;
        for (std::size_t i = 0; i < out.elements.size(); ++i)
            out.elements[i] += op == Op::Add ? b->elements[i] : -b->elements[i];
        return out;
    }
    if (op != Op::Multiply) throwMismatch(left, right);
    if (a->columns != b->rows) throw Error("The matrices' sizes do not fit a product.");
    Matrix out{a->rows, b->columns,
               FloatArray(static_cast<std::size_t>(a->rows) * static_cast<std::size_t>(b->columns))};
    for (int r = 0; r < a->rows; ++r)
        for (int c = 0; c < b->columns; ++c) {
            double sum = 0;
            for (int k = 0; k < a->columns; ++k)
                sum += a->elements[static_cast<std::size_t>(r * a->columns + k)] *
                       b->elements[static_cast<std::size_t>(k * b->columns + c)];
            out.elements[static_cast<std::size_t>(r * b->columns + c)] = sum;
        }
    return out;
}

} // namespace

Value applyBinary(Op op, const Value& a, const Value& b) {
    const Type ta = a.type(), tb = b.type();
    if (ta == Type::Int && tb == Type::Int) return onInts(op, *a.get<int>(), *b.get<int>());
    if (a.isNumber() && b.isNumber()) return onFloats(op, a.toFloat(), b.toFloat());
    if (a.isArray() || a.isNone()) throwUnusable(a);
    if (b.isArray() || b.isNone()) throwUnusable(b);
    if (ta == Type::String || tb == Type::String) {
        if (op == Op::Add) {
            std::string left = a.toString(), right = b.toString();
            requireTextSize(left.size() + right.size());
            return std::move(left) + right;
        }
        if (op >= Op::Less) return holds(op, a.toString().compare(b.toString()));
        throwMismatch(a, b);
    }
    if (ta == Type::Matrix || tb == Type::Matrix) return onMatrices(op, a, b);
    return onVectors(op, a, b);
}

Value negated(const Value& v) {
    switch (v.type()) {
    case Type::Int: return wrapped(0u - static_cast<unsigned>(*v.get<int>()));
    case Type::Float: return -*v.get<double>();
    case Type::Vector:
    case Type::Matrix: return applyBinary(Op::Multiply, v, Value(-1.0));
    default: throwUnusable(v);
    }
}

bool isTrue(const Value& v) {
    if (v.isArray() || v.isNone()) throwUnusable(v);
    return v.toBool();
}

const char* typeName(Type type) {
    static constexpr const char* names[] = {"void",   "int",   "float",   "string",   "vector",
                                            "matrix", "int[]", "float[]", "string[]", "vector[]"};
    return names[static_cast<int>(type)];
}

Type arrayOf(Type element) {
    switch (element) {
    case Type::Int: return Type::IntArray;
    case Type::Float: return Type::FloatArray;
    case Type::String: return Type::StringArray;
    case Type::Vector: return Type::VectorArray;
    default: return Type::None;
    }
}

Type elementOf(Type array) {
    switch (array) {
    case Type::IntArray: return Type::Int;
    case Type::FloatArray:
    case Type::Matrix: return Type::Float;
    case Type::StringArray: return Type::String;
    case Type::VectorArray: return Type::Vector;
    default: return Type::None;
    }
}

Value converted(Value v, Type type) {
    const Type from = v.type();
    if (from == type || type == Type::None) return v;
    auto refuse = [&]() {
        throw Error(std::string("Cannot convert data of type ") + typeName(from) + " to type " + typeName(type) + '.');
    };
    const bool fromArray = v.isArray(), toArray = type >= Type::IntArray;
    if (from == Type::None && !toArray) refuse();
    if (from == Type::Matrix && type != Type::FloatArray) refuse();
    if (fromArray && !toArray) {
        // Commands answer three numbers where a vector is meant.
        const bool three = (from == Type::IntArray || from == Type::FloatArray) && v.size() == 3;
        if (!(type == Type::Vector && three)) refuse();
    }
    switch (type) {
    case Type::Int: return v.type() == Type::String && v.toBool() && v.toFloat() == 0 ? 1 : v.toInt();
    case Type::Float: return v.toFloat();
    case Type::String: return v.toString();
    case Type::Vector: return v.toVector();
    case Type::IntArray: return v.toIntArray();
    case Type::FloatArray: return v.toFloatArray();
    case Type::StringArray: return v.toStringArray();
    case Type::VectorArray: return v.toVectorArray();
    case Type::Matrix:
        if (from == Type::Vector) return Matrix{1, 3, v.toFloatArray()};
        refuse();
        break;
    case Type::None: break;
    }
    return v;
}

Value zeroValue(Type type) {
    switch (type) {
    case Type::Int: return 0;
    case Type::Float: return 0.0;
    case Type::String: return std::string();
    case Type::Vector: return Vector{};
    case Type::Matrix: return Matrix{};
    case Type::IntArray: return IntArray{};
    case Type::FloatArray: return FloatArray{};
    case Type::StringArray: return StringArray{};
    case Type::VectorArray: return VectorArray{};
    case Type::None: break;
    }
    return {};
}

} // namespace host::mel
