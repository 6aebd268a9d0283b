#include "mel/Execution.h"
#include "mel/Noise.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace host::mel {
namespace {

using Type = Value::Type;

constexpr double kDegrees = 180 / std::numbers::pi;

/// The only argument, as a number.
double one(Arguments& a) {
    a.expect(1);
    if (a[0].isArray() || a[0].isNone())
        throw Error(std::string("Cannot use data of type ") + typeName(a[0].type()) + " in a scalar operation.");
    return a.number(0);
}

[[noreturn]] void throwDomain(Arguments& a, double x) {
    throw Error(a.name + ": the argument " + formatFloat(x) + " is out of range.");
}

template <double (*F)(double)>
Value unary(Arguments& a) {
    return F(one(a));
}

/// For functions that take -1 to 1 only; rounding beyond that is forgiven.
template <double (*F)(double), bool Degrees = false>
Value inverse(Arguments& a) {
    const double x = one(a);
    if (!(std::abs(x) <= 1 + 1e-9)) throwDomain(a, x);
    return F(std::clamp(x, -1.0, 1.0)) * (Degrees ? kDegrees : 1.0);
}

template <double (*F)(double)>
Value ofDegrees(Arguments& a) {
    return F(one(a) / kDegrees);
}

double inDegrees(double x) { return x * kDegrees; }
double inRadians(double x) { return x / kDegrees; }
double arcTangentDegrees(double x) { return std::atan(x) * kDegrees; }
double halfAway(double x) { return std::round(x); }

Value absolute(Arguments& a) {
    a.expect(1);
    if (auto i = a[0].get<int>()) return *i < 0 ? negated(a[0]) : a[0];
    if (auto v = a[0].get<Vector>()) return Vector{std::abs(v->x), std::abs(v->y), std::abs(v->z)};
    return std::abs(one(a));
}

Value sign(Arguments& a) {
    const double x = one(a);
    return x < 0 ? -1 : x > 0 ? 1 : 0;
}

template <double (*F)(double)>
Value logarithm(Arguments& a) {
    const double x = one(a);
    if (!(x > 0)) throwDomain(a, x);
    return F(x);
}

Value squareRoot(Arguments& a) {
    const double x = one(a);
    if (!(x >= 0)) throwDomain(a, x);
    return std::sqrt(x);
}

template <double (*F)(double, double)>
Value binary(Arguments& a) {
    a.expect(2);
    return F(a.number(0), a.number(1));
}

double arcTangent2Degrees(double y, double x) { return std::atan2(y, x) * kDegrees; }

Value power(Arguments& a) {
    a.expect(2);
    const double base = a.number(0), exponent = a.number(1);
    if ((base == 0 && exponent < 0) || (base < 0 && exponent != std::floor(exponent))) throwDomain(a, base);
    return std::pow(base, exponent);
}

Value remainder(Arguments& a) {
    a.expect(2);
    return applyBinary(BinaryOperator::Remainder, a.number(0), a.number(1));
}

template <bool Larger>
Value extreme(Arguments& a) {
    a.expect(2);
    if (a[0].get<int>() && a[1].get<int>())
        return Larger ? std::max(a.integer(0), a.integer(1)) : std::min(a.integer(0), a.integer(1));
    return Larger ? std::max(a.number(0), a.number(1)) : std::min(a.number(0), a.number(1));
}

Value clamped(Arguments& a) {
    a.expect(3);
    const double low = std::min(a.number(0), a.number(1)), high = std::max(a.number(0), a.number(1));
    const double v = std::clamp(a.number(2), low, high);
    if (a[0].get<int>() && a[1].get<int>() && a[2].get<int>()) return static_cast<int>(v);
    return v;
}

Value linearStep(Arguments& a) {
    a.expect(3);
    const double start = a.number(0), end = a.number(1), x = a.number(2);
    if (start == end) return x < start ? 0.0 : 1.0;
    return std::clamp((x - start) / (end - start), 0.0, 1.0);
}

Value smoothStep(Arguments& a) {
    const double t = linearStep(a).toFloat();
    return t * t * (3 - 2 * t);
}

double dotProduct(const Vector& a, const Vector& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

Vector scaled(const Vector& v, double s) { return {v.x * s, v.y * s, v.z * s}; }

Vector crossProduct(const Vector& a, const Vector& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

Vector normalized(const Vector& v) {
    const double length = std::sqrt(dotProduct(v, v));
    return length > 0 ? scaled(v, 1 / length) : Vector{};
}

Value dot(Arguments& a) {
    a.expect(2);
    return dotProduct(a[0].toVector(), a[1].toVector());
}

Value cross(Arguments& a) {
    a.expect(2);
    return crossProduct(a[0].toVector(), a[1].toVector());
}

Value magnitude(Arguments& a) {
    a.expect(1);
    const Vector v = a[0].toVector();
    return std::sqrt(dotProduct(v, v));
}

Value unit(Arguments& a) {
    a.expect(1);
    return normalized(a[0].toVector());
}

/// In radians, as MEL's angle.
Value angle(Arguments& a) {
    a.expect(2);
    const Vector u = a[0].toVector(), v = a[1].toVector(), c = crossProduct(u, v);
    return std::atan2(std::sqrt(dotProduct(c, c)), dotProduct(u, v));
}

/// rot(point, axis, radians), by Rodrigues' formula.
Value rotated(Arguments& a) {
    a.expect(3);
    const Vector p = a[0].toVector(), k = normalized(a[1].toVector()), c = crossProduct(k, p);
    const double cosine = std::cos(a.number(2)), sine = std::sin(a.number(2)), along = dotProduct(k, p) * (1 - cosine);
    return Vector{p.x * cosine + c.x * sine + k.x * along, p.y * cosine + c.y * sine + k.y * along,
                  p.z * cosine + c.z * sine + k.z * along};
}

/// hsv_to_rgb(<<hue, saturation, value>>), each from 0 to 1: Smith 1978, "Color gamut transform pairs". A hue goes
/// round.
Value fromHueSaturationValue(Arguments& a) {
    a.expect(1);
    const Vector hsv = a[0].toVector();
    const auto channel = [&hsv](double turn) {
        const double sixth = std::fmod(turn + 6 * (hsv.x - std::floor(hsv.x)), 6.0);
        return hsv.z - hsv.z * hsv.y * std::clamp(std::min(sixth, 4 - sixth), 0.0, 1.0);
    };
    return Vector{channel(5), channel(3), channel(1)};
}

/// The way back; a grey has the hue 0.
Value toHueSaturationValue(Arguments& a) {
    a.expect(1);
    const Vector c = a[0].toVector();
    const double most = std::max({c.x, c.y, c.z}), spread = most - std::min({c.x, c.y, c.z});
    if (spread == 0 || most == 0) return Vector{0, 0, most};
    const double sixth = most == c.x   ? (c.y - c.z) / spread
                         : most == c.y ? 2 + (c.z - c.x) / spread
                                       : 4 + (c.x - c.y) / spread;
    return Vector{(sixth < 0 ? sixth + 6 : sixth) / 6, spread / most, most};
}

/// Uniform in [0, 1), the same on every machine: the library's distributions are not.
double uniform(Arguments& a) {
    auto& random = a.interpreter.impl().random;
    const auto high = static_cast<double>(random() >> 5), low = static_cast<double>(random() >> 6);
    return (high * 67108864.0 + low) / 9007199254740992.0;
}

Value rand(Arguments& a) {
    a.expect(1, 2);
    const bool range = a.count() == 2;
    if (a[0].type() == Type::Vector || (range && a[1].type() == Type::Vector)) {
        const Vector low = range ? a[0].toVector() : Vector{}, high = a[range ? 1 : 0].toVector();
        const double x = uniform(a), y = uniform(a), z = uniform(a);
        return Vector{low.x + (high.x - low.x) * x, low.y + (high.y - low.y) * y, low.z + (high.z - low.z) * z};
    }
    const double low = range ? a.number(0) : 0, high = a.number(range ? 1 : 0);
    return low + (high - low) * uniform(a);
}

Value seed(Arguments& a) {
    a.expect(1);
    a.interpreter.impl().random.seed(static_cast<unsigned>(a.integer(0)));
    return a.integer(0);
}

/// Normally distributed around 0 or a mean, by the Box-Muller transform.
Value gauss(Arguments& a) {
    a.expect(1, 2);
    const double mean = a.count() == 2 ? a.number(1) : 0.0;
    const double radius = std::sqrt(-2 * std::log(1 - uniform(a)));
    return mean + a.number(0) * radius * std::cos(2 * std::numbers::pi * uniform(a));
}

/// A random point in a sphere, or in an ellipsoid when a vector of radii is given.
Value sphereRandom(Arguments& a) {
    a.expect(1);
    const double z = 2 * uniform(a) - 1, phi = 2 * std::numbers::pi * uniform(a), r = std::cbrt(uniform(a));
    const double ring = std::sqrt(1 - z * z);
    const Vector radii = a[0].toVector();
    return Vector{radii.x * r * ring * std::cos(phi), radii.y * r * ring * std::sin(phi), radii.z * r * z};
}

/// Of one to three numbers, or of a vector.
Value noiseAt(Arguments& a) {
    a.expect(1, 3);
    if (const auto v = a[0].get<Vector>(); v && a.count() == 1) return noise(v->x, v->y, v->z);
    return noise(a.number(0), a.count() > 1 ? a.number(1) : 0, a.count() > 2 ? a.number(2) : 0);
}

/// Of a vector: noise of its own in each direction.
Value vectorNoise(Arguments& a) {
    a.expect(1);
    const Vector v = a[0].toVector();
    constexpr double apart = 19.19; // not on the same lattice
    return Vector{noise(v.x, v.y, v.z), noise(v.y + apart, v.z, v.x), noise(v.z, v.x, v.y + apart)};
}

template <Type To>
Value convert(Arguments& a) {
    a.expect(1);
    return converted(a[0], To);
}

Value equivalent(Arguments& a) {
    a.expect(2, 3);
    return std::abs(a.number(0) - a.number(1)) <= (a.count() == 3 ? a.number(2) : 1e-10);
}

} // namespace

void addMathFunctions(Interpreter::Impl& impl) {
    static constexpr std::pair<const char*, LanguageFunction> functions[] = {{"abs", absolute},
                                                                             {"ceil", unary<std::ceil>},
                                                                             {"floor", unary<std::floor>},
                                                                             {"trunc", unary<std::trunc>},
                                                                             {"round", unary<halfAway>},
                                                                             {"sin", unary<std::sin>},
                                                                             {"cos", unary<std::cos>},
                                                                             {"tan", unary<std::tan>},
                                                                             {"asin", inverse<std::asin>},
                                                                             {"acos", inverse<std::acos>},
                                                                             {"atan", unary<std::atan>},
                                                                             {"atan2", binary<std::atan2>},
                                                                             {"sind", ofDegrees<std::sin>},
                                                                             {"cosd", ofDegrees<std::cos>},
                                                                             {"tand", ofDegrees<std::tan>},
                                                                             {"asind", inverse<std::asin, true>},
                                                                             {"acosd", inverse<std::acos, true>},
                                                                             {"atand", unary<arcTangentDegrees>},
                                                                             {"atan2d", binary<arcTangent2Degrees>},
                                                                             {"deg_to_rad", unary<inRadians>},
                                                                             {"rad_to_deg", unary<inDegrees>},
                                                                             {"exp", unary<std::exp>},
                                                                             {"log", logarithm<std::log>},
                                                                             {"log10", logarithm<std::log10>},
                                                                             {"sqrt", squareRoot},
                                                                             {"pow", power},
                                                                             {"hypot", binary<std::hypot>},
                                                                             {"fmod", remainder},
                                                                             {"min", extreme<false>},
                                                                             {"max", extreme<true>},
                                                                             {"clamp", clamped},
                                                                             {"sign", sign},
                                                                             {"linstep", linearStep},
                                                                             {"smoothstep", smoothStep},
                                                                             {"dot", dot},
                                                                             {"cross", cross},
                                                                             {"mag", magnitude},
                                                                             {"unit", unit},
                                                                             {"angle", angle},
                                                                             {"rot", rotated},
                                                                             {"hsv_to_rgb", fromHueSaturationValue},
                                                                             {"rgb_to_hsv", toHueSaturationValue},
                                                                             {"noise", noiseAt},
                                                                             {"dnoise", vectorNoise},
                                                                             {"rand", rand},
                                                                             {"seed", seed},
                                                                             {"gauss", gauss},
                                                                             {"sphrand", sphereRandom},
                                                                             {"int", convert<Type::Int>},
                                                                             {"float", convert<Type::Float>},
                                                                             {"string", convert<Type::String>},
                                                                             {"equivalent", equivalent},
                                                                             {"equivalentTol", equivalent}};
    for (const auto& [name, function] : functions) impl.addLanguageFunction(name, function);
}

} // namespace host::mel
