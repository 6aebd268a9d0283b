#pragma once

#include <maya/MStatus.h>

#include <cassert>
#include <cstdint>
#include <new>
#include <type_traits>
#include <utility>
#include <vector>

namespace maya_detail {

/// What the API's arrays of values have in common. An array holds at most 2 GiB of elements; asking for more gives
/// kInsufficientMemory (in a constructor: an empty array), so that a negative number taken for a length does no harm.
template <class Element>
class ValueArray {
public:
    using ConstElement = std::conditional_t<std::is_arithmetic_v<Element>, Element, const Element&>;

    /// Not checked beyond an assertion: `index` is less than length().
    Element& operator[](unsigned int index) {
        assert(index < elements_.size());
        return elements_[index];
    }

    ConstElement operator[](unsigned int index) const {
        assert(index < elements_.size());
        return elements_[index];
    }

    /// kInvalidParameter when there is no such element.
    MStatus set(const Element& element, unsigned int index) {
        if (index >= elements_.size()) return MStatus::kInvalidParameter;
        elements_[index] = element;
        return MStatus::kSuccess;
    }

    /// Drops elements at the end or adds default ones.
    MStatus setLength(unsigned int length) { return resize(length, Element()); }

    unsigned int length() const { return static_cast<unsigned int>(elements_.size()); }

    /// kInvalidParameter when there is no such element.
    MStatus remove(unsigned int index) {
        if (index >= elements_.size()) return MStatus::kInvalidParameter;
        elements_.erase(elements_.begin() + index);
        return MStatus::kSuccess;
    }

    /// Puts the element before the one at `index`; at length() it is appended, beyond that kInvalidParameter.
    MStatus insert(const Element& element, unsigned int index) {
        if (index > elements_.size()) return MStatus::kInvalidParameter;
        return grow([&] { elements_.insert(elements_.begin() + index, element); });
    }

    MStatus append(const Element& element) {
        return grow([&] { elements_.push_back(element); });
    }

    MStatus copy(const ValueArray& source) {
        try {
            elements_ = source.elements_;
        } catch (const std::bad_alloc&) {
            return MStatus::kInsufficientMemory;
        }
        return MStatus::kSuccess;
    }

    MStatus clear() {
        elements_.clear();
        return MStatus::kSuccess;
    }

    /// A hint only: storage grows geometrically.
    void setSizeIncrement(unsigned int newIncrement) { increment_ = newIncrement; }
    unsigned int sizeIncrement() const { return increment_; }

    auto begin() { return elements_.begin(); }
    auto end() { return elements_.end(); }
    auto begin() const { return elements_.begin(); }
    auto end() const { return elements_.end(); }

protected:
    ValueArray() = default;
    ValueArray(unsigned int initialSize, const Element& initialValue) { resize(initialSize, initialValue); }

    /// `convert` makes an element of a source element.
    template <class Source, class Convert>
    ValueArray(const Source* source, unsigned int count, Convert convert) {
        if (!source || !resize(count, Element())) return;
        for (unsigned int i = 0; i < count; ++i) elements_[i] = convert(source[i]);
    }

private:
    static constexpr std::size_t maxLength = (std::size_t(1) << 31) / sizeof(Element);

    MStatus resize(unsigned int length, const Element& value) {
        if (length > maxLength) return MStatus::kInsufficientMemory;
        try {
            elements_.resize(length, value);
        } catch (const std::bad_alloc&) {
            return MStatus::kInsufficientMemory;
        }
        return MStatus::kSuccess;
    }

    template <class Grow>
    MStatus grow(Grow change) {
        if (elements_.size() >= maxLength) return MStatus::kInsufficientMemory;
        try {
            change();
        } catch (const std::bad_alloc&) {
            return MStatus::kInsufficientMemory;
        }
        return MStatus::kSuccess;
    }

    std::vector<Element> elements_;
    unsigned int increment_ = 1;
};

} // namespace maya_detail
