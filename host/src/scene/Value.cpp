#include "scene/Value.h"

#include <cmath>
#include <limits>

namespace host::scene {
namespace {

template <class T>
T held(double v) {
    if (std::isnan(v)) return 0;
    if (v <= static_cast<double>(std::numeric_limits<T>::min())) return std::numeric_limits<T>::min();
    if (v >= static_cast<double>(std::numeric_limits<T>::max())) return std::numeric_limits<T>::max();
    return static_cast<T>(v);
}

template <class T>
T held(std::int64_t v) {
    if (v < std::numeric_limits<T>::min()) return std::numeric_limits<T>::min();
    if (v > std::numeric_limits<T>::max()) return std::numeric_limits<T>::max();
    return static_cast<T>(v);
}

template <class From>
void store(Numeric& n, int k, From v) {
    switch (n.type) {
    case NumericType::None: break;
    case NumericType::Bool: n.b[k] = v != 0; break;
    case NumericType::Char: n.c[k] = held<char>(v); break;
    case NumericType::Byte: n.u[k] = held<unsigned char>(v); break;
    case NumericType::Short: n.s[k] = held<std::int16_t>(v); break;
    case NumericType::Int: n.i[k] = held<std::int32_t>(v); break;
    case NumericType::Int64: n.l[k] = held<std::int64_t>(v); break;
    case NumericType::Float: n.f[k] = static_cast<float>(v); break;
    case NumericType::Double: n.d[k] = static_cast<double>(v); break;
    }
}

} // namespace

Numeric::Numeric(NumericType t, int n, double x, double y, double z, double w)
    : type(t), count(static_cast<std::uint8_t>(n)) {
    const double values[4] = {x, y, z, w};
    for (int k = 0; k < n; ++k) set(k, values[k]);
}

void Numeric::setWhole(int k, double value) { store(*this, k, value); }

std::int64_t Numeric::getInt64(int k) const { return type == NumericType::Int64 ? l[k] : held<std::int64_t>(get(k)); }

void Numeric::setInt64(int k, std::int64_t value) { store(*this, k, value); }

void* Numeric::address(int k) {
    switch (type) {
    case NumericType::None: return nullptr;
    case NumericType::Bool: return &b[k];
    case NumericType::Char: return &c[k];
    case NumericType::Byte: return &u[k];
    case NumericType::Short: return &s[k];
    case NumericType::Int: return &i[k];
    case NumericType::Int64: return &l[k];
    case NumericType::Float: return &f[k];
    case NumericType::Double: return &d[k];
    }
    return nullptr;
}

bool Numeric::operator==(const Numeric& other) const {
    if (type != other.type || count != other.count) return false;
    for (int k = 0; k < count; ++k) {
        if (type == NumericType::Int64 ? l[k] != other.l[k] : get(k) != other.get(k)) return false;
    }
    return true;
}

int ArrayData::tupleSize() const {
    switch (kind()) {
    case DataKind::VectorArray: return 3;
    case DataKind::PointArray: return 4;
    case DataKind::MatrixArray: return 16;
    default: return 1;
    }
}

bool equal(const Value& a, const Value& b) {
    if (a.index() != b.index()) return false;
    if (auto* n = std::get_if<Numeric>(&a)) return *n == std::get<Numeric>(b);
    if (auto* s = std::get_if<std::string>(&a)) return *s == std::get<std::string>(b);
    if (auto* m = matrixIn(a)) return *m == *matrixIn(b);
    if (auto* m = floatMatrixIn(a)) return *m == *floatMatrixIn(b);
    if (auto* d = std::get_if<DataPtr>(&a)) return *d == std::get<DataPtr>(b);
    return true;
}

} // namespace host::scene
