#include <maya/MGlobal.h>

#include "api/graph/Handle.h"
#include "api/px/CommandRunner.h"
#include "base/Messages.h"
#include "base/OptionVars.h"
#include "base/Units.h"
#include "mel/Interpreter.h"
#include "mel/Services.h"
#include "values/StatusOut.h"
#include "values/Text.h"
#include "values/TimeTicks.h"

#include <maya/MDagPath.h>
#include <maya/MDoubleArray.h>
#include <maya/MIntArray.h>
#include <maya/MSelectionList.h>
#include <maya/MStringArray.h>
#include <maya/MTime.h>
#include <maya/MVector.h>

#include <algorithm>

using namespace host;
using host::api::Access;
using host::api::fromText;
using host::api::toText;
using mel::Value;
using scene::Scene;

namespace host::api {

MStatus takeResult(const Value& v, int& out) {
    if (v.type() != Value::Type::Int) return MStatus::kFailure;
    out = v.toInt();
    return MStatus::kSuccess;
}

MStatus takeResult(const Value& v, double& out) {
    if (!v.isNumber()) return MStatus::kFailure;
    out = v.toFloat();
    return MStatus::kSuccess;
}

MStatus takeResult(const Value& v, MString& out) {
    if (v.type() != Value::Type::String) return MStatus::kFailure;
    out = fromText(v.toString());
    return MStatus::kSuccess;
}

MStatus takeResult(const Value& v, MIntArray& out) {
    if (v.type() != Value::Type::Int && v.type() != Value::Type::IntArray) return MStatus::kFailure;
    out.clear();
    for (const int i : v.toIntArray()) out.append(i);
    return MStatus::kSuccess;
}

MStatus takeResult(const Value& v, MDoubleArray& out) {
    if (!v.isNumber() && v.type() != Value::Type::FloatArray && v.type() != Value::Type::IntArray)
        return MStatus::kFailure;
    out.clear();
    for (const double d : v.toFloatArray()) out.append(d);
    return MStatus::kSuccess;
}

MStatus takeResult(const Value& v, MStringArray& out) {
    if (v.type() != Value::Type::String && v.type() != Value::Type::StringArray) return MStatus::kFailure;
    out.clear();
    for (const auto& s : v.toStringArray()) out.append(fromText(s));
    return MStatus::kSuccess;
}

} // namespace host::api

namespace {

std::string described(const mel::Error& e) {
    if (e.line() <= 0) return e.what();
    const std::string place = e.file().empty() ? "" : "file: " + e.file() + " ";
    return place + "line " + std::to_string(e.line()) + ": " + e.what();
}

/// Runs MEL for a plug-in; what fails is shown as in the script editor.
MStatus run(const MString& command, bool display, bool undoable, Value& result) {
    auto& queue = Scene::current().undo;
    try {
        if (undoable) {
            const scene::UndoQueue::Resume on(queue);
            result = Services::current().interpreter().execute(toText(command));
        } else {
            const scene::UndoQueue::Suspend off(queue);
            result = Services::current().interpreter().execute(toText(command));
        }
        if (display) showInfo(toText(command));
        return MStatus::kSuccess;
    } catch (const mel::Error& e) {
        if (!e.silent) showError(described(e));
    } catch (const scene::SceneError& e) {
        showError(e.what());
    }
    return MStatus::kFailure;
}

template <class T>
MStatus runFor(const MString& command, T& result, bool display, bool undoable) {
    Value v;
    const MStatus status = run(command, display, undoable, v);
    return status ? api::takeResult(v, result) : status;
}

MStatus adjust(const MSelectionList& list, MGlobal::ListAdjustment how) {
    const auto items = Access::items(list);
    auto selection = Scene::current().selection();
    switch (how) {
    case MGlobal::kReplaceList: selection = items; break;
    case MGlobal::kAddToList: selection.insert(selection.end(), items.begin(), items.end()); break;
    case MGlobal::kAddToHeadOfList: selection.insert(selection.begin(), items.begin(), items.end()); break;
    case MGlobal::kRemoveFromList: selection = without(selection, items); break;
    case MGlobal::kXORWithList: selection = toggled(selection, items); break;
    }
    Scene::current().setSelection(std::move(selection));
    return MStatus::kSuccess;
}

} // namespace

MString MGlobal::mayaVersion() { return MString("2010"); }
int MGlobal::apiVersion() { return MAYA_API_VERSION; }

MGlobal::MMayaState MGlobal::mayaState(MStatus* ReturnStatus) {
    setStatus(ReturnStatus, MStatus::kSuccess);
    return kBatch;
}

MStatus MGlobal::getSelectionListByName(const MString& name, MSelectionList& list) {
    list.clear();
    return list.add(name);
}

MStatus MGlobal::getActiveSelectionList(MSelectionList& dest, bool) {
    dest.clear();
    for (const auto& item : Scene::current().selection()) Access::append(dest, item);
    return MStatus::kSuccess;
}

MStatus MGlobal::setActiveSelectionList(const MSelectionList& src, ListAdjustment how) { return adjust(src, how); }

MStatus MGlobal::selectByName(const MString& name, ListAdjustment how) {
    MSelectionList list;
    const MStatus status = list.add(name);
    return status ? adjust(list, how) : status;
}

MStatus MGlobal::unselectByName(const MString& name) { return selectByName(name, kRemoveFromList); }

MStatus MGlobal::select(MObject& object, ListAdjustment how) {
    MSelectionList list;
    const MStatus status = list.add(object);
    return status ? adjust(list, how) : status;
}

MStatus MGlobal::select(const MDagPath& object, const MObject& component, ListAdjustment how) {
    MSelectionList list;
    const MStatus status = list.add(object, component);
    return status ? adjust(list, how) : status;
}

MStatus MGlobal::unselect(MObject& object) { return select(object, kRemoveFromList); }
MStatus MGlobal::unselect(const MDagPath& object, const MObject& component) {
    return select(object, component, kRemoveFromList);
}
MStatus MGlobal::clearSelectionList() { return adjust(MSelectionList(), kReplaceList); }

bool MGlobal::isSelected(MObject& object, MStatus* ReturnStatus) {
    setStatus(ReturnStatus, MStatus::kSuccess);
    const auto n = Access::node(object);
    const auto& list = Scene::current().selection();
    return n && std::any_of(list.begin(), list.end(), [&](const auto& s) { return s.node == n; });
}

MStatus MGlobal::viewFrame(const MTime& time) {
    Scene::current().setTime(ticksOf(time));
    return MStatus::kSuccess;
}

MStatus MGlobal::viewFrame(double time) {
    Scene::current().setTime(time * timeUnit().ticks);
    return MStatus::kSuccess;
}

MStatus MGlobal::sourceFile(const MString& fileName) {
    try {
        Services::current().interpreter().sourceFile(toText(fileName));
        return MStatus::kSuccess;
    } catch (const mel::Error& e) {
        if (!e.silent) showError(described(e));
        return MStatus::kFailure;
    }
}

MStatus MGlobal::executeCommandOnIdle(const MString& command, bool displayEnabled) {
    // A batch host is never idle while it has work; the command runs now.
    return executeCommand(command, displayEnabled, false);
}

MStatus MGlobal::executeCommand(const MString& command, bool display, bool undoable) {
    Value ignored;
    return run(command, display, undoable, ignored);
}
MStatus MGlobal::executeCommand(const MString& c, int& r, bool d, bool u) { return runFor(c, r, d, u); }
MStatus MGlobal::executeCommand(const MString& c, MIntArray& r, bool d, bool u) { return runFor(c, r, d, u); }
MStatus MGlobal::executeCommand(const MString& c, double& r, bool d, bool u) { return runFor(c, r, d, u); }
MStatus MGlobal::executeCommand(const MString& c, MDoubleArray& r, bool d, bool u) { return runFor(c, r, d, u); }
MStatus MGlobal::executeCommand(const MString& c, MStringArray& r, bool d, bool u) { return runFor(c, r, d, u); }
MStatus MGlobal::executeCommand(const MString& c, MString& r, bool d, bool u) { return runFor(c, r, d, u); }

MString MGlobal::executeCommandStringResult(const MString& command, bool d, bool u, MStatus* ReturnStatus) {
    MString result;
    const MStatus status = runFor(command, result, d, u);
    if (ReturnStatus) *ReturnStatus = status;
    return result;
}

MStatus MGlobal::deleteNode(MObject& object) {
    const auto n = Access::node(object);
    if (!n) return MStatus::kInvalidParameter;
    return api::guarded([&] { n->scene.deleteNodes({n.get()}); });
}

bool MGlobal::isYAxisUp(MStatus* ReturnStatus) {
    setStatus(ReturnStatus, MStatus::kSuccess);
    return true;
}

bool MGlobal::isZAxisUp(MStatus* ReturnStatus) {
    setStatus(ReturnStatus, MStatus::kSuccess);
    return false;
}

MVector MGlobal::upAxis(MStatus* ReturnStatus) {
    setStatus(ReturnStatus, MStatus::kSuccess);
    return MVector(0, 1, 0);
}

void MGlobal::displayInfo(const MString& theMessage) { showInfo(toText(theMessage)); }
void MGlobal::displayWarning(const MString& theWarning) { showWarning(toText(theWarning)); }
void MGlobal::displayError(const MString& theError) { showError(toText(theError)); }

namespace {

template <class T>
T optionVar(const MString& name, bool* exists) {
    const auto* v = scene::optionVars().find(toText(name));
    const T* held = v ? std::get_if<T>(v) : nullptr;
    if (exists) *exists = held != nullptr;
    return held ? *held : T{};
}

} // namespace

int MGlobal::optionVarIntValue(const MString& name, bool* exists) { return optionVar<int>(name, exists); }
double MGlobal::optionVarDoubleValue(const MString& name, bool* exists) { return optionVar<double>(name, exists); }
MString MGlobal::optionVarStringValue(const MString& name, bool* exists) {
    return fromText(optionVar<std::string>(name, exists));
}
bool MGlobal::setOptionVarValue(const MString& name, int value) {
    scene::optionVars().set(toText(name), value);
    return true;
}
bool MGlobal::setOptionVarValue(const MString& name, double value) {
    scene::optionVars().set(toText(name), value);
    return true;
}
bool MGlobal::setOptionVarValue(const MString& name, MString value) {
    scene::optionVars().set(toText(name), toText(value));
    return true;
}
void MGlobal::removeOptionVar(const MString& name) { scene::optionVars().remove(toText(name)); }
bool MGlobal::optionVarExists(const MString& name) { return scene::optionVars().find(toText(name)) != nullptr; }

bool MGlobal::isUndoing() { return Scene::current().undo.isUndoing(); }
bool MGlobal::isRedoing() { return Scene::current().undo.isRedoing(); }
const char* MGlobal::className() { return "MGlobal"; }
