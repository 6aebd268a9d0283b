#pragma once

#include <maya/MArgParser.h>
#include <maya/MSelectionList.h>

/// As MArgParser; objects and selection items are also given as what they stand for. Where the syntax wants a
/// selection list, an object that does not exist is a fault of the call.
class OPENMAYA_EXPORT MArgDatabase : public MArgParser {
public:
    MArgDatabase();
    MArgDatabase(const MSyntax& syntax, const MArgList& argList, MStatus* ReturnStatus = NULL);
    virtual ~MArgDatabase();
    using MArgParser::getCommandArgument;
    using MArgParser::getFlagArgument;
    using MArgParser::getObjects;
    MStatus getFlagArgument(const char* flag, unsigned int index, MSelectionList& result) const;
    MStatus getCommandArgument(unsigned int index, MSelectionList& result) const;
    MStatus getObjects(MSelectionList& result) const;
    static const char* className();
};
