#pragma once

#include <maya/MArgList.h>
#include <maya/MDoubleArray.h>
#include <maya/MIntArray.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MStringArray.h>
#include <maya/MSyntax.h>
#include <maya/MTypes.h>

namespace host::api {
struct Access;
}

/// Base class of the commands that plug-ins bring. One object is made for each call; that of an undoable command lives
/// on in the undo queue.
class OPENMAYA_EXPORT MPxCommand {
public:
    enum MResultType { kLong, kDouble, kString, kNoArg };
    MPxCommand();
    virtual ~MPxCommand();
    virtual MStatus doIt(const MArgList& args);
    virtual MStatus undoIt();
    virtual MStatus redoIt();
    virtual bool isUndoable() const;
    virtual bool hasSyntax() const;
    /// The syntax that the command was registered with, while it runs; an empty one otherwise.
    MSyntax syntax() const;
    bool isHistoryOn() const;
    MString commandString() const;
    MStatus setHistoryOn(bool state);
    /// What isUndoable() answers where the command does not override it.
    MStatus setUndoable(bool state);
    MStatus setCommandString(const MString& name);
    static void displayInfo(const MString& theInfo);
    static void displayWarning(const MString& theWarning, bool showLineNumber = false);
    static void displayError(const MString& theError, bool showLineNumber = false);
    static void clearResult();
    static void setResult(unsigned int val);
    static void setResult(int val);
    static void setResult(double val);
    static void setResult(bool val);
    static void setResult(const char* val);
    static void setResult(const MString& val);
    static void setResult(const MIntArray& val);
    static void setResult(const MDoubleArray& val);
    static void setResult(const MStringArray& val);
    static void appendToResult(int val);
    static void appendToResult(double val);
    static void appendToResult(bool val);
    static void appendToResult(const char* val);
    static void appendToResult(const MString& val);
    static void appendToResult(const MStringArray& val);
    static bool isCurrentResultArray();
    static MPxCommand::MResultType currentResultType();
    static MStatus getCurrentResult(int& val);
    static MStatus getCurrentResult(double& val);
    static MStatus getCurrentResult(MString& val);
    static MStatus getCurrentResult(MIntArray& val);
    static MStatus getCurrentResult(MDoubleArray& val);
    static MStatus getCurrentResult(MStringArray& val);
    static int currentIntResult(MStatus* ReturnStatus = NULL);
    static double currentDoubleResult(MStatus* ReturnStatus = NULL);
    static MString currentStringResult(MStatus* ReturnStatus = NULL);
    static const char* className();

private:
    friend struct host::api::Access;
    MPxCommand(const MPxCommand&) = delete;
    MPxCommand& operator=(const MPxCommand&) = delete;
    bool history_ = true, undoable_ = false;
};
