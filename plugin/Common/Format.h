#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <variant>

/// printf-style text that is the same in every locale of the process: byte for byte what C's printf gives in the "C"
/// locale, but that "nan" never has a minus sign: which sign a division by zero gives it is the processor's whim. Every
/// number that the plug-in writes or shows goes through here.
namespace orvo {

/// One argument of a format, with its own type: a conversion never reads memory that is not the argument's.
class FormatArgument {
public:
    struct Integer {
        long long asSigned;
        unsigned long long asUnsigned; ///< the same bits in the argument's own width
    };

    template <class T>
    requires std::is_integral_v<T> FormatArgument(T value) : value_(integer(value)) {}
    FormatArgument(double value) : value_(value) {}
    FormatArgument(const char* text) : value_(std::string_view(text ? text : "(null)")) {}
    FormatArgument(const std::string& text) : value_(std::string_view(text)) {}

    const std::variant<Integer, double, std::string_view>& value() const { return value_; }

private:
    template <class T>
    static Integer integer(T value) {
        if constexpr (std::is_same_v<T, bool>) {
            return {value, value};
        } else {
            return {static_cast<std::make_signed_t<T>>(value), static_cast<std::make_unsigned_t<T>>(value)};
        }
    }
    std::variant<Integer, double, std::string_view> value_;
};

/// Expands the conversions d i u x X o c s f F e E g G with the flags - + 0 and blank, a width and a precision (both
/// up to 20480), and %%. Length modifiers are skipped: an argument knows its type. A conversion that is not one of
/// these, has no argument left, or whose argument is of another kind is copied as it stands.
std::string formatArguments(std::string_view format, std::span<const FormatArgument> arguments);

template <class... Arguments>
std::string formatText(std::string_view format, const Arguments&... arguments) {
    const std::array<FormatArgument, sizeof...(Arguments)> list{FormatArgument(arguments)...};
    return formatArguments(format, list);
}

} // namespace orvo
