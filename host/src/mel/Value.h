#pragma once

#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace host::mel {

struct Vector {
    double x = 0, y = 0, z = 0;
    bool operator==(const Vector&) const = default;
};

/// MEL's matrix: fixed size, given at its declaration.
struct Matrix {
    int rows = 0, columns = 0;
    std::vector<double> elements; ///< row by row
    bool operator==(const Matrix&) const = default;
};

using IntArray = std::vector<int>;
using FloatArray = std::vector<double>;
using StringArray = std::vector<std::string>;
using VectorArray = std::vector<Vector>;

/// A value of the MEL language. MEL's int is 32-bit, its float is a double.
class Value {
public:
    enum class Type { None, Int, Float, String, Vector, Matrix, IntArray, FloatArray, StringArray, VectorArray };

    Value() = default;
    Value(int v) : data_(v) {}
    Value(bool v) : data_(v ? 1 : 0) {}
    Value(double v) : data_(v) {}
    Value(const char* v) : data_(std::string(v)) {}
    Value(std::string v) : data_(std::move(v)) {}
    Value(std::string_view v) : data_(std::string(v)) {}
    Value(Vector v) : data_(v) {}
    Value(Matrix v) : data_(std::move(v)) {}
    Value(IntArray v) : data_(std::move(v)) {}
    Value(FloatArray v) : data_(std::move(v)) {}
    Value(StringArray v) : data_(std::move(v)) {}
    Value(VectorArray v) : data_(std::move(v)) {}

    Type type() const { return static_cast<Type>(data_.index()); }
    bool isNone() const { return type() == Type::None; }
    bool isArray() const { return type() >= Type::IntArray; }
    bool isNumber() const { return type() == Type::Int || type() == Type::Float; }

    /// Number of elements: an array's size, 1 for any other value, 0 for none.
    std::size_t size() const;

    /// @name Conversions, as MEL's assignment does them
    /// A text converts to the number it starts with (0 when there is none); a vector to its length; an array
    /// gives its first element to a scalar, and a scalar makes an array of one.
    /// @{
    int toInt() const;
    double toFloat() const;
    bool toBool() const;
    std::string toString() const;
    Vector toVector() const;
    IntArray toIntArray() const;
    FloatArray toFloatArray() const;
    StringArray toStringArray() const;
    VectorArray toVectorArray() const;
    /// @}

    /// The value as `print` shows it (an array: one element a line, each ended by a line feed).
    std::string printed() const;

    template <class T>
    const T* get() const {
        return std::get_if<T>(&data_);
    }
    template <class T>
    T* get() {
        return std::get_if<T>(&data_);
    }

private:
    std::variant<std::monostate, int, double, std::string, Vector, Matrix, IntArray, FloatArray, StringArray,
                 VectorArray>
        data_;
};

/// A number as MEL prints it: at most 10 significant digits ("%.10g"), independent of the locale.
std::string formatFloat(double v);

} // namespace host::mel
