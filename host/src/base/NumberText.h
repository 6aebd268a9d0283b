#pragma once

#include <charconv>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

namespace host {

/// A number as printf's %.*g writes it in the C locale, with `digits` significant digits (1 to 17).
std::string numberText(double value, int digits);

/// A number as printf's %.*f writes it in the C locale, with `decimals` digits after the point (0 or more).
std::string fixedText(double value, int decimals);

/// The number that a text begins with, and how much of the text it took.
struct ReadNumber {
    double value = 0.0;
    std::size_t length = 0; ///< bytes, leading blanks included; 0 when the text begins with no number
};

/// std::from_chars, but a number out of range is held to it: infinity when too large, 0 when too small.
std::from_chars_result heldFromChars(const char* first, const char* last, double& value);
std::from_chars_result heldFromChars(const char* first, const char* last, float& value);

/// Reads a decimal number in the C locale's form. What is too large gives infinity, what is too small 0. Names such as
/// "inf" and "nan", and hexadecimal forms, are not numbers.
ReadNumber readNumber(std::string_view text);

/// A whole number that a text begins with; held to the range of long long.
struct ReadWhole {
    long long value = 0;
    std::size_t length = 0; ///< as in ReadNumber
    bool inRange = true;
};

ReadWhole readWhole(std::string_view text);

/// Takes the number that a text begins with off its front, without blanks or a plus sign before it. Nothing, and the
/// text as it was, when there is none or it is out of range.
std::optional<int> takeInt(std::string_view& text);
std::optional<double> takeDouble(std::string_view& text);

/// The int that fills the whole text, without blanks or a plus sign.
std::optional<int> readInt(std::string_view text);

/// Whether nothing but blanks follows after `length` bytes.
bool endsAt(std::string_view text, std::size_t length);

/// Writes "(a, b, c)" for a point or vector, or with other brackets; numbers have the stream's precision.
template <class Number>
std::ostream& writeList(std::ostream& os, const Number* values, std::size_t count, char open, char close) {
    os << open;
    for (std::size_t i = 0; i < count; ++i)
        os << (i ? ", " : "") << numberText(static_cast<double>(values[i]), static_cast<int>(os.precision()));
    return os << close;
}

} // namespace host
