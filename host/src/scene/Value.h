#pragma once

#include <maya/MFloatMatrix.h>
#include <maya/MMatrix.h>

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <variant>
#include <vector>

namespace host::mesh {
class PolyMesh;
}

namespace host::scene {

enum class NumericType : std::uint8_t { None, Bool, Char, Byte, Short, Int, Int64, Float, Double };

/// One to four numbers of one type, stored side by side so that the API can hand out references to them.
struct Numeric {
    NumericType type = NumericType::None;
    std::uint8_t count = 0;
    union {
        bool b[4];
        char c[4];
        unsigned char u[4];
        std::int16_t s[4];
        std::int32_t i[4];
        long long l[4];
        float f[4];
        double d[4] = {0, 0, 0, 0};
    };

    Numeric() = default;
    Numeric(NumericType t, int n, double x = 0, double y = 0, double z = 0, double w = 0);

    double get(int component = 0) const {
        switch (type) {
        case NumericType::None: return 0;
        case NumericType::Bool: return b[component] ? 1 : 0;
        case NumericType::Char: return c[component];
        case NumericType::Byte: return u[component];
        case NumericType::Short: return s[component];
        case NumericType::Int: return i[component];
        case NumericType::Int64: return static_cast<double>(l[component]);
        case NumericType::Float: return f[component];
        case NumericType::Double: return d[component];
        }
        return 0;
    }
    /// Converts to the stored type: fractions are cut off for the integer types, and values beyond their range
    /// are held at its ends (never undefined). A double beyond float's range becomes infinity.
    void set(int component, double value) {
        if (type == NumericType::Float)
            f[component] = static_cast<float>(value);
        else if (type == NumericType::Double)
            d[component] = value;
        else
            setWhole(component, value);
    }
    std::int64_t getInt64(int component = 0) const;
    void setInt64(int component, std::int64_t value);
    /// The address of one component.
    void* address(int component = 0);
    bool operator==(const Numeric& other) const;

private:
    void setWhole(int component, double value);
};

enum class DataKind : std::uint8_t {
    None,
    Mesh,
    StringArray,
    IntArray,
    FloatArray,
    DoubleArray,
    VectorArray,
    PointArray,
    MatrixArray,
    ComponentList,
};

/// Heap data that plugs pass on by reference; treated as unchangeable once it is in a plug, except through the
/// mesh function set.
class Data {
public:
    explicit Data(DataKind kind) : kind_(kind) {}
    virtual ~Data() = default;
    DataKind kind() const { return kind_; }

private:
    DataKind kind_;
};
using DataPtr = std::shared_ptr<Data>;

class MeshData final : public Data {
public:
    MeshData() : Data(DataKind::Mesh) {}
    explicit MeshData(std::shared_ptr<const mesh::PolyMesh> m) : Data(DataKind::Mesh), mesh(std::move(m)) {}
    std::shared_ptr<const mesh::PolyMesh> mesh; ///< may be null: no geometry
};

/// An array of texts, numbers, or tuples (vectors of 3, points of 4, matrices of 16 numbers).
class ArrayData final : public Data {
public:
    explicit ArrayData(DataKind kind) : Data(kind) {}
    std::vector<std::string> texts; ///< StringArray, ComponentList
    std::vector<double> numbers;    ///< every other kind, tuples side by side
    int tupleSize() const;
};

/// A large value that is held elsewhere, so that a Value is no larger than what most plugs hold. It is copied with its
/// holder, and keeps its address when another one is assigned to it.
template <class T>
class Boxed {
public:
    Boxed(const T& value) : value_(std::make_unique<T>(value)) {}
    Boxed(const Boxed& other) : Boxed(*other.value_) {}
    Boxed& operator=(const Boxed& other) {
        *value_ = *other.value_;
        return *this;
    }
    T& get() { return *value_; }
    const T& get() const { return *value_; }

private:
    std::unique_ptr<T> value_; ///< never null
};

/// What a leaf attribute (or a numeric tuple as a whole) holds.
using Value = std::variant<std::monostate, Numeric, std::string, Boxed<MMatrix>, Boxed<MFloatMatrix>, DataPtr>;

/// The matrix that a value holds; null when it holds something else.
inline MMatrix* matrixIn(Value& v) {
    auto* box = std::get_if<Boxed<MMatrix>>(&v);
    return box ? &box->get() : nullptr;
}
inline const MMatrix* matrixIn(const Value& v) { return matrixIn(const_cast<Value&>(v)); }
inline MFloatMatrix* floatMatrixIn(Value& v) {
    auto* box = std::get_if<Boxed<MFloatMatrix>>(&v);
    return box ? &box->get() : nullptr;
}
inline const MFloatMatrix* floatMatrixIn(const Value& v) { return floatMatrixIn(const_cast<Value&>(v)); }

bool equal(const Value& a, const Value& b);

} // namespace host::scene
