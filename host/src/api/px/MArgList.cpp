#include <maya/MArgList.h>

#include "values/ArrayText.h"
#include "values/StatusOut.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <string_view>

namespace {

template <class Argument>
std::optional<double> numberIn(const Argument& argument) {
    if (const bool* b = std::get_if<bool>(&argument)) return *b ? 1.0 : 0.0;
    if (const int* i = std::get_if<int>(&argument)) return *i;
    if (const double* d = std::get_if<double>(&argument)) return *d;
    return std::nullopt;
}

// Without its fraction, and held to the range of int.
int truncated(double value) {
    if (std::isnan(value)) return 0;
    return static_cast<int>(std::clamp(value, static_cast<double>(std::numeric_limits<int>::min()),
                                       static_cast<double>(std::numeric_limits<int>::max())));
}

// Reads one argument as an element of an array.
template <class Argument>
bool readElement(const Argument& argument, int& element) {
    const auto number = numberIn(argument);
    if (number) element = truncated(*number);
    return number.has_value();
}

template <class Argument>
bool readElement(const Argument& argument, double& element) {
    const auto number = numberIn(argument);
    if (number) element = *number;
    return number.has_value();
}

template <class Argument>
bool readElement(const Argument& argument, MString& element) {
    const MString* text = std::get_if<MString>(&argument);
    if (text) element = *text;
    return text != nullptr;
}

// Calls a `get` for the functions that return their value.
template <class Value, class Get>
Value valueOf(MStatus* status, Get get) {
    Value value{};
    host::setStatus(status, get(value).statusCode());
    return value;
}

std::string_view withoutDash(std::string_view text) { return !text.empty() && text[0] == '-' ? text.substr(1) : text; }

} // namespace

MArgList::MArgList() = default;
MArgList::MArgList(const MArgList& other) = default;
MArgList::~MArgList() = default;
MArgList& MArgList::operator=(const MArgList& other) = default;

unsigned int MArgList::length(MStatus* ReturnStatus) const {
    host::setStatus(ReturnStatus, MStatus::kSuccess);
    return static_cast<unsigned int>(arguments_.size());
}

MStatus MArgList::readNumbers(unsigned int& index, double* numbers, unsigned int count) const {
    if (index >= arguments_.size() || count > arguments_.size() - index) return MStatus::kInvalidParameter;
    for (unsigned int i = 0; i < count; ++i)
        if (!readElement(arguments_[index + i], numbers[i])) return MStatus::kFailure;
    index += count;
    return MStatus::kSuccess;
}

template <class Array, class Element>
MStatus MArgList::readArray(unsigned int& index, Array& ret) const {
    if (index >= arguments_.size()) return MStatus::kInvalidParameter;
    const Argument& first = arguments_[index];
    Array result;
    unsigned int end = index;
    if (const Array* whole = std::get_if<Array>(&first)) {
        result = *whole;
        ++end;
    } else if constexpr (std::is_arithmetic_v<Element>) {
        if (const MIntArray* ints = std::get_if<MIntArray>(&first)) {
            for (const int i : *ints) result.append(i);
            ++end;
        } else if (const MDoubleArray* doubles = std::get_if<MDoubleArray>(&first)) {
            for (const double d : *doubles) result.append(truncated(d));
            ++end;
        }
    }
    if (end == index) {
        for (Element element{}; end < arguments_.size() && readElement(arguments_[end], element); ++end)
            if (!result.append(element)) return MStatus::kInsufficientMemory;
        if (end == index) return MStatus::kFailure;
    }
    ret = result;
    index = end;
    return MStatus::kSuccess;
}

MStatus MArgList::get(unsigned int index, double& ret) const { return readNumbers(index, &ret, 1); }

MStatus MArgList::get(unsigned int index, bool& ret) const {
    double number = 0.0;
    const MStatus status = get(index, number);
    if (status) ret = number != 0.0;
    return status;
}

MStatus MArgList::get(unsigned int index, int& ret) const {
    double number = 0.0;
    const MStatus status = get(index, number);
    if (status) ret = truncated(number);
    return status;
}

MStatus MArgList::get(unsigned int index, MString& ret) const {
    if (index >= arguments_.size()) return MStatus::kInvalidParameter;
    return readElement(arguments_[index], ret) ? MStatus::kSuccess : MStatus::kFailure;
}

MStatus MArgList::get(unsigned int index, MDistance& ret) const {
    double number = 0.0;
    const MStatus status = get(index, number);
    if (status) ret = MDistance(number, MDistance::uiUnit());
    return status;
}

MStatus MArgList::get(unsigned int index, MAngle& ret) const {
    double number = 0.0;
    const MStatus status = get(index, number);
    if (status) ret = MAngle(number, MAngle::uiUnit());
    return status;
}

MStatus MArgList::get(unsigned int index, MTime& ret) const {
    double number = 0.0;
    const MStatus status = get(index, number);
    if (status) ret = MTime(number, MTime::uiUnit());
    return status;
}

MStatus MArgList::get(unsigned int& index, MVector& ret, unsigned int numElements) const {
    if (numElements < 1 || numElements > 3) return MStatus::kInvalidParameter;
    double numbers[3]{};
    const MStatus status = readNumbers(index, numbers, numElements);
    if (status) ret = MVector(numbers);
    return status;
}

MStatus MArgList::get(unsigned int& index, MPoint& ret, unsigned int numElements) const {
    if (numElements < 1 || numElements > 4) return MStatus::kInvalidParameter;
    double numbers[4]{0.0, 0.0, 0.0, 1.0};
    const MStatus status = readNumbers(index, numbers, numElements);
    if (status) ret = MPoint(numbers);
    return status;
}

MStatus MArgList::get(unsigned int& index, MMatrix& ret) const {
    double numbers[16]{};
    const MStatus status = readNumbers(index, numbers, 16);
    if (status) std::copy(numbers, numbers + 16, &ret.matrix[0][0]);
    return status;
}

MStatus MArgList::get(unsigned int& index, MIntArray& ret) const { return readArray<MIntArray, int>(index, ret); }
MStatus MArgList::get(unsigned int& index, MDoubleArray& ret) const {
    return readArray<MDoubleArray, double>(index, ret);
}
MStatus MArgList::get(unsigned int& index, MStringArray& ret) const {
    return readArray<MStringArray, MString>(index, ret);
}

bool MArgList::asBool(unsigned int index, MStatus* ReturnStatus) const {
    return valueOf<bool>(ReturnStatus, [&](bool& value) { return get(index, value); });
}

int MArgList::asInt(unsigned int index, MStatus* ReturnStatus) const {
    return valueOf<int>(ReturnStatus, [&](int& value) { return get(index, value); });
}

double MArgList::asDouble(unsigned int index, MStatus* ReturnStatus) const {
    return valueOf<double>(ReturnStatus, [&](double& value) { return get(index, value); });
}

MString MArgList::asString(unsigned int index, MStatus* ReturnStatus) const {
    return valueOf<MString>(ReturnStatus, [&](MString& value) { return get(index, value); });
}

MDistance MArgList::asDistance(unsigned int index, MStatus* ReturnStatus) const {
    return valueOf<MDistance>(ReturnStatus, [&](MDistance& value) { return get(index, value); });
}

MAngle MArgList::asAngle(unsigned int index, MStatus* ReturnStatus) const {
    return valueOf<MAngle>(ReturnStatus, [&](MAngle& value) { return get(index, value); });
}

MTime MArgList::asTime(unsigned int index, MStatus* ReturnStatus) const {
    return valueOf<MTime>(ReturnStatus, [&](MTime& value) { return get(index, value); });
}

MVector MArgList::asVector(unsigned int& index, unsigned int numElements, MStatus* ReturnStatus) const {
    return valueOf<MVector>(ReturnStatus, [&](MVector& value) { return get(index, value, numElements); });
}

MPoint MArgList::asPoint(unsigned int& index, unsigned int numElements, MStatus* ReturnStatus) const {
    return valueOf<MPoint>(ReturnStatus, [&](MPoint& value) { return get(index, value, numElements); });
}

MMatrix MArgList::asMatrix(unsigned int& index, MStatus* ret) const {
    return valueOf<MMatrix>(ret, [&](MMatrix& value) { return get(index, value); });
}

MIntArray MArgList::asIntArray(unsigned int& index, MStatus* ReturnStatus) const {
    return valueOf<MIntArray>(ReturnStatus, [&](MIntArray& value) { return get(index, value); });
}

MDoubleArray MArgList::asDoubleArray(unsigned int& index, MStatus* ReturnStatus) const {
    return valueOf<MDoubleArray>(ReturnStatus, [&](MDoubleArray& value) { return get(index, value); });
}

const MStringArray MArgList::asStringArray(unsigned int& index, MStatus* ReturnStatus) const {
    return valueOf<MStringArray>(ReturnStatus, [&](MStringArray& value) { return get(index, value); });
}

unsigned int MArgList::flagIndex(const char* shortFlag, const char* longFlag) const {
    for (unsigned int i = 0; i < arguments_.size(); ++i) {
        const MString* text = std::get_if<MString>(&arguments_[i]);
        if (!text) continue;
        const std::string_view name = withoutDash(text->asChar());
        if ((shortFlag && name == withoutDash(shortFlag)) || (longFlag && name == withoutDash(longFlag))) return i;
    }
    return kInvalidArgIndex;
}

MStatus MArgList::addArg(bool arg) {
    arguments_.emplace_back(arg);
    return MStatus::kSuccess;
}

MStatus MArgList::addArg(int arg) {
    arguments_.emplace_back(arg);
    return MStatus::kSuccess;
}

MStatus MArgList::addArg(double arg) {
    arguments_.emplace_back(arg);
    return MStatus::kSuccess;
}

MStatus MArgList::addArg(const MString& arg) {
    arguments_.emplace_back(arg);
    return MStatus::kSuccess;
}

MStatus MArgList::addArg(const MDistance& arg) { return addArg(arg.as(MDistance::uiUnit())); }
MStatus MArgList::addArg(const MAngle& arg) { return addArg(arg.as(MAngle::uiUnit())); }
MStatus MArgList::addArg(const MTime& arg) { return addArg(arg.as(MTime::uiUnit())); }

MStatus MArgList::addArg(const MVector& arg) {
    for (unsigned int i = 0; i < 3; ++i) arguments_.emplace_back(arg[i]);
    return MStatus::kSuccess;
}

MStatus MArgList::addArg(const MPoint& arg) { return addArg(MVector(arg)); }

const char* MArgList::className() { return "MArgList"; }

std::ostream& operator<<(std::ostream& os, const MArgList& args) {
    const char* separator = "";
    for (const auto& argument : args.arguments_) {
        os << separator;
        if (const auto number = numberIn(argument))
            os << host::numberText(*number, 10);
        else
            std::visit([&os](const auto& value) { os << value; }, argument);
        separator = " ";
    }
    return os;
}
