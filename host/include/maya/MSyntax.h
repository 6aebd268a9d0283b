#pragma once

#include <maya/MStatus.h>
#include <maya/MTypes.h>

#include <memory>

namespace host::api {
struct Access;
struct SyntaxTable;
} // namespace host::api

/// The flags and arguments that a command takes.
///
/// A short name has at most three characters, a long name at least four; a dash in front may be left out. A name that
/// does not keep to that, or is taken, gives kFailure.
class OPENMAYA_EXPORT MSyntax {
public:
    enum MArgType {
        kInvalidArgType,
        kNoArg,
        kBoolean,
        kLong,
        kDouble,
        kString,
        kUnsigned,
        kDistance,
        kAngle,
        kTime,
        kSelectionItem,
        kLastArgType
    };
    enum MObjectFormat { kInvalidObjectFormat, kNone, kStringObjects, kSelectionList, kLastObjectFormat };

    MSyntax();
    MSyntax(const MSyntax& other);
    virtual ~MSyntax();
    MSyntax& operator=(const MSyntax& rhs);
    MStatus addFlag(const char* shortName, const char* longName, MArgType argType1 = kNoArg, MArgType argType2 = kNoArg,
                    MArgType argType3 = kNoArg, MArgType argType4 = kNoArg, MArgType argType5 = kNoArg,
                    MArgType argType6 = kNoArg);
    /// Lets the flag be given more than once.
    MStatus makeFlagMultiUse(const char* flag);
    /// Lets the flag have its arguments in a query, too, where flags have none otherwise.
    MStatus makeFlagQueryWithFullArgs(const char* flag, bool queryArgsAreOptional);
    /// Adds an argument of the command itself. All of them must be given.
    MStatus addArg(MArgType arg);
    /// Lets the selection stand for objects when none are given.
    void useSelectionAsDefault(bool useSelectionList = false);
    /// What the rest of the call is: nothing, names, or names of things that exist.
    MStatus setObjectType(MObjectFormat objectFormat, unsigned int minimumObjects = 0);
    MStatus setObjectType(MObjectFormat objectFormat, unsigned int minimumObjects, unsigned int maximumObjects);
    void setMinObjects(unsigned int minimumObjectCount);
    void setMaxObjects(unsigned int maximumObjectCount);
    /// Adds the flags -query (-q) and -edit (-e).
    void enableQuery(bool supportsQuery = true);
    void enableEdit(bool supportsEdit = true);
    unsigned int minObjects() const;
    unsigned int maxObjects() const;
    bool canQuery() const;
    bool canEdit() const;
    static const char* className();

private:
    friend struct host::api::Access;
    std::unique_ptr<host::api::SyntaxTable> table_;
};
