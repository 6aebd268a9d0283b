#pragma once

#include <maya/MFn.h>
#include <maya/MObject.h>
#include <maya/MStatus.h>
#include <maya/MTypes.h>

/// Base of the function sets: operations on a kind of object, attached to one object.
class OPENMAYA_EXPORT MFnBase {
public:
    virtual ~MFnBase();
    virtual MFn::Type type() const;
    bool hasObj(MFn::Type mtype) const;
    bool hasObj(const MObject& object) const;
    MObject object(MStatus* ReturnStatus = NULL) const;
    virtual MStatus setObject(MObject& object);
    virtual MStatus setObject(const MObject& object);
    static const char* className();

protected:
    MFnBase();
    /// Whether the function set works on the object; a derived set's type() is not reachable while its base is built.
    MStatus attach(const MObject& object, MFn::Type type);
    MObject object_;
};

/// Declares what every function set has: constructors without and from an object, and its type.
#define ORVO_DECLARE_FN(ClassName)                                                                                     \
    ClassName();                                                                                                       \
    ClassName(MObject& object, MStatus* ReturnStatus = NULL);                                                          \
    ClassName(const MObject& object, MStatus* ReturnStatus = NULL);                                                    \
    virtual MFn::Type type() const override;
