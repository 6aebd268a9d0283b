#pragma once

#include <maya/MDagPath.h>
#include <maya/MDoubleArray.h>
#include <maya/MIntArray.h>
#include <maya/MObject.h>
#include <maya/MSelectionList.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MStringArray.h>
#include <maya/MTime.h>
#include <maya/MTypes.h>
#include <maya/MVector.h>

/// Operations on the host as a whole: messages, script commands, the selection, time.
class OPENMAYA_EXPORT MGlobal {
public:
    enum MMayaState { kInteractive, kBatch, kLibraryApp, kBaseUIMode };
    enum ListAdjustment { kReplaceList, kXORWithList, kAddToList, kRemoveFromList, kAddToHeadOfList };

    static MString mayaVersion();
    static int apiVersion();
    static MGlobal::MMayaState mayaState(MStatus* ReturnStatus = NULL);
    static MStatus getSelectionListByName(const MString& name, MSelectionList& list);
    static MStatus getActiveSelectionList(MSelectionList& dest, bool orderedSelectionIfAvailable = false);
    static MStatus setActiveSelectionList(const MSelectionList& src,
                                          MGlobal::ListAdjustment listAdjustment = kReplaceList);
    static MStatus selectByName(const MString& name, MGlobal::ListAdjustment listAdjustment = kAddToList);
    static MStatus unselectByName(const MString& name);
    static MStatus select(MObject& object, MGlobal::ListAdjustment listAdjustment = kAddToList);
    static MStatus select(const MDagPath& object, const MObject& component,
                          MGlobal::ListAdjustment listAdjustment = kAddToList);
    static MStatus unselect(MObject& object);
    static MStatus unselect(const MDagPath& object, const MObject& component);
    static MStatus clearSelectionList();
    static bool isSelected(MObject& object, MStatus* ReturnStatus = NULL);
    static MStatus viewFrame(const MTime& time);
    static MStatus viewFrame(double time);
    static MStatus sourceFile(const MString& fileName);
    static MStatus executeCommandOnIdle(const MString& command, bool displayEnabled = false);
    /// Runs MEL. A failing script gives kFailure, and its error is shown as in the script editor.
    static MStatus executeCommand(const MString& command, bool displayEnabled = false, bool undoEnabled = false);
    /// The same with the script's result; a result of another type gives kFailure.
    static MStatus executeCommand(const MString& command, int& result, bool displayEnabled = false,
                                  bool undoEnabled = false);
    static MStatus executeCommand(const MString& command, MIntArray& result, bool displayEnabled = false,
                                  bool undoEnabled = false);
    static MStatus executeCommand(const MString& command, double& result, bool displayEnabled = false,
                                  bool undoEnabled = false);
    static MStatus executeCommand(const MString& command, MDoubleArray& result, bool displayEnabled = false,
                                  bool undoEnabled = false);
    static MStatus executeCommand(const MString& command, MStringArray& result, bool displayEnabled = false,
                                  bool undoEnabled = false);
    static MStatus executeCommand(const MString& command, MString& result, bool displayEnabled = false,
                                  bool undoEnabled = false);
    static MString executeCommandStringResult(const MString& command, bool displayEnabled = false,
                                              bool undoEnabled = false, MStatus* ReturnStatus = NULL);
    static MStatus deleteNode(MObject& object);
    static bool isYAxisUp(MStatus* ReturnStatus = NULL);
    static bool isZAxisUp(MStatus* ReturnStatus = NULL);
    static MVector upAxis(MStatus* ReturnStatus = NULL);
    static void displayInfo(const MString& theMessage);
    static void displayWarning(const MString& theWarning);
    static void displayError(const MString& theError);
    static int optionVarIntValue(const MString& name, bool* exists = NULL);
    static double optionVarDoubleValue(const MString& name, bool* exists = NULL);
    static MString optionVarStringValue(const MString& name, bool* exists = NULL);
    static bool setOptionVarValue(const MString& name, int value);
    static bool setOptionVarValue(const MString& optionVarName, double value);
    static bool setOptionVarValue(const MString& name, MString value);
    static void removeOptionVar(const MString& name);
    static bool optionVarExists(const MString& name);
    static bool isUndoing();
    static bool isRedoing();
    static const char* className();
};
