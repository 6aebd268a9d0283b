#pragma once

#include "mel/Value.h"

namespace host::mel {

enum class BinaryOperator {
    Add,
    Subtract,
    Multiply,
    Divide,
    Remainder,
    Cross,
    Less,
    LessEqual,
    Greater,
    GreaterEqual,
    Equal,
    NotEqual
};

/// Applies an operator with MEL's rules: int with int stays int (wrapping on overflow, dividing toward zero), a text
/// on either side of + joins texts, * of two vectors is their dot product and ^ their cross product. Throws Error for
/// a division by zero and for operands that do not go together.
Value applyBinary(BinaryOperator op, const Value& a, const Value& b);

Value negated(const Value& v);

/// Whether a condition holds. Throws Error for arrays and for "no value".
bool isTrue(const Value& v);

/// "int", "string[]", "void"...
const char* typeName(Value::Type type);
Value::Type arrayOf(Value::Type element);
Value::Type elementOf(Value::Type array);

/// Converts as an assignment to a variable of the type does. Throws Error when MEL has no such conversion: an array
/// to a scalar, and no value to anything but an array.
Value converted(Value v, Value::Type type);

/// The zero, empty text or empty array of a type.
Value zeroValue(Value::Type type);

} // namespace host::mel
