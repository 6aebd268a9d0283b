#pragma once

#include <maya/MFnBase.h>
#include <maya/MFnData.h>
#include <maya/MString.h>
#include <maya/MStringArray.h>
#include <maya/MTypeId.h>

namespace host::scene {
class Attribute;
}

/// Function set for attributes: their names and flags.
class OPENMAYA_EXPORT MFnAttribute : public MFnBase {
public:
    enum DisconnectBehavior { kDelete, kReset, kNothing };
    ORVO_DECLARE_FN(MFnAttribute)
    bool isReadable(MStatus* ReturnStatus = NULL) const;
    bool isWritable(MStatus* ReturnStatus = NULL) const;
    bool isConnectable(MStatus* ReturnStatus = NULL) const;
    bool isStorable(MStatus* ReturnStatus = NULL) const;
    bool isCached(MStatus* ReturnStatus = NULL) const;
    bool isArray(MStatus* ReturnStatus = NULL) const;
    bool indexMatters(MStatus* ReturnStatus = NULL) const;
    bool isKeyable(MStatus* ReturnStatus = NULL) const;
    bool isChannelBoxFlagSet(MStatus* ReturnStatus = NULL) const;
    bool isHidden(MStatus* ReturnStatus = NULL) const;
    bool isUsedAsColor(MStatus* ReturnStatus = NULL) const;
    bool isIndeterminant(MStatus* ReturnStatus = NULL) const;
    bool isRenderSource(MStatus* ReturnStatus = NULL) const;
    bool isDynamic(MStatus* ReturnStatus = NULL) const;
    bool isWorldSpace(MStatus* ReturnStatus = NULL) const;
    bool isAffectsWorldSpace(MStatus* ReturnStatus = NULL) const;
    bool isUsedAsFilename(MStatus* ReturnStatus = NULL) const;
    bool affectsAppearance(MStatus* ReturnStatus = NULL) const;
    MFnAttribute::DisconnectBehavior disconnectBehavior(MStatus* ReturnStatus = NULL) const;
    bool usesArrayDataBuilder(MStatus* ReturnStatus = NULL) const;
    bool internal(MStatus* ReturnStatus = NULL) const;
    MStatus setReadable(bool state);
    MStatus setWritable(bool state);
    MStatus setConnectable(bool state);
    MStatus setStorable(bool state);
    MStatus setCached(bool state);
    MStatus setArray(bool state);
    MStatus setIndexMatters(bool state);
    MStatus setKeyable(bool state);
    MStatus setChannelBox(bool state);
    MStatus setHidden(bool state);
    MStatus setUsedAsColor(bool state);
    MStatus setIndeterminant(bool state);
    MStatus setRenderSource(bool state);
    MStatus setWorldSpace(bool state);
    MStatus setAffectsWorldSpace(bool state);
    MStatus setUsedAsFilename(bool state);
    MStatus setAffectsAppearance(bool state);
    MStatus setDisconnectBehavior(MFnAttribute::DisconnectBehavior behavior);
    MStatus setUsesArrayDataBuilder(bool state);
    MStatus setInternal(bool state);
    MStatus setNiceNameOverride(const MString& localizedName);
    bool accepts(MFnData::Type type, MStatus* ReturnStatus = NULL) const;
    MObject parent(MStatus* ReturnStatus = NULL) const;
    MString name(MStatus* ReturnStatus = NULL) const;
    MString shortName(MStatus* ReturnStatus = NULL) const;

protected:
    virtual const char* className() const;

private:
    bool flag(bool host::scene::Attribute::*member, MStatus* status) const;
    MStatus setFlag(bool host::scene::Attribute::*member, bool state);
};
