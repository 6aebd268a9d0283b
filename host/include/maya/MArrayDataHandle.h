#pragma once

#include <maya/MDataHandle.h>
#include <maya/MStatus.h>

class MArrayDataBuilder;

/// The elements of an array attribute in a data block, one current at a time, in ascending order of their index.
class OPENMAYA_EXPORT MArrayDataHandle {
public:
    MArrayDataHandle(const MDataHandle& in, MStatus* ReturnStatus = NULL);
    MArrayDataHandle(const MArrayDataHandle& other);
    MDataHandle inputValue(MStatus* ReturnStatus = NULL);
    MDataHandle outputValue(MStatus* ReturnStatus = NULL);
    MArrayDataHandle inputArrayValue(MStatus* ReturnStatus = NULL);
    MArrayDataHandle outputArrayValue(MStatus* ReturnStatus = NULL);
    MStatus next();
    unsigned int elementCount(MStatus* ReturnStatus = NULL);
    unsigned int elementIndex(MStatus* ReturnStatus = NULL);
    MStatus jumpToElement(unsigned int index);
    MStatus jumpToArrayElement(unsigned int position);
    MStatus setClean();
    MStatus setAllClean();
    /// Starts with the array's elements.
    MArrayDataBuilder builder(MStatus* ReturnStatus = NULL);
    /// Makes the array's elements those that were built.
    MStatus set(MArrayDataBuilder& builder);
    MArrayDataHandle& operator=(const MArrayDataHandle& other);
    static const char* className();

private:
    friend struct host::api::Access;
    MDataHandle array_;
    unsigned int position_ = 0;
};

// Behind the class: it needs this one itself.
#include <maya/MArrayDataBuilder.h>
