#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host::files {

/// @name Numbers as scene files have them, whatever the process's locale
/// @{
/// The number that the whole word is: decimal, with exponent, "nan", "inf", the spellings of older compilers
/// ("-1.#IND", "1.#INF"), or one of yes, no, on, off, true and false. Beyond a double's range: infinity or 0.
std::optional<double> parseNumber(std::string_view word);
/// The same, rounded once to a float.
std::optional<float> parseFloat(std::string_view word);
std::optional<std::int64_t> parseInteger(std::string_view word);
/// yes, on, true, 1 and their opposites.
std::optional<bool> parseBool(std::string_view word);

/// Reads the numbers of a text, separated by white space, as parseNumber(), parseFloat() and parseInteger() do, and
/// appends them. @return the word that is no number of the kind; empty when all are
std::string_view readNumbers(std::string_view text, std::vector<double>& numbers);
std::string_view readNumbers(std::string_view text, std::vector<float>& numbers);
std::string_view readNumbers(std::string_view text, std::vector<int>& numbers);

/// The shortest text that parseNumber() (parseFloat(), and a conversion of parseNumber()'s answer) reads as the same
/// number.
void appendNumber(std::string& out, double value);
void appendNumber(std::string& out, float value);
void appendNumber(std::string& out, std::int64_t value);
/// The text whose number, times the factor, is `value`: the shortest of those near the quotient. Where no double
/// gives the value exactly, that of the quotient.
void appendQuotient(std::string& out, double value, double factor);
/// @}

} // namespace host::files
