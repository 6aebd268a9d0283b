#include <maya/MArgDatabase.h>

#include "api/graph/Handle.h"
#include "api/px/ArgParsing.h"
#include "api/px/CommandRunner.h"
#include "values/StatusOut.h"
#include "values/Text.h"

#include <cmath>

using namespace host;
using host::api::Access;
using host::api::Argument;
using host::api::fromText;
using host::api::ParsedCall;
using host::api::SyntaxTable;
using host::api::toText;

namespace {

MSelectionList selection() {
    MSelectionList list;
    for (const auto& item : scene::Scene::current().selection()) Access::append(list, item);
    return list;
}

/// The call's objects that exist; the others' names go to `missing`.
MSelectionList resolved(const ParsedCall& call, std::string* missing) {
    if (call.objects.empty() && call.syntax.selectionAsDefault) return selection();
    MSelectionList list;
    for (const auto& name : call.objects)
        if (!list.add(fromText(name)) && missing && missing->empty()) *missing = name;
    return list;
}

std::string faultOfObjects(const ParsedCall& call, bool resolve) {
    const SyntaxTable& syntax = call.syntax;
    if (syntax.format != MSyntax::kStringObjects && syntax.format != MSyntax::kSelectionList) return {};
    std::string missing;
    const bool exist = resolve && syntax.format == MSyntax::kSelectionList;
    const unsigned found = exist ? resolved(call, &missing).length()
                           : call.objects.empty() && syntax.selectionAsDefault
                               ? selection().length()
                               : static_cast<unsigned>(call.objects.size());
    if (!missing.empty()) return "No object matches name: " + missing;
    if (found < syntax.minObjects) return "Not enough objects or values.";
    return found > syntax.maxObjects ? "Too many objects or values." : "";
}

MStatus convert(const Argument& argument, double& result) {
    const double* number = std::get_if<double>(&argument);
    if (!number) return MStatus::kFailure;
    result = *number;
    return MStatus::kSuccess;
}

MStatus convert(const Argument& argument, bool& result) {
    double number = 0;
    const MStatus status = convert(argument, number);
    if (status) result = number != 0;
    return status;
}

/// Without its fraction; kFailure beyond the type's range.
template <class Integer>
MStatus convertInteger(const Argument& argument, Integer& result) {
    double number = 0;
    const MStatus status = convert(argument, number);
    if (!status) return status;
    number = std::trunc(number);
    if (!(number >= static_cast<double>(std::numeric_limits<Integer>::min()) &&
          number <= static_cast<double>(std::numeric_limits<Integer>::max())))
        return MStatus::kFailure;
    result = static_cast<Integer>(number);
    return status;
}

MStatus convert(const Argument& argument, int& result) { return convertInteger(argument, result); }
MStatus convert(const Argument& argument, unsigned int& result) { return convertInteger(argument, result); }

MStatus convert(const Argument& argument, MString& result) {
    const auto* text = std::get_if<std::string>(&argument);
    result = text ? fromText(*text) : MString() + std::get<double>(argument);
    return MStatus::kSuccess;
}

/// A quantity in the user's unit.
template <class Quantity>
MStatus convertQuantity(const Argument& argument, Quantity& result) {
    double number = 0;
    const MStatus status = convert(argument, number);
    if (status) result = Quantity(number, Quantity::uiUnit());
    return status;
}

MStatus convert(const Argument& argument, MDistance& result) { return convertQuantity(argument, result); }
MStatus convert(const Argument& argument, MAngle& result) { return convertQuantity(argument, result); }
MStatus convert(const Argument& argument, MTime& result) { return convertQuantity(argument, result); }

MStatus convert(const Argument& argument, MSelectionList& result) {
    MString name;
    convert(argument, name);
    result.clear();
    return result.add(name);
}

/// The i-th use of the flag; null when there is none.
const ParsedCall::Use* useOf(const ParsedCall* call, const char* flag, unsigned int i) {
    const int wanted = call && flag ? call->syntax.find(flag) : -1;
    if (wanted < 0) return nullptr;
    for (const auto& use : call->uses)
        if (use.flag == wanted && i-- == 0) return &use;
    return nullptr;
}

template <class Result>
MStatus flagArgument(const ParsedCall* call, const char* flag, unsigned int index, Result& result) {
    for (unsigned int i = 0; const auto* use = useOf(call, flag, i); ++i) {
        if (index < use->arguments.size()) return convert(use->arguments[index], result);
        index -= static_cast<unsigned int>(use->arguments.size());
    }
    return MStatus::kInvalidParameter;
}

template <class Result>
MStatus commandArgument(const ParsedCall* call, unsigned int index, Result& result) {
    if (!call || index >= call->arguments.size()) return MStatus::kInvalidParameter;
    return convert(call->arguments[index], result);
}

template <class Result>
Result valueOf(MStatus status, const Result& result, MStatus* ReturnStatus) {
    if (ReturnStatus) *ReturnStatus = status;
    return result;
}

} // namespace

MArgParser::MArgParser() = default;
MArgParser::~MArgParser() = default;

MArgParser::MArgParser(const MSyntax& syntax, const MArgList& argList, MStatus* ReturnStatus)
    : MArgParser(syntax, argList, false, ReturnStatus) {}

MArgParser::MArgParser(const MSyntax& syntax, const MArgList& argList, bool resolve, MStatus* ReturnStatus) {
    auto call = std::make_shared<ParsedCall>();
    std::string fault = api::parseCall(Access::table(syntax), argList, *call);
    if (fault.empty()) fault = faultOfObjects(*call, resolve);
    setStatus(ReturnStatus, fault.empty() ? MStatus::kSuccess : MStatus::kFailure);
    if (fault.empty())
        call_ = std::move(call);
    else
        api::noteFaultOfCall(fault);
}

bool MArgParser::isFlagSet(const char* flag, MStatus* ReturnStatus) const {
    const bool known = call_ && flag && call_->syntax.find(flag) >= 0;
    setStatus(ReturnStatus, known ? MStatus::kSuccess : MStatus::kInvalidParameter);
    return useOf(call_.get(), flag, 0) != nullptr;
}

bool MArgParser::isEdit(MStatus* ReturnStatus) const {
    setStatus(ReturnStatus, call_ ? MStatus::kSuccess : MStatus::kFailure);
    return call_ && call_->edit;
}

bool MArgParser::isQuery(MStatus* ReturnStatus) const {
    setStatus(ReturnStatus, call_ ? MStatus::kSuccess : MStatus::kFailure);
    return call_ && call_->query;
}

unsigned int MArgParser::numberOfFlagsUsed() const {
    return call_ ? static_cast<unsigned int>(call_->uses.size()) + call_->query + call_->edit : 0;
}

unsigned int MArgParser::numberOfFlagUses(const char* flag) const {
    unsigned int count = 0;
    while (useOf(call_.get(), flag, count)) ++count;
    return count;
}

#define ORVO_FLAG_ARGUMENT(T)                                                                                          \
    MStatus MArgParser::getFlagArgument(const char* flag, unsigned int index, T& result) const {                       \
        return flagArgument(call_.get(), flag, index, result);                                                         \
    }
#define ORVO_ARGUMENT(T, Name)                                                                                         \
    ORVO_FLAG_ARGUMENT(T)                                                                                              \
    MStatus MArgParser::getCommandArgument(unsigned int index, T& result) const {                                      \
        return commandArgument(call_.get(), index, result);                                                            \
    }                                                                                                                  \
    T MArgParser::flagArgument##Name(const char* flag, unsigned int index, MStatus* ReturnStatus) const {              \
        T result{};                                                                                                    \
        const MStatus status = getFlagArgument(flag, index, result);                                                   \
        return valueOf(status, result, ReturnStatus);                                                                  \
    }                                                                                                                  \
    T MArgParser::commandArgument##Name(unsigned int index, MStatus* ReturnStatus) const {                             \
        T result{};                                                                                                    \
        const MStatus status = getCommandArgument(index, result);                                                      \
        return valueOf(status, result, ReturnStatus);                                                                  \
    }

ORVO_ARGUMENT(bool, Bool)
ORVO_ARGUMENT(int, Int)
ORVO_ARGUMENT(double, Double)
ORVO_ARGUMENT(MString, String)
ORVO_ARGUMENT(MDistance, MDistance)
ORVO_ARGUMENT(MAngle, MAngle)
ORVO_ARGUMENT(MTime, MTime)
ORVO_FLAG_ARGUMENT(unsigned int)

MStatus MArgParser::getFlagArgumentPosition(const char* flag, unsigned int i, unsigned int& position) const {
    const auto* use = useOf(call_.get(), flag, i);
    if (!use) return MStatus::kInvalidParameter;
    position = use->position;
    return MStatus::kSuccess;
}

MStatus MArgParser::getFlagArgumentList(const char* flag, unsigned int i, MArgList& args) const {
    const auto* use = useOf(call_.get(), flag, i);
    if (!use) return MStatus::kInvalidParameter;
    args = MArgList();
    for (const Argument& argument : use->arguments) {
        if (const auto* text = std::get_if<std::string>(&argument))
            args.addArg(fromText(*text));
        else
            args.addArg(std::get<double>(argument));
    }
    return MStatus::kSuccess;
}

MStatus MArgParser::getObjects(MStringArray& result) const {
    if (!call_) return MStatus::kFailure;
    result.clear();
    if (call_->objects.empty() && call_->syntax.selectionAsDefault) return selection().getSelectionStrings(result);
    for (const auto& name : call_->objects) result.append(fromText(name));
    return MStatus::kSuccess;
}

const char* MArgParser::className() { return "MArgParser"; }

MArgDatabase::MArgDatabase() = default;
MArgDatabase::~MArgDatabase() = default;
MArgDatabase::MArgDatabase(const MSyntax& syntax, const MArgList& argList, MStatus* ReturnStatus)
    : MArgParser(syntax, argList, true, ReturnStatus) {}

MStatus MArgDatabase::getFlagArgument(const char* flag, unsigned int index, MSelectionList& result) const {
    return flagArgument(call_.get(), flag, index, result);
}

MStatus MArgDatabase::getCommandArgument(unsigned int index, MSelectionList& result) const {
    return commandArgument(call_.get(), index, result);
}

MStatus MArgDatabase::getObjects(MSelectionList& result) const {
    if (!call_) return MStatus::kFailure;
    result = resolved(*call_, nullptr);
    return MStatus::kSuccess;
}

const char* MArgDatabase::className() { return "MArgDatabase"; }
