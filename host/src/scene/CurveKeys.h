#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace host::scene {

/// Tangent kinds by their stored number.
enum class Tangent : std::uint8_t {
    Fixed = 1,
    Linear = 2,
    Flat = 3,
    Step = 5,
    Spline = 9,
    Clamped = 10,
    Plateau = 16,
    StepNext = 17,
    Auto = 18
};

/// How a curve goes on before its first and behind its last key, by the stored number.
enum class Infinity { Constant = 0, Linear = 1, Cycle = 3, CycleRelative = 4, Oscillate = 5 };

/// A key of a curve: what its lists hold at one index.
struct CurveKey {
    /// The lists, as bits of `given`.
    enum List : std::uint16_t {
        TimeValue = 1,
        InType = 2,
        OutType = 4,
        InX = 8,
        InY = 16,
        OutX = 32,
        OutY = 64,
        TangentLocked = 128,
        WeightLocked = 256,
        Breakdown = 512
    };
    double time = 0, value = 0;
    /// The vectors of fixed tangents: seconds (or a unitless curve's input), internal units. A weighted one is three
    /// times the way to the control point; of others only the slope counts.
    float inX = 1, inY = 0, outX = 1, outY = 0;
    std::uint16_t given = 0; ///< the lists that have the index
    std::uint8_t in = 0, out = 0;
    bool tangentLocked = true, weightLocked = true, breakdown = false;
};
static_assert(sizeof(CurveKey) <= 40);

/// Keys side by side with room at both ends: one that is put in or taken out moves those of the shorter side, so that
/// keys may come one by one from either end.
class KeyRow {
public:
    std::span<const CurveKey> all() const { return std::span(keys_).subspan(first_); }
    std::size_t size() const { return keys_.size() - first_; }
    CurveKey& operator[](std::size_t place) { return keys_[first_ + place]; }
    const CurveKey& operator[](std::size_t place) const { return keys_[first_ + place]; }
    void insert(std::size_t place, const CurveKey& key);
    void erase(std::size_t place);
    void assign(std::vector<CurveKey> keys);
    std::size_t capacity() const { return keys_.capacity(); }

private:
    std::vector<CurveKey> keys_;
    std::size_t first_ = 0; ///< what stands before it is room
};

/// The keys of an animation curve as plain data, and the curve through them. Times are ticks (or a unitless curve's
/// input); finding a key takes a binary search.
class CurveKeys {
public:
    /// What the curve's other attributes say.
    struct Shape {
        bool weighted = true;
        Tangent tangent = Tangent::Linear; ///< of keys that say none
        Infinity pre = Infinity::Constant, post = Infinity::Constant;
        double perSecond = 6000; ///< units of time that a tangent vector's x of 1 is
        double closeValues = 0;  ///< values that differ by less make a clamped tangent level
    };

    /// In the order of their indices.
    std::span<const CurveKey> keys() const { return row_.all(); }
    /// The index in the lists of the key at that place among all.
    int indexOf(std::size_t place) const { return indices_.empty() ? static_cast<int>(place) : indices_[place]; }
    /// Whether the keys are numbered from 0 on, without a gap, in the order of their times.
    bool numbered() const { return timed().data() == keys().data() && indices_.empty(); }
    const CurveKey* find(int index) const;
    /// The key of the index, made when it is not there.
    CurveKey& at(int index);
    void insert(int index, const CurveKey& key);
    void erase(int index);
    /// The same where those behind move up, or close up.
    void insertAndShift(int index, const CurveKey& key);
    void eraseAndShift(int index);
    /// Puts others in the place of all, numbered from 0 on.
    void assign(std::vector<CurveKey> keys);

    /// The curve's value; 0 without keys. Keys without a time, or with one that is not a number, do not count.
    double value(double time, const Shape& shape) const;
    /// The slope of a key's tangent, value per unit of time, by its place in timed().
    double slope(std::size_t key, bool out, const Shape& shape) const;
    /// The keys in the order of their times.
    std::span<const CurveKey> timed() const;
    /// Bytes that the keys take.
    std::size_t bytes() const {
        return (row_.capacity() + sorted_.capacity()) * sizeof(CurveKey) + indices_.capacity() * sizeof(int);
    }

private:
    double inside(double time, const Shape& shape) const;
    double weightedSegment(std::size_t key, double time, const Shape& shape) const;
    /// Where the key of the index is, or is to be put.
    std::size_t place(int index) const;
    bool has(std::size_t place, int index) const { return place < row_.size() && indexOf(place) == index; }
    /// Puts it there; `shift` is added to the indices behind.
    CurveKey& put(std::size_t place, int index, const CurveKey& key, int shift);
    void take(std::size_t place, int shift);
    /// Of a key that is new there: whether those around it were `known` to be in the order of their times.
    void noteNew(std::size_t place, bool known);

    KeyRow row_;
    std::vector<int> indices_;             ///< only where they are not the keys' places
    mutable std::vector<CurveKey> sorted_; ///< only where the indices are in another order than the times
    mutable bool checked_ = true, inOrder_ = true;
};

} // namespace host::scene
