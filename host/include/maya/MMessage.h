#pragma once

#include <maya/MCallbackIdArray.h>
#include <maya/MDGModifier.h>
#include <maya/MDagPath.h>
#include <maya/MFileObject.h>
#include <maya/MIntArray.h>
#include <maya/MObject.h>
#include <maya/MObjectArray.h>
#include <maya/MPlug.h>
#include <maya/MPlugArray.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MStringArray.h>
#include <maya/MTime.h>
#include <maya/MUintArray.h>
#include <maya/MUuid.h>

/// Base of the classes that register functions to be called when something happens.
///
/// A function may remove callbacks, itself too, and add some: those are called from the next time on. One that throws
/// is told of in an error and the others go on. Callbacks end with the plug-in that their function belongs to. A
/// registration that is not possible gives the id 0 and a failing status. What happens while a scene is read, undone
/// and redone is told of as well.
class OPENMAYA_EXPORT MMessage {
public:
    enum Action { kDefaultAction, kDoNotDoAction, kDoAction };
    typedef void (*MBasicFunction)(void* clientData);
    typedef void (*MElapsedTimeFunction)(float elapsedTime, float lastTime, void* clientData);
    typedef void (*MCheckFunction)(bool* retCode, void* clientData);
    typedef void (*MCheckFileFunction)(bool* retCode, MFileObject& file, void* clientData);
    typedef void (*MCheckPlugFunction)(bool* retCode, MPlug& plug, void* clientData);
    typedef void (*MComponentFunction)(MUintArray componentIds[], unsigned int count, void* clientData);
    typedef void (*MNodeFunction)(MObject& node, void* clientData);
    typedef void (*MStringFunction)(const MString& str, void* clientData);
    typedef void (*MTwoStringFunction)(const MString& str1, const MString& str2, void* clientData);
    typedef void (*MThreeStringFunction)(const MString& str1, const MString& str2, const MString& str3,
                                         void* clientData);
    typedef void (*MStringIntBoolIntFunction)(const MString& str, unsigned int index, bool flag, unsigned int type,
                                              void* clientData);
    typedef void (*MStringIndexFunction)(const MString& str, unsigned int index, void* clientData);
    typedef void (*MNodeStringBoolFunction)(MObject& node, const MString& str, bool flag, void* clientData);
    typedef void (*MStateFunction)(bool state, void* clientData);
    typedef void (*MTimeFunction)(MTime& time, void* clientData);
    typedef void (*MPlugFunction)(MPlug& srcPlug, MPlug& destPlug, bool made, void* clientData);
    typedef void (*MNodePlugFunction)(MObject& node, MPlug& plug, void* clientData);
    typedef void (*MNodeStringFunction)(MObject& node, const MString& str, void* clientData);
    typedef void (*MParentChildFunction)(MDagPath& child, MDagPath& parent, void* clientData);
    typedef void (*MModifierFunction)(MDGModifier& modifier, void* clientData);
    typedef void (*MStringArrayFunction)(const MStringArray& strs, void* clientData);
    typedef void (*MNodeModifierFunction)(MObject& node, MDGModifier& modifier, void* clientData);
    typedef void (*MObjArray)(MObjectArray& objects, void* clientData);
    typedef void (*MNodeObjArray)(MObject& node, MObjectArray& objects, void* clientData);
    typedef void (*MStringNode)(const MString& str, MObject& node, void* clientData);
    typedef void (*MCameraLayerFunction)(MObject& cameraSetNode, unsigned int multiIndex, bool added, void* clientData);
    typedef void (*MCameraLayerCameraFunction)(MObject& cameraSetNode, unsigned int multiIndex, MObject& oldCamera,
                                               MObject& newCamera, void* clientData);
    typedef void (*MConnFailFunction)(MPlug& srcPlug, MPlug& destPlug, const MString& srcPlugName,
                                      const MString& dstPlugName, void* clientData);
    typedef void (*MPlugsDGModFunction)(MPlugArray& plugs, MDGModifier& modifier, void* clientData);
    typedef void (*MNodeUuidFunction)(MObject& node, const MUuid& uuid, void* clientData);
    typedef Action (*MCheckNodeUuidFunction)(bool doAction, MObject& node, MUuid& uuid, void* clientData);
    typedef void (*MObjectFileFunction)(const MObject& object, const MFileObject& file, void* clientData);
    typedef void (*MCheckObjectFileFunction)(bool* retCode, const MObject& referenceNode, MFileObject& file,
                                             void* clientData);

    static MStatus removeCallback(MCallbackId id);
    static MStatus removeCallbacks(MCallbackIdArray& ids);
    /// The callback that is being called now.
    static MCallbackId currentCallbackId(MStatus* ReturnStatus = NULL);
    static MStatus nodeCallbacks(MObject& node, MCallbackIdArray& ids);
    static void setRegisteringCallableScript();
    static bool registeringCallableScript();
    static MStatus removeCallbacks(MIntArray& ids);
    static MStatus nodeCallbacks(MObject& node, MIntArray& ids);
    static const char* className();
};
