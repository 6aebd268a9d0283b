#include "scene/CurveKeys.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numeric>

namespace host::scene {
namespace {

/// The slope that stands for a vertical tangent, value per second: the tangent of 89.99999 degrees.
constexpr double verticalSlope = 5729577.9485111479;

Tangent kind(const CurveKey& key, bool out, const CurveKeys::Shape& shape) {
    const std::uint8_t own = out ? key.out : key.in;
    return own == 0 ? shape.tangent : static_cast<Tangent>(own);
}

bool counts(const CurveKey& k) { return (k.given & CurveKey::TimeValue) && !std::isnan(k.time); }
bool earlier(const CurveKey& a, const CurveKey& b) { return a.time < b.time; }

double chord(const CurveKey& a, const CurveKey& b) {
    // Files may have two keys at one time, which give no slope.
    return b.time > a.time ? (b.value - a.value) / (b.time - a.time) : 0;
}

double hermite(const CurveKey& a, const CurveKey& b, double m0, double m1, double time) {
    const double span = b.time - a.time, u = (time - a.time) / span, u2 = u * u, u3 = u2 * u;
    return (2 * u3 - 3 * u2 + 1) * a.value + (u3 - 2 * u2 + u) * m0 * span + (-2 * u3 + 3 * u2) * b.value +
           (u3 - u2) * m1 * span;
}

/// The parameter at which a Bezier curve from 0 to 1 whose inner control points lie in between has the height.
double parameterAt(double first, double second, double height) {
    double low = 0, high = 1, u = height;
    for (int k = 0; k < 80 && high - low > 1e-16; ++k) {
        const double v = 1 - u;
        const double at = 3 * v * v * u * first + 3 * v * u * u * second + u * u * u - height;
        if (at == 0) break;
        (at < 0 ? low : high) = u;
        const double steep = 3 * v * v * first + 6 * v * u * (second - first) + 3 * u * u * (1 - second);
        const double next = u - at / steep;
        u = next > low && next < high ? next : (low + high) / 2;
    }
    return u;
}

} // namespace

void KeyRow::insert(std::size_t place, const CurveKey& key) {
    // Doubling would leave more free than the keys take.
    const std::size_t room = size() / 4 + 8;
    const bool front = place < size() - place;
    if (front && first_ == 0) {
        std::vector<CurveKey> wider;
        wider.reserve(room + keys_.size());
        wider.resize(room);
        wider.insert(wider.end(), keys_.begin(), keys_.end());
        keys_ = std::move(wider);
        first_ = room;
    }
    const auto begin = keys_.begin() + static_cast<std::ptrdiff_t>(first_);
    if (front) {
        std::copy(begin, begin + static_cast<std::ptrdiff_t>(place), begin - 1);
        --first_;
        (*this)[place] = key;
        return;
    }
    if (keys_.size() == keys_.capacity()) keys_.reserve(keys_.size() + room);
    keys_.insert(keys_.begin() + static_cast<std::ptrdiff_t>(first_ + place), key);
}

void KeyRow::erase(std::size_t place) {
    const auto begin = keys_.begin() + static_cast<std::ptrdiff_t>(first_),
               at = begin + static_cast<std::ptrdiff_t>(place);
    if (place >= size() - 1 - place) {
        keys_.erase(at);
        return;
    }
    std::copy_backward(begin, at, at + 1);
    ++first_;
}

void KeyRow::assign(std::vector<CurveKey> keys) {
    keys_ = std::move(keys);
    first_ = 0;
}

std::size_t CurveKeys::place(int index) const {
    if (indices_.empty()) return std::min(static_cast<std::size_t>(std::max(index, 0)), row_.size());
    if (indices_.back() < index) return indices_.size();
    return static_cast<std::size_t>(std::lower_bound(indices_.begin(), indices_.end(), index) - indices_.begin());
}

const CurveKey* CurveKeys::find(int index) const {
    const std::size_t at = place(index);
    return has(at, index) ? &row_[at] : nullptr;
}

CurveKey& CurveKeys::put(std::size_t at, int index, const CurveKey& key, int shift) {
    const bool follows = indices_.empty() && index == static_cast<int>(at) && (shift == 1 || at == row_.size());
    if (!follows) {
        if (indices_.empty()) {
            indices_.resize(row_.size());
            std::iota(indices_.begin(), indices_.end(), 0);
        }
        const auto behind = indices_.begin() + static_cast<std::ptrdiff_t>(at);
        for (auto it = behind; it != indices_.end(); ++it) *it += shift;
        indices_.insert(behind, index);
    }
    row_.insert(at, key);
    return row_[at];
}

void CurveKeys::take(std::size_t at, int shift) {
    checked_ = checked_ && inOrder_;
    const bool closes = indices_.empty() && (shift == 1 || at + 1 == row_.size());
    if (!closes) {
        if (indices_.empty()) {
            indices_.resize(row_.size());
            std::iota(indices_.begin(), indices_.end(), 0);
        }
        const auto behind = indices_.erase(indices_.begin() + static_cast<std::ptrdiff_t>(at));
        for (auto it = behind; it != indices_.end(); ++it) *it -= shift;
    }
    row_.erase(at);
}

CurveKey& CurveKeys::at(int index) {
    checked_ = false;
    const std::size_t at = place(index);
    return has(at, index) ? row_[at] : put(at, index, {}, 0);
}

void CurveKeys::insert(int index, const CurveKey& key) {
    const std::size_t at = place(index);
    const bool known = checked_ && inOrder_;
    if (has(at, index))
        row_[at] = key;
    else
        put(at, index, key, 0);
    noteNew(at, known);
}

void CurveKeys::noteNew(std::size_t at, bool known) {
    // Among keys in order only its neighbours can be out of order with it.
    const CurveKey& key = row_[at];
    checked_ = known && counts(key) && (at == 0 || !earlier(key, row_[at - 1])) &&
               (at + 1 == row_.size() || !earlier(row_[at + 1], key));
}

void CurveKeys::erase(int index) {
    const std::size_t at = place(index);
    if (has(at, index)) take(at, 0);
}

void CurveKeys::insertAndShift(int index, const CurveKey& key) {
    const std::size_t at = place(index);
    const bool known = checked_ && inOrder_;
    put(at, index, key, 1);
    noteNew(at, known);
}

void CurveKeys::eraseAndShift(int index) {
    const std::size_t at = place(index);
    if (has(at, index)) take(at, 1);
}

void CurveKeys::assign(std::vector<CurveKey> keys) {
    checked_ = false;
    row_.assign(std::move(keys));
    indices_ = {};
}

std::span<const CurveKey> CurveKeys::timed() const {
    if (!checked_) {
        const auto keys = row_.all();
        inOrder_ = std::all_of(keys.begin(), keys.end(), counts) && std::is_sorted(keys.begin(), keys.end(), earlier);
        sorted_ = {};
        if (!inOrder_) {
            std::copy_if(keys.begin(), keys.end(), std::back_inserter(sorted_), counts);
            std::stable_sort(sorted_.begin(), sorted_.end(), earlier);
        }
        checked_ = true;
    }
    return inOrder_ ? row_.all() : sorted_;
}

double CurveKeys::slope(std::size_t k, bool out, const Shape& shape) const {
    const auto keys = timed();
    const CurveKey& key = keys[k];
    const bool first = k == 0, last = k + 1 >= keys.size();
    if (first && last && kind(key, out, shape) != Tangent::Fixed) return 0;
    const double before = first ? 0 : chord(keys[k - 1], key), after = last ? 0 : chord(key, keys[k + 1]);
    const double here = out ? (last ? before : after) : (first ? after : before);
    const auto smooth = [&] { return first || last ? here : chord(keys[k - 1], keys[k + 1]); };
    switch (kind(key, out, shape)) {
    case Tangent::Fixed: {
        const double x = out ? key.outX : key.inX, y = out ? key.outY : key.inY;
        if (x != 0) return y / x / shape.perSecond;
        return (y > 0 ? verticalSlope : y < 0 ? -verticalSlope : 0) / shape.perSecond;
    }
    case Tangent::Linear: return here;
    case Tangent::Flat:
    case Tangent::Step:
    case Tangent::StepNext: return 0;
    case Tangent::Clamped: {
        // Between values that are close together the curve must not swing.
        const bool toNext = out ? !last : first;
        const CurveKey& other = keys[toNext ? k + 1 : k - 1];
        return std::abs(other.value - key.value) <= shape.closeValues ? here : smooth();
    }
    case Tangent::Plateau:
    case Tangent::Auto: {
        // Level at ends and extremes; elsewhere the control points stay between the values of the keys.
        if (first || last || !(before * after > 0)) return 0;
        const double most = 3 * std::min(std::abs(before), std::abs(after));
        return std::clamp(smooth(), -most, most);
    }
    default: return smooth();
    }
}

/// A weighted segment: a Bezier curve in time and value.
double CurveKeys::weightedSegment(std::size_t k, double time, const Shape& shape) const {
    const auto keys = timed();
    const CurveKey &a = keys[k], &b = keys[k + 1];
    const double span = b.time - a.time;
    // As fractions of the segment's time, with the values; tangents that are made here reach a third of the way.
    double x[2], y[2];
    for (const bool out : {true, false}) {
        const CurveKey& key = out ? a : b;
        double& dx = x[out ? 0 : 1];
        double& dy = y[out ? 0 : 1];
        if (kind(key, out, shape) == Tangent::Fixed) {
            dx = (out ? key.outX : key.inX) * shape.perSecond / 3 / span;
            dy = (out ? key.outY : key.inY) / 3.0;
        } else {
            dx = 1.0 / 3;
            dy = slope(k + (out ? 0 : 1), out, shape) * span / 3;
        }
        // One that reaches beyond the other key is shortened to it: a time has one value.
        const double held = std::isnan(dx) ? 0 : std::clamp(dx, 0.0, 1.0);
        if (held != dx && dx > 0) dy *= held / dx;
        dx = held;
    }
    const double u = parameterAt(x[0], 1 - x[1], (time - a.time) / span), v = 1 - u;
    return v * v * v * a.value + 3 * v * v * u * (a.value + y[0]) + 3 * v * u * u * (b.value - y[1]) +
           u * u * u * b.value;
}

double CurveKeys::inside(double time, const Shape& shape) const {
    const auto keys = timed();
    const auto after =
        std::upper_bound(keys.begin(), keys.end(), time, [](double t, const CurveKey& k) { return t < k.time; });
    if (after == keys.begin()) return keys.front().value;
    const auto k = static_cast<std::size_t>(after - keys.begin()) - 1;
    const CurveKey& a = keys[k];
    if (after == keys.end() || time == a.time) return a.value;
    const CurveKey& b = *after;
    const Tangent out = kind(a, true, shape), in = kind(b, false, shape);
    if (out == Tangent::Step) return a.value;
    if (out == Tangent::StepNext) return b.value;
    if (out == Tangent::Linear && in == Tangent::Linear)
        return a.value + (b.value - a.value) * ((time - a.time) / (b.time - a.time));
    if (shape.weighted && (out == Tangent::Fixed || in == Tangent::Fixed)) return weightedSegment(k, time, shape);
    return hermite(a, b, slope(k, true, shape), slope(k + 1, false, shape), time);
}

double CurveKeys::value(double time, const Shape& shape) const {
    const auto keys = timed();
    if (keys.empty()) return 0;
    const double first = keys.front().time, last = keys.back().time, span = last - first;
    const bool before = time < first;
    if (!before && time <= last) return inside(time, shape);
    const Infinity kind = before ? shape.pre : shape.post;
    const CurveKey& end = before ? keys.front() : keys.back();
    if (kind == Infinity::Linear)
        return end.value + slope(before ? 0 : keys.size() - 1, !before, shape) * (time - end.time);
    const bool repeats = kind == Infinity::Cycle || kind == Infinity::CycleRelative || kind == Infinity::Oscillate;
    if (!repeats || !(span > 0)) return end.value;
    const double turns = std::floor((time - first) / span), local = time - turns * span;
    if (kind == Infinity::Oscillate && std::fmod(std::fabs(turns), 2.0) == 1.0)
        return inside(first + last - local, shape);
    const double offset = kind == Infinity::CycleRelative ? turns * (keys.back().value - keys.front().value) : 0;
    return inside(local, shape) + offset;
}

} // namespace host::scene
