#include <maya/MPxCommand.h>

#include "api/graph/Handle.h"
#include "api/px/ArgListAccess.h"
#include "api/px/CommandRunner.h"
#include "base/Messages.h"
#include "mel/Interpreter.h"
#include "values/StatusOut.h"
#include "values/Text.h"

#include <maya/MDoubleArray.h>
#include <maya/MIntArray.h>
#include <maya/MString.h>
#include <maya/MStringArray.h>

using namespace host;
using host::api::fromText;
using host::api::toText;
using mel::Value;

namespace {

/// A plug-in command that runs now; the innermost one owns the result.
struct Frame {
    Frame* outer;
    Value result;
    std::string name;
    std::shared_ptr<const MSyntax> syntax{};
    std::string fault{}; ///< what of its arguments does not keep to the syntax
};
Frame* current = nullptr;

template <class T>
void append(T item) {
    if (!current) return;
    Value& r = current->result;
    using Array = std::vector<T>;
    if (r.isNone())
        r = item;
    else if (auto* one = r.get<T>())
        r = Array{*one, item};
    else if (auto* list = r.get<Array>())
        list->push_back(item);
    else
        r = item;
}

void put(Value v) {
    if (current) current->result = std::move(v);
}

} // namespace

namespace host::api {

void noteFaultOfCall(const std::string& text) {
    if (!current)
        showError(text);
    else if (current->fault.empty())
        current->fault = text;
}

Value runPluginCommand(const std::string& name, MCreatorFunction create, std::shared_ptr<const MSyntax> syntax,
                       mel::Call& call) {
    MArgList arguments;
    for (const Value& v : call.arguments) {
        switch (v.type()) {
        case Value::Type::None: break;
        case Value::Type::Int: arguments.addArg(v.toInt()); break;
        case Value::Type::Float: arguments.addArg(v.toFloat()); break;
        case Value::Type::Vector: {
            const mel::Vector x = v.toVector();
            for (const double n : {x.x, x.y, x.z}) arguments.addArg(n);
            break;
        }
        case Value::Type::IntArray: {
            const auto list = v.toIntArray();
            ArgListAccess::add(arguments, MIntArray(list.data(), static_cast<unsigned int>(list.size())));
            break;
        }
        case Value::Type::FloatArray: {
            const auto list = v.toFloatArray();
            ArgListAccess::add(arguments, MDoubleArray(list.data(), static_cast<unsigned int>(list.size())));
            break;
        }
        case Value::Type::StringArray: {
            MStringArray list;
            for (const auto& s : v.toStringArray()) list.append(fromText(s));
            ArgListAccess::add(arguments, list);
            break;
        }
        default: arguments.addArg(fromText(v.toString())); break;
        }
    }

    auto& undo = scene::Scene::current().undo;
    std::shared_ptr<MPxCommand> command;
    Frame frame{current, {}, name, syntax};
    MStatus status = MStatus::kFailure;
    std::string thrown;
    {
        // What the command changes through the API is its own to take back.
        const scene::UndoQueue::Suspend quiet(undo);
        current = &frame;
        try {
            command.reset(static_cast<MPxCommand*>(create()));
            if (command) status = command->doIt(arguments);
        } catch (const std::exception& e) {
            thrown = e.what();
        } catch (...) {
            thrown = "unknown";
        }
        current = frame.outer;
    }
    if (!thrown.empty()) throw mel::Error("The command \"" + name + "\" ended with an exception: " + thrown);
    if (!status && !frame.fault.empty()) throw mel::Error(frame.fault);
    if (!status) throw mel::Error("The command \"" + name + "\" failed: " + toText(status.errorString()));
    if (!frame.fault.empty()) showError(frame.fault);
    if (command->isUndoable()) {
        const auto again = [name, syntax](const std::shared_ptr<MPxCommand>& c, bool back) {
            Frame inner{current, {}, name, syntax};
            current = &inner;
            MStatus s = MStatus::kFailure;
            try {
                s = back ? c->undoIt() : c->redoIt();
            } catch (...) {
                s = MStatus::kFailure;
            }
            current = inner.outer;
            if (!s) showError("The command \"" + name + "\" could not be " + (back ? "undone." : "redone."));
        };
        scene::Scene::current().record([again, command] { again(command, false); },
                                       [again, command] { again(command, true); });
    }
    return frame.result;
}

} // namespace host::api

MPxCommand::MPxCommand() = default;
MPxCommand::~MPxCommand() = default;
MStatus MPxCommand::doIt(const MArgList&) { return MStatus::kFailure; }
MStatus MPxCommand::undoIt() { return MStatus::kFailure; }
MStatus MPxCommand::redoIt() { return MStatus::kFailure; }
bool MPxCommand::isUndoable() const { return undoable_; }
bool MPxCommand::hasSyntax() const { return false; }
MSyntax MPxCommand::syntax() const { return current && current->syntax ? *current->syntax : MSyntax(); }
bool MPxCommand::isHistoryOn() const { return history_; }
MString MPxCommand::commandString() const { return current ? fromText(current->name) : MString(); }

MStatus MPxCommand::setHistoryOn(bool state) {
    history_ = state;
    return MStatus::kSuccess;
}

MStatus MPxCommand::setUndoable(bool state) {
    undoable_ = state;
    return MStatus::kSuccess;
}

MStatus MPxCommand::setCommandString(const MString& name) {
    if (!current) return MStatus::kFailure;
    current->name = toText(name);
    return MStatus::kSuccess;
}

void MPxCommand::displayInfo(const MString& theInfo) { showInfo(toText(theInfo)); }
void MPxCommand::displayWarning(const MString& theWarning, bool) { showWarning(toText(theWarning)); }
void MPxCommand::displayError(const MString& theError, bool) { showError(toText(theError)); }

void MPxCommand::clearResult() { put({}); }
void MPxCommand::setResult(unsigned int val) { put(static_cast<int>(val)); }
void MPxCommand::setResult(int val) { put(val); }
void MPxCommand::setResult(double val) { put(val); }
void MPxCommand::setResult(bool val) { put(val); }
void MPxCommand::setResult(const char* val) { put(std::string(val ? val : "")); }
void MPxCommand::setResult(const MString& val) { put(toText(val)); }
void MPxCommand::setResult(const MIntArray& val) { put(mel::IntArray(val.begin(), val.end())); }
void MPxCommand::setResult(const MDoubleArray& val) { put(mel::FloatArray(val.begin(), val.end())); }
void MPxCommand::setResult(const MStringArray& val) {
    mel::StringArray list;
    for (unsigned int i = 0; i < val.length(); ++i) list.push_back(toText(val[i]));
    put(std::move(list));
}

void MPxCommand::appendToResult(int val) { append(val); }
void MPxCommand::appendToResult(double val) { append(val); }
void MPxCommand::appendToResult(bool val) { append(val ? 1 : 0); }
void MPxCommand::appendToResult(const char* val) { append(std::string(val ? val : "")); }
void MPxCommand::appendToResult(const MString& val) { append(toText(val)); }
void MPxCommand::appendToResult(const MStringArray& val) {
    for (unsigned int i = 0; i < val.length(); ++i) append(toText(val[i]));
}

bool MPxCommand::isCurrentResultArray() { return current && current->result.isArray(); }

MPxCommand::MResultType MPxCommand::currentResultType() {
    switch (current ? current->result.type() : Value::Type::None) {
    case Value::Type::Int:
    case Value::Type::IntArray: return kLong;
    case Value::Type::Float:
    case Value::Type::FloatArray: return kDouble;
    case Value::Type::String:
    case Value::Type::StringArray: return kString;
    default: return kNoArg;
    }
}

MStatus MPxCommand::getCurrentResult(int& val) {
    return current ? api::takeResult(current->result, val) : MStatus(MStatus::kFailure);
}
MStatus MPxCommand::getCurrentResult(double& val) {
    return current ? api::takeResult(current->result, val) : MStatus(MStatus::kFailure);
}
MStatus MPxCommand::getCurrentResult(MString& val) {
    return current ? api::takeResult(current->result, val) : MStatus(MStatus::kFailure);
}
MStatus MPxCommand::getCurrentResult(MIntArray& val) {
    return current ? api::takeResult(current->result, val) : MStatus(MStatus::kFailure);
}
MStatus MPxCommand::getCurrentResult(MDoubleArray& val) {
    return current ? api::takeResult(current->result, val) : MStatus(MStatus::kFailure);
}
MStatus MPxCommand::getCurrentResult(MStringArray& val) {
    return current ? api::takeResult(current->result, val) : MStatus(MStatus::kFailure);
}

int MPxCommand::currentIntResult(MStatus* ReturnStatus) {
    int v = 0;
    const MStatus s = getCurrentResult(v);
    if (ReturnStatus) *ReturnStatus = s;
    return v;
}

double MPxCommand::currentDoubleResult(MStatus* ReturnStatus) {
    double v = 0;
    const MStatus s = getCurrentResult(v);
    if (ReturnStatus) *ReturnStatus = s;
    return v;
}

MString MPxCommand::currentStringResult(MStatus* ReturnStatus) {
    MString v;
    const MStatus s = getCurrentResult(v);
    if (ReturnStatus) *ReturnStatus = s;
    return v;
}

const char* MPxCommand::className() { return "MPxCommand"; }
