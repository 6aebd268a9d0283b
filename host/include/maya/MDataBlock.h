#pragma once

#include <maya/MArrayDataHandle.h>
#include <maya/MDGContext.h>
#include <maya/MDataHandle.h>
#include <maya/MObject.h>
#include <maya/MPlug.h>
#include <maya/MStatus.h>

/// The values of one node while it computes. Input values are brought up to date when asked for.
class OPENMAYA_EXPORT MDataBlock {
public:
    MDataHandle inputValue(const MPlug& plug, MStatus* ReturnStatus = NULL);
    MDataHandle inputValue(const MObject& attribute, MStatus* ReturnStatus = NULL);
    MDataHandle outputValue(const MPlug& plug, MStatus* ReturnStatus = NULL);
    MDataHandle outputValue(const MObject& attribute, MStatus* ReturnStatus = NULL);
    MArrayDataHandle inputArrayValue(const MPlug& plug, MStatus* ReturnStatus = NULL);
    MArrayDataHandle inputArrayValue(const MObject& attribute, MStatus* ReturnStatus = NULL);
    MArrayDataHandle outputArrayValue(const MPlug& plug, MStatus* ReturnStatus = NULL);
    MArrayDataHandle outputArrayValue(const MObject& attribute, MStatus* ReturnStatus = NULL);
    MStatus setClean(const MPlug& plug);
    MStatus setClean(const MObject& attribute);
    bool isClean(const MPlug& plug);
    bool isClean(const MObject& attribute, MStatus* ReturnStatus = NULL);
    MDGContext context(MStatus* ReturnStatus = NULL);
    MStatus setContext(const MDGContext& ctx);
    static const char* className();

private:
    friend struct host::api::Access;
    MObject node_;
    MDGContext context_;
};
