#include "scene/Evaluation.h"
#include "scene/TypeRegistrar.h"

#include <maya/MPoint.h>
#include <maya/MTransformationMatrix.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <span>

namespace host::scene {
namespace {

using A = Attribute;
using N = NumericType;
using Three = std::array<double, 3>;

/// The plugs of a node that calculates, by the places that its type's table gives them.
class Plugs {
public:
    Plugs(Node& node, std::span<const Attribute* const> attributes) : node_(node), attributes_(attributes) {}

    double number(std::size_t place) {
        const Attribute& a = *attributes_[place];
        Cell* c = node_.existingCell(a);
        if (!c) return std::get<Numeric>(a.defaultValue).get();
        evaluate(*c);
        return c->number();
    }
    Three three(std::size_t place) {
        const Attribute& a = *attributes_[place];
        Cell* c = node_.existingCell(a);
        if (!c) return threeOf(std::get<Numeric>(a.defaultValue));
        evaluate(*c);
        return threeOf(std::get<Numeric>(c->value));
    }
    MMatrix matrix(std::size_t place) {
        Cell* c = node_.existingCell(*attributes_[place]);
        if (!c) return MMatrix();
        evaluate(*c);
        return *matrixIn(c->value);
    }
    Value value(std::size_t place) {
        Cell& c = node_.cell(*attributes_[place]);
        evaluate(c);
        return c.value;
    }
    /// The elements of an array in their order, up to date; null when it has none.
    Elements* elements(std::size_t place) {
        Cell* c = node_.existingCell(*attributes_[place]);
        if (!c || c->elements.empty()) return nullptr;
        evaluate(*c);
        return &c->elements;
    }

    void give(std::size_t place, Value value) {
        Cell& c = node_.cell(*attributes_[place]);
        c.value = std::move(value);
        setClean(c);
    }
    void give(std::size_t place, double x) { giveNumbers(place, std::array{x}); }
    void give(std::size_t place, const Three& v) { giveNumbers(place, v); }

    static Three threeOf(const Numeric& n) {
        if (n.count == 3 && n.type == N::Float) return {n.f[0], n.f[1], n.f[2]};
        return {n.get(0), n.get(1), n.count > 2 ? n.get(2) : 0};
    }

private:
    /// Into the numbers that the cell has, as a value of its own kind.
    template <std::size_t Count>
    void giveNumbers(std::size_t place, const std::array<double, Count>& v) {
        Cell& c = node_.cell(*attributes_[place]);
        auto& numbers = std::get<Numeric>(c.value);
        for (std::size_t k = 0; k < Count; ++k) numbers.set(static_cast<int>(k), v[k]);
        setClean(c);
    }

    Node& node_;
    std::span<const Attribute* const> attributes_;
};

using Calculate = void (*)(Plugs& plugs);

/// Each of three numbers for itself.
template <class Function>
Three each(Function f) {
    return {f(0), f(1), f(2)};
}

class UtilityBehavior final : public NodeBehavior {
public:
    UtilityBehavior(Node& node, Calculate calculate, std::shared_ptr<const std::vector<const Attribute*>> attributes)
        : node_(node), calculate_(calculate), attributes_(std::move(attributes)) {}

    bool compute(Cell& cell) override {
        const Attribute* root = &cell.attribute.root();
        if (std::find(attributes_->begin(), attributes_->end(), root) == attributes_->end()) return false;
        Plugs plugs(node_, *attributes_);
        calculate_(plugs);
        return true;
    }

private:
    Node& node_;
    Calculate calculate_;
    std::shared_ptr<const std::vector<const Attribute*>> attributes_;
};

/// A type whose outputs all depend on all of its inputs. `calculate` names inputs and outputs by their places: the
/// inputs come first.
void utility(Registrar& r, const char* name, MFn::Type apiType, std::vector<AttributePtr> inputs,
             std::vector<AttributePtr> outputs, Calculate calculate) {
    auto all = std::make_shared<std::vector<const Attribute*>>();
    for (const auto& a : inputs) all->push_back(a.get());
    const std::size_t count = all->size();
    for (auto& a : outputs) {
        all->push_back(a.get());
        inputs.push_back(readOnly(std::move(a)));
    }
    NodeType& t = r.type(name, "node", NodeType::Kind::Dependency, apiType, std::move(inputs),
                         [calculate, all](Node& n) { return std::make_unique<UtilityBehavior>(n, calculate, all); });
    for (std::size_t in = 0; in < count; ++in)
        for (std::size_t out = count; out < all->size(); ++out) t.affects(*(*all)[in], *(*all)[out]);
}

AttributePtr three(const char* longName, const char* shortName, double value = 0) {
    return keyable(A::tuple(longName, shortName, N::Float, 3, "XYZ", AttributeType::Numeric, value));
}

AttributePtr number(const char* longName, const char* shortName, double value = 0) {
    return keyable(A::number(longName, shortName, N::Float, value));
}

AttributePtr choice(const char* longName, const char* shortName, short value, std::vector<std::string> fields) {
    return keyable(A::enumeration(longName, shortName, value, std::move(fields)));
}

void multiplyDivide(Plugs& p) {
    const int operation = static_cast<int>(p.number(0));
    const Three a = p.three(1), b = p.three(2);
    p.give(3, each([&](std::size_t k) {
               switch (operation) {
               case 1: return a[k] * b[k];
               case 2: return a[k] / b[k];
               case 3: return std::pow(a[k], b[k]);
               default: return a[k];
               }
           }));
}

void plusMinusAverage(Plugs& p) {
    const int operation = static_cast<int>(p.number(0));
    for (std::size_t list = 0; list < 3; ++list) {
        Three sum{};
        int count = 0;
        if (auto* elements = p.elements(1 + list))
            for (auto& [index, element] : *elements) {
                const Numeric& n = std::get<Numeric>(element->value);
                const double sign = operation == 2 && count > 0 ? -1 : 1;
                // Without an operation the first one passes.
                for (std::size_t k = 0; k < n.count && (operation != 0 || count == 0); ++k)
                    sum[k] += sign * n.get(static_cast<int>(k));
                ++count;
            }
        if (operation == 3 && count > 0)
            for (double& s : sum) s /= count;
        p.give(4 + list, Numeric(N::Float, static_cast<int>(list) + 1, sum[0], sum[1], sum[2]));
    }
}

void condition(Plugs& p) {
    const double a = p.number(1), b = p.number(2);
    const bool holds[] = {a == b, a != b, a > b, a >= b, a < b, a <= b};
    const auto operation = static_cast<std::size_t>(p.number(0));
    p.give(5, p.three(operation < std::size(holds) && holds[operation] ? 3 : 4));
}

void reverse(Plugs& p) {
    const Three v = p.three(0);
    p.give(1, each([&](std::size_t k) { return 1 - v[k]; }));
}

void setRange(Plugs& p) {
    const Three v = p.three(0), low = p.three(1), high = p.three(2), oldLow = p.three(3), oldHigh = p.three(4);
    p.give(5, each([&](std::size_t k) {
               if (oldLow[k] >= oldHigh[k]) return low[k];
               const double t = (std::clamp(v[k], oldLow[k], oldHigh[k]) - oldLow[k]) / (oldHigh[k] - oldLow[k]);
               return low[k] + t * (high[k] - low[k]);
           }));
}

void clampNode(Plugs& p) {
    const Three v = p.three(0), low = p.three(1), high = p.three(2);
    p.give(3, each([&](std::size_t k) { return std::min(std::max(v[k], low[k]), high[k]); }));
}

void blendColors(Plugs& p) {
    const double t = p.number(0);
    const Three a = p.three(1), b = p.three(2);
    p.give(3, each([&](std::size_t k) { return a[k] * t + b[k] * (1 - t); }));
}

/// One point of a ramp. Its interpolation holds up to the next one.
struct RampPoint {
    double position = 0;
    Three value{};
    int interpolation = 1;
};

/// The value of a ramp: of the point before, or straight, smooth (level at the points) or as a spline through the
/// points to the next one.
Three ramp(std::vector<RampPoint>& points, double at) {
    std::stable_sort(points.begin(), points.end(),
                     [](const RampPoint& a, const RampPoint& b) { return a.position < b.position; });
    if (points.empty()) return {};
    if (!(at > points.front().position)) return points.front().value;
    if (at >= points.back().position) return points.back().value;
    const auto next = std::upper_bound(points.begin(), points.end(), at,
                                       [](double t, const RampPoint& point) { return t < point.position; });
    const RampPoint &a = next[-1], &b = *next;
    const double t = (at - a.position) / (b.position - a.position);
    if (a.interpolation == 0) return a.value;
    if (a.interpolation == 3) {
        const RampPoint &before = next - 1 == points.begin() ? a : next[-2],
                        &after = next + 1 == points.end() ? b : next[1];
        return each([&](std::size_t k) {
            const double p0 = before.value[k], p1 = a.value[k], p2 = b.value[k], p3 = after.value[k];
            return p1 + 0.5 * t * (p2 - p0 + t * (2 * p0 - 5 * p1 + 4 * p2 - p3 + t * (3 * (p1 - p2) + p3 - p0)));
        });
    }
    const double s = a.interpolation == 2 ? t * t * (3 - 2 * t) : t;
    return each([&](std::size_t k) { return a.value[k] + s * (b.value[k] - a.value[k]); });
}

void remapValue(Plugs& p) {
    const double low = p.number(1), high = p.number(2), outLow = p.number(3), outHigh = p.number(4);
    const double at = high == low ? 0 : std::clamp((p.number(0) - low) / (high - low), 0.0, 1.0);
    const auto points = [&](std::size_t place, std::vector<RampPoint> standard) {
        auto* elements = p.elements(place);
        if (!elements) return standard;
        std::vector<RampPoint> list;
        for (auto& [index, e] : *elements) {
            const Numeric& value = *e->child(1).numbers();
            list.push_back({e->child(0).number(), Plugs::threeOf(value), static_cast<int>(e->child(2).number())});
        }
        return list;
    };
    auto values = points(5, {{0, {0, 0, 0}}, {1, {1, 1, 1}}}), colors = points(6, {{0, {0, 0, 0}}, {1, {1, 1, 1}}});
    p.give(7, outLow + ramp(values, at)[0] * (outHigh - outLow));
    p.give(8, ramp(colors, at));
}

/// What a unit conversion lets through: numbers as they are held, in internal units.
void convertUnit(Plugs& p) {
    const Value v = p.value(0);
    const auto* n = std::get_if<Numeric>(&v);
    Numeric result(N::Double, n ? std::max<int>(n->count, 1) : 1);
    for (int k = 0; n && k < n->count; ++k) result.set(k, n->get(k) * p.number(1));
    p.give(2, result);
}

void distanceBetween(Plugs& p) {
    const Three a = p.three(0), b = p.three(1);
    const MPoint from = MPoint(a[0], a[1], a[2]) * p.matrix(2), to = MPoint(b[0], b[1], b[2]) * p.matrix(3);
    p.give(4, from.distanceTo(to));
}

void decomposeMatrix(Plugs& p) {
    MTransformationMatrix m(p.matrix(0));
    const auto order = static_cast<int>(p.number(1));
    m.reorderRotation(static_cast<MTransformationMatrix::RotationOrder>(std::clamp(order, 0, 5) + 1));
    const MEulerRotation rotate = m.eulerRotation();
    const MQuaternion q = m.rotation();
    const MVector t = m.getTranslation(MSpace::kWorld);
    double scale[3], shear[3];
    m.getScale(scale, MSpace::kWorld);
    m.getShear(shear, MSpace::kWorld);
    p.give(2, Three{t.x, t.y, t.z});
    p.give(3, Three{rotate.x, rotate.y, rotate.z});
    p.give(4, Three{scale[0], scale[1], scale[2]});
    p.give(5, Three{shear[0], shear[1], shear[2]});
    p.give(6, Numeric(N::Double, 4, q.x, q.y, q.z, q.w));
}

void multMatrix(Plugs& p) {
    MMatrix product;
    if (auto* elements = p.elements(0))
        for (auto& [index, element] : *elements) product = product * *matrixIn(element->value);
    p.give(1, Value(product));
}

void blendWeighted(Plugs& p) {
    auto *inputs = p.elements(0), *weights = p.elements(1);
    double sum = 0;
    if (inputs)
        for (auto& [index, input] : *inputs) {
            const bool weighted = weights && weights->contains(index);
            sum += input->number() * (weighted ? weights->at(index)->number() : 1);
        }
    p.give(2, sum);
}

AttributePtr generic(const char* longName, const char* shortName) {
    auto a = A::number(longName, shortName, N::Double);
    a->type = AttributeType::Generic;
    return a;
}

void registerArithmetic(Registrar& r) {
    utility(r, "multiplyDivide", MFn::kMultiplyDivide,
            {choice("operation", "op", 1, {"No operation", "Multiply", "Divide", "Power"}), three("input1", "i1"),
             three("input2", "i2", 1)},
            {A::tuple("output", "o", N::Float, 3)}, multiplyDivide);
    utility(r, "plusMinusAverage", MFn::kPlusMinusAverage,
            {choice("operation", "op", 1, {"No operation", "Sum", "Subtract", "Average"}),
             array(number("input1D", "i1")), array(A::tuple("input2D", "i2", N::Float, 2, "xy")),
             array(A::tuple("input3D", "i3", N::Float, 3, "xyz"))},
            {A::number("output1D", "o1", N::Float), A::tuple("output2D", "o2", N::Float, 2, "xy"),
             A::tuple("output3D", "o3", N::Float, 3, "xyz")},
            plusMinusAverage);
    utility(r, "condition", MFn::kCondition,
            {choice("operation", "op", 0,
                    {"Equal", "Not Equal", "Greater Than", "Greater or Equal", "Less Than", "Less or Equal"}),
             number("firstTerm", "ft"), number("secondTerm", "st"), keyable(color("colorIfTrue", "ct", 0, 0, 0)),
             keyable(color("colorIfFalse", "cf", 1, 1, 1))},
            {color("outColor", "oc", 0, 0, 0)}, condition);
    utility(r, "reverse", MFn::kReverse, {three("input", "i")}, {A::tuple("output", "o", N::Float, 3)}, reverse);
    utility(r, "setRange", MFn::kSetRange,
            {three("value", "v"), three("min", "n"), three("max", "m"), three("oldMin", "on"), three("oldMax", "om")},
            {A::tuple("outValue", "o", N::Float, 3)}, setRange);
    utility(r, "clamp", MFn::kClampColor,
            {keyable(color("input", "ip", 0, 0, 0)), keyable(color("min", "mn", 0, 0, 0)),
             keyable(color("max", "mx", 0, 0, 0))},
            {color("output", "op", 0, 0, 0)}, clampNode);
    utility(r, "blendColors", MFn::kBlendColors,
            {limited(number("blender", "b", 0.5), 0, 1), keyable(color("color1", "c1", 1, 0, 0)),
             keyable(color("color2", "c2", 0, 0, 1))},
            {color("output", "op", 0, 0, 0)}, blendColors);
    const auto point = [](const char* name, const char* brief, AttributePtr value) {
        const std::string stem(name), shortStem(brief);
        auto interpolation =
            A::enumeration(stem + "_Interp", shortStem + "i", 1, {"None", "Linear", "Smooth", "Spline"});
        return array(A::compound(
            stem, shortStem,
            {A::number(stem + "_Position", shortStem + "p", N::Float), std::move(value), std::move(interpolation)}));
    };
    utility(r, "remapValue", MFn::kRemapValue,
            {number("inputValue", "i"), number("inputMin", "imn"), number("inputMax", "imx", 1),
             number("outputMin", "omn"), number("outputMax", "omx", 1),
             point("value", "vl", A::number("value_FloatValue", "vlfv", N::Float)),
             point("color", "cl", color("color_Color", "clc", 0, 0, 0))},
            {A::number("outValue", "ov", N::Float), color("outColor", "oc", 0, 0, 0)}, remapValue);
    const auto sum = [](Plugs& p) { p.give(2, p.number(0) + p.number(1)); };
    const auto product = [](Plugs& p) { p.give(2, p.number(0) * p.number(1)); };
    const auto plain = [](const char* longName, const char* shortName) {
        return keyable(A::number(longName, shortName, N::Double));
    };
    utility(r, "addDoubleLinear", MFn::kAddDoubleLinear, {plain("input1", "i1"), plain("input2", "i2")},
            {A::number("output", "o", N::Double)}, sum);
    utility(r, "multDoubleLinear", MFn::kMultDoubleLinear, {plain("input1", "i1"), plain("input2", "i2")},
            {A::number("output", "o", N::Double)}, product);
    utility(r, "blendWeighted", MFn::kBlendWeighted,
            {array(plain("input", "i")), array(keyable(A::number("weight", "w", N::Float, 1)))},
            {A::number("output", "o", N::Double)}, blendWeighted);
}

} // namespace

void registerUtilityTypes(Registrar& r) {
    registerArithmetic(r);
    constexpr std::pair<const char*, MFn::Type> conversions[] = {{"unitConversion", MFn::kUnitConversion},
                                                                 {"timeToUnitConversion", MFn::kTimeToUnitConversion},
                                                                 {"unitToTimeConversion", MFn::kUnitToTimeConversion}};
    for (const auto& [name, apiType] : conversions)
        utility(r, name, apiType, {generic("input", "i"), A::number("conversionFactor", "cf", N::Double, 1)},
                {generic("output", "o")}, convertUnit);
    constexpr auto distance = AttributeType::Distance;
    utility(r, "distanceBetween", MFn::kDistanceBetween,
            {keyable(A::tuple("point1", "p1", N::Double, 3, "XYZ", distance)),
             keyable(A::tuple("point2", "p2", N::Double, 3, "XYZ", distance)), A::matrix("inMatrix1", "im1"),
             A::matrix("inMatrix2", "im2")},
            {A::unit("distance", "d", distance)}, distanceBetween);
    utility(r, "decomposeMatrix", MFn::kDecomposeMatrix,
            {A::matrix("inputMatrix", "imat"),
             A::enumeration("inputRotateOrder", "ro", 0, {"xyz", "yzx", "zxy", "xzy", "yxz", "zyx"})},
            {A::tuple("outputTranslate", "ot", N::Double, 3, "XYZ", distance),
             A::tuple("outputRotate", "or", N::Double, 3, "XYZ", AttributeType::Angle),
             A::tuple("outputScale", "os", N::Double, 3), A::tuple("outputShear", "osh", N::Double, 3),
             A::tuple("outputQuat", "oq", N::Double, 4)},
            decomposeMatrix);
    utility(r, "multMatrix", MFn::kMultMatrix, {array(A::matrix("matrixIn", "i"))}, {A::matrix("matrixSum", "o")},
            multMatrix);
}

} // namespace host::scene
