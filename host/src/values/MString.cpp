#include <maya/MString.h>
#include <maya/MStringArray.h>

#include "base/Letters.h"
#include "base/NumberText.h"
#include "base/Utf8.h"
#include "values/StatusOut.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <filesystem>
#include <limits>
#include <ostream>
#include <string_view>

namespace {

constexpr int doubleDigits = 10;
constexpr int floatDigits = 7;

std::string bytes(const char* text, int length) {
    return text && length > 0 ? std::string(text, static_cast<std::size_t>(length)) : std::string();
}

int position(std::size_t found) { return found == std::string::npos ? -1 : static_cast<int>(found); }

// Bounds that lie outside [0, count) are moved to its ends.
template <class Text>
Text inclusivePart(const Text& text, int start, int end) {
    const long long first = std::max(start, 0);
    const long long last = std::min<long long>(end, static_cast<long long>(text.size()) - 1);
    return first > last
               ? Text()
               : Text(text.substr(static_cast<std::size_t>(first), static_cast<std::size_t>(last - first + 1)));
}

template <class Text>
void splitAt(const Text& text, typename Text::value_type separator, auto&& take) {
    std::size_t start = 0;
    while (start < text.size()) {
        const std::size_t end = std::min(text.find(separator, start), text.size());
        if (end > start) take(text.substr(start, end - start));
        start = end + 1;
    }
}

template <class Whole>
Whole wholeOf(const std::string& text) {
    constexpr auto low = static_cast<long long>(std::numeric_limits<Whole>::min());
    constexpr auto high = static_cast<long long>(std::numeric_limits<Whole>::max());
    return static_cast<Whole>(std::clamp(host::readWhole(text).value, low, high));
}

template <class Whole>
bool isWhole(const std::string& text) {
    const host::ReadWhole read = host::readWhole(text);
    return read.length > 0 && read.inRange && host::endsAt(text, read.length) &&
           read.value >= static_cast<long long>(std::numeric_limits<Whole>::min()) &&
           read.value <= static_cast<long long>(std::numeric_limits<Whole>::max());
}

bool isNumberWithin(const std::string& text, double limit) {
    const host::ReadNumber read = host::readNumber(text);
    return read.length > 0 && host::endsAt(text, read.length) && std::abs(read.value) <= limit;
}

bool isNameStart(char c) { return c == '_' || host::isLetter(c); }
bool isNamePart(char c) { return isNameStart(c) || host::isDigit(c); }

std::string variable(const std::string& name) {
    const char* value = std::getenv(name.c_str());
    return value ? value : "";
}

std::string expanded(const std::string& text) {
    std::string out;
    std::size_t at = 0;
    if (!text.empty() && text[0] == '~' && (text.size() == 1 || text[1] == '/' || text[1] == '\\')) {
        out = variable("HOME");
        at = 1;
    }
    while (at < text.size()) {
        const bool braced = text.compare(at, 2, "${") == 0;
        const std::size_t start = at + (braced ? 2 : 1);
        if (text[at] != '$' || start >= text.size() || !isNameStart(text[start])) {
            out += text[at++];
            continue;
        }
        std::size_t end = start;
        while (end < text.size() && isNamePart(text[end])) ++end;
        if (braced && (end == text.size() || text[end] != '}')) {
            out += text[at++];
            continue;
        }
        out += variable(text.substr(start, end - start));
        at = end + (braced ? 1 : 0);
    }
    return out;
}

// Replaces ^1s, ^2s...; false where one of them has no argument.
bool fill(const std::string& fmt, std::size_t count, auto&& argument, std::string& out) {
    bool complete = true;
    std::size_t at = 0;
    while (at < fmt.size()) {
        if (fmt[at] == '^') {
            const host::ReadWhole number = host::readWhole(std::string_view(fmt).substr(at + 1));
            const std::size_t end = at + 1 + number.length;
            const bool digits = number.length > 0 && fmt[at + 1] >= '0' && fmt[at + 1] <= '9';
            if (digits && end < fmt.size() && fmt[end] == 's') {
                if (number.value >= 1 && static_cast<unsigned long long>(number.value) <= count) {
                    out += argument(static_cast<unsigned int>(number.value - 1)).asChar();
                    at = end + 1;
                    continue;
                }
                complete = false;
            }
        }
        out += fmt[at++];
    }
    return complete;
}

} // namespace

const MString MString::argUnused("\x01unused argument");

MString::MString() = default;
MString::MString(const char* charString) : text_(charString ? charString : "") {}
MString::MString(const wchar_t* wcharString) : text_(wcharString ? host::toUtf8(wcharString) : std::string()) {}
MString::MString(const char* charString, int charLength) : text_(bytes(charString, charLength)) {}
MString::MString(const wchar_t* wcharString, int wcharLength) { setWChar(wcharString, std::max(wcharLength, 0)); }
MString::MString(const MString& other) : text_(other.text_) {}
MString::~MString() = default;

MString& MString::operator+=(const MString& other) {
    text_ += other.text_;
    return *this;
}

MString& MString::operator+=(const char* other) {
    if (other) text_ += other;
    return *this;
}

MString& MString::operator+=(double other) {
    text_ += host::numberText(other, doubleDigits);
    return *this;
}

MString& MString::operator+=(int other) {
    text_ += std::to_string(other);
    return *this;
}

MString& MString::operator+=(unsigned int other) {
    text_ += std::to_string(other);
    return *this;
}

MString& MString::operator+=(float other) {
    text_ += host::numberText(static_cast<double>(other), floatDigits);
    return *this;
}

MString& MString::operator=(const MString& other) {
    text_ = other.text_;
    return *this;
}

MString& MString::operator=(const char* other) {
    text_ = std::string(other ? other : ""); // by way of a copy: `other` may point into this text
    return *this;
}

MString& MString::operator=(double value) {
    text_ = host::numberText(value, doubleDigits);
    return *this;
}

bool MString::operator==(const MString& other) const { return text_ == other.text_; }
bool MString::operator==(const char* other) const { return text_ == (other ? other : ""); }
bool MString::operator!=(const MString& other) const { return !(*this == other); }
bool MString::operator!=(const char* other) const { return !(*this == other); }

MString MString::operator+(const MString& other) const { return MString(*this) += other; }
MString MString::operator+(const char* other) const { return MString(*this) += other; }
MString MString::operator+(double value) const { return MString(*this) += value; }

void MString::clear() { *this = MString(); }

MStatus MString::set(const char* charString) {
    *this = charString;
    return MStatus::kSuccess;
}

MStatus MString::setUTF8(const char* utf8String) { return set(utf8String); }

MStatus MString::setWChar(const wchar_t* wcharString) {
    text_ = wcharString ? host::toUtf8(wcharString) : std::string();
    return MStatus::kSuccess;
}

MStatus MString::set(const char* charString, int charLength) {
    if (charLength < 0) return MStatus::kInvalidParameter;
    text_ = bytes(charString, charLength);
    return MStatus::kSuccess;
}

MStatus MString::setWChar(const wchar_t* wcharString, int wcharLength) {
    if (wcharLength < 0) return MStatus::kInvalidParameter;
    text_ = wcharString ? host::toUtf8({wcharString, static_cast<std::size_t>(wcharLength)}) : std::string();
    return MStatus::kSuccess;
}

MStatus MString::set(double value) {
    *this = value;
    return MStatus::kSuccess;
}

MStatus MString::set(double value, int precision) {
    if (precision < 0 || precision > 60) return MStatus::kInvalidParameter;
    text_ = host::fixedText(value, precision);
    return MStatus::kSuccess;
}

const char* MString::asChar() const { return text_.c_str(); }

const char* MString::asChar(int& charLength) const {
    charLength = static_cast<int>(text_.size());
    return text_.c_str();
}

const char* MString::asUTF8() const { return text_.c_str(); }
const char* MString::asUTF8(int& utf8Length) const { return asChar(utf8Length); }

const wchar_t* MString::asWChar() const {
    wide_ = host::toWide(text_);
    return wide_.c_str();
}

const wchar_t* MString::asWChar(int& wcharLength) const {
    wide_ = host::toWide(text_);
    wcharLength = static_cast<int>(wide_.size());
    return wide_.c_str();
}

unsigned int MString::length() const { return static_cast<unsigned int>(text_.size()); }
unsigned int MString::numChars() const { return static_cast<unsigned int>(host::toCodePoints(text_).size()); }

int MString::index(char searchChar) const { return position(text_.find(searchChar)); }
int MString::indexW(char searchChar) const {
    return indexW(static_cast<wchar_t>(static_cast<unsigned char>(searchChar)));
}

int MString::indexW(wchar_t searchChar) const {
    return position(host::toCodePoints(text_).find(static_cast<char32_t>(searchChar)));
}

int MString::indexW(const MString& searchStr) const {
    return position(host::toCodePoints(text_).find(host::toCodePoints(searchStr.text_)));
}

int MString::rindex(char searchChar) const { return position(text_.rfind(searchChar)); }
int MString::rindexW(char searchChar) const {
    return rindexW(static_cast<wchar_t>(static_cast<unsigned char>(searchChar)));
}

int MString::rindexW(wchar_t searchChar) const {
    return position(host::toCodePoints(text_).rfind(static_cast<char32_t>(searchChar)));
}

int MString::rindexW(const MString& searchStr) const {
    return position(host::toCodePoints(text_).rfind(host::toCodePoints(searchStr.text_)));
}

MStatus MString::split(char theChar, MStringArray& theArray) const {
    const std::string text = text_; // the array may hold this very text
    theArray.clear();
    MStatus status;
    splitAt(text, theChar, [&](const std::string& part) {
        if (status) status = theArray.append(part.c_str());
    });
    return status;
}

MStatus MString::split(wchar_t theWChar, MStringArray& theArray) const {
    const std::u32string text = host::toCodePoints(text_);
    theArray.clear();
    MStatus status;
    splitAt(text, static_cast<char32_t>(theWChar), [&](const std::u32string& part) {
        if (status) status = theArray.append(host::toUtf8(part).c_str());
    });
    return status;
}

MString MString::substring(int start, int end) const {
    MString part;
    part.text_ = inclusivePart(text_, start, end);
    return part;
}

MString MString::substringW(int start, int end) const {
    MString part;
    part.text_ = host::toUtf8(inclusivePart(host::toCodePoints(text_), start, end));
    return part;
}

MString& MString::toUpperCase() {
    for (char& c : text_)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    return *this;
}

MString& MString::toLowerCase() {
    for (char& c : text_)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return *this;
}

bool MString::isShort() const { return isWhole<short>(text_); }
short MString::asShort() const { return wholeOf<short>(text_); }
bool MString::isInt() const { return isWhole<int>(text_); }
int MString::asInt() const { return wholeOf<int>(text_); }
bool MString::isUnsigned() const { return isWhole<unsigned int>(text_); }
unsigned int MString::asUnsigned() const { return wholeOf<unsigned int>(text_); }
bool MString::isFloat() const { return isNumberWithin(text_, std::numeric_limits<float>::max()); }

float MString::asFloat() const {
    constexpr double limit = std::numeric_limits<float>::max();
    return static_cast<float>(std::clamp(host::readNumber(text_).value, -limit, limit));
}

bool MString::isDouble() const { return isNumberWithin(text_, std::numeric_limits<double>::max()); }

double MString::asDouble() const {
    constexpr double limit = std::numeric_limits<double>::max();
    return std::clamp(host::readNumber(text_).value, -limit, limit);
}

MString MString::expandEnvironmentVariablesAndTilde(MStatus* ReturnStatus) const {
    host::setStatus(ReturnStatus, MStatus::kSuccess);
    return MString(expanded(text_).c_str());
}

MString MString::expandFilePath(MStatus* ReturnStatus) const {
    const std::string path = expanded(text_);
    std::error_code error;
    const std::filesystem::path full = std::filesystem::absolute(path, error);
    host::setStatus(ReturnStatus, error && !path.empty() ? MStatus::kFailure : MStatus::kSuccess);
    return MString(error ? path.c_str() : full.lexically_normal().generic_string().c_str());
}

MStatus MString::format(const MString& fmt, const MStringArray& args) {
    std::string out;
    const bool complete = fill(
        fmt.text_, args.length(), [&](unsigned int i) { return args[i]; }, out);
    text_ = std::move(out);
    return complete ? MStatus::kSuccess : MStatus::kInvalidParameter;
}

MStatus MString::format(const MString& fmt, const MString& arg1, const MString& arg2, const MString& arg3,
                        const MString& arg4, const MString& arg5, const MString& arg6, const MString& arg7,
                        const MString& arg8, const MString& arg9, const MString& arg10) {
    const std::array<const MString*, 10> all{&arg1, &arg2, &arg3, &arg4, &arg5, &arg6, &arg7, &arg8, &arg9, &arg10};
    const auto end = std::find(all.begin(), all.end(), &argUnused);
    std::string out;
    const bool complete = fill(
        fmt.text_, static_cast<std::size_t>(end - all.begin()), [&](unsigned int i) { return *all[i]; }, out);
    text_ = std::move(out);
    return complete ? MStatus::kSuccess : MStatus::kInvalidParameter;
}

MStatus MString::substitute(const MString& src, const MString& target) {
    if (src.text_.empty()) return MStatus::kInvalidParameter;
    std::string out;
    std::size_t at = 0;
    for (std::size_t found; (found = text_.find(src.text_, at)) != std::string::npos; at = found + src.text_.size())
        out.append(text_, at, found - at).append(target.text_);
    out.append(text_, at);
    text_ = std::move(out);
    return MStatus::kSuccess;
}

MStatus MString::substituteFirst(const MString& src, const MString& target) {
    if (src.text_.empty()) return MStatus::kInvalidParameter;
    const std::size_t found = text_.find(src.text_);
    if (found != std::string::npos) text_.replace(found, src.text_.size(), target.text_);
    return MStatus::kSuccess;
}

std::ostream& operator<<(std::ostream& s, const MString& str) {
    return s << std::string_view(str.asChar(), str.length());
}

MString operator+(const char* first, const MString& second) { return MString(first) += second; }
