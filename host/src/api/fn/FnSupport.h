#pragma once

#include "api/graph/Handle.h"
#include "values/StatusOut.h"

#include <maya/MFnBase.h>

/// Defines what every function set has.
#define ORVO_DEFINE_FN(ClassName, fnType)                                                                              \
    ClassName::ClassName() = default;                                                                                  \
    ClassName::ClassName(MObject& object, MStatus* ReturnStatus) {                                                     \
        const MStatus status = attach(object, fnType);                                                                 \
        if (ReturnStatus) *ReturnStatus = status;                                                                      \
    }                                                                                                                  \
    ClassName::ClassName(const MObject& object, MStatus* ReturnStatus) {                                               \
        const MStatus status = attach(object, fnType);                                                                 \
        if (ReturnStatus) *ReturnStatus = status;                                                                      \
    }                                                                                                                  \
    MFn::Type ClassName::type() const { return fnType; }

#define ORVO_CLASS_NAME(ClassName)                                                                                     \
    const char* ClassName::className() { return #ClassName; }

/// The same for function sets that name themselves to derived classes alone.
#define ORVO_FN_NAME(ClassName)                                                                                        \
    const char* ClassName::className() const { return #ClassName; }
