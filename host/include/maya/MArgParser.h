#pragma once

#include <maya/MAngle.h>
#include <maya/MArgList.h>
#include <maya/MDistance.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MStringArray.h>
#include <maya/MSyntax.h>
#include <maya/MTime.h>
#include <maya/MTypes.h>

#include <memory>

namespace host::api {
struct ParsedCall;
}

/// The arguments of a call, taken apart by a syntax.
///
/// A call that does not keep to the syntax gives kFailure, and its fault becomes the error of the command when that
/// fails. Flags may be shortened as long as one long name alone begins so. Asking for what is not there gives
/// kInvalidParameter: a flag that the syntax does not have or that was not given, an argument behind the last one. An
/// argument that is not of the type asked for gives kFailure. Lengths, angles and times count in the user's units.
class OPENMAYA_EXPORT MArgParser {
public:
    MArgParser();
    MArgParser(const MSyntax& syntax, const MArgList& argList, MStatus* ReturnStatus = NULL);
    virtual ~MArgParser();
    bool isFlagSet(const char* flag, MStatus* ReturnStatus = NULL) const;
    bool isEdit(MStatus* ReturnStatus = NULL) const;
    bool isQuery(MStatus* ReturnStatus = NULL) const;
    unsigned int numberOfFlagsUsed() const;
    unsigned int numberOfFlagUses(const char* flag) const;
    /// The index counts over all uses of a flag that may be used more than once.
    MStatus getFlagArgument(const char* flag, unsigned int index, bool& result) const;
    MStatus getFlagArgument(const char* flag, unsigned int index, int& result) const;
    MStatus getFlagArgument(const char* flag, unsigned int index, double& result) const;
    MStatus getFlagArgument(const char* flag, unsigned int index, MString& result) const;
    MStatus getFlagArgument(const char* flag, unsigned int index, unsigned int& result) const;
    MStatus getFlagArgument(const char* flag, unsigned int index, MDistance& result) const;
    MStatus getFlagArgument(const char* flag, unsigned int index, MAngle& result) const;
    MStatus getFlagArgument(const char* flag, unsigned int index, MTime& result) const;
    bool flagArgumentBool(const char* flag, unsigned int index, MStatus* ReturnStatus = NULL) const;
    int flagArgumentInt(const char* flag, unsigned int index, MStatus* ReturnStatus = NULL) const;
    double flagArgumentDouble(const char* flag, unsigned int index, MStatus* ReturnStatus = NULL) const;
    MString flagArgumentString(const char* flag, unsigned int index, MStatus* ReturnStatus = NULL) const;
    MDistance flagArgumentMDistance(const char* flag, unsigned int index, MStatus* ReturnStatus = NULL) const;
    MAngle flagArgumentMAngle(const char* flag, unsigned int index, MStatus* ReturnStatus = NULL) const;
    MTime flagArgumentMTime(const char* flag, unsigned int index, MStatus* ReturnStatus = NULL) const;
    /// Where the flag's i-th use stands among the call's arguments.
    MStatus getFlagArgumentPosition(const char* flag, unsigned int i, unsigned int& position) const;
    /// The arguments of the flag's i-th use.
    MStatus getFlagArgumentList(const char* flag, unsigned int i, MArgList& args) const;
    MStatus getCommandArgument(unsigned int index, bool& result) const;
    MStatus getCommandArgument(unsigned int index, int& result) const;
    MStatus getCommandArgument(unsigned int index, double& result) const;
    MStatus getCommandArgument(unsigned int index, MString& result) const;
    MStatus getCommandArgument(unsigned int index, MDistance& result) const;
    MStatus getCommandArgument(unsigned int index, MAngle& result) const;
    MStatus getCommandArgument(unsigned int index, MTime& result) const;
    bool commandArgumentBool(unsigned int index, MStatus* ReturnStatus = NULL) const;
    int commandArgumentInt(unsigned int index, MStatus* ReturnStatus = NULL) const;
    double commandArgumentDouble(unsigned int index, MStatus* ReturnStatus = NULL) const;
    MString commandArgumentString(unsigned int index, MStatus* ReturnStatus = NULL) const;
    MDistance commandArgumentMDistance(unsigned int index, MStatus* ReturnStatus = NULL) const;
    MAngle commandArgumentMAngle(unsigned int index, MStatus* ReturnStatus = NULL) const;
    MTime commandArgumentMTime(unsigned int index, MStatus* ReturnStatus = NULL) const;
    /// What is neither flag nor argument; the selection's names where the syntax lets it stand in.
    MStatus getObjects(MStringArray& result) const;
    static const char* className();

protected:
    MArgParser(const MSyntax& syntax, const MArgList& argList, bool resolve, MStatus* ReturnStatus);
    std::shared_ptr<const host::api::ParsedCall> call_;
};
