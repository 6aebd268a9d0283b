#pragma once

#include <maya/MMessage.h>

/// Callbacks of one node. They go on when the node is deleted and comes back by an undo, and end with the node.
class OPENMAYA_EXPORT MNodeMessage : public MMessage {
public:
    /// What happened to an attribute: one of these, with kIncomingDirection where the plug is the connection's
    /// destination, and kOtherPlugSet where the other plug is given.
    enum AttributeMessage {
        kConnectionMade = 0x01,
        kConnectionBroken = 0x02,
        kAttributeEval = 0x04,
        kAttributeSet = 0x08,
        kAttributeLocked = 0x10,
        kAttributeUnlocked = 0x20,
        kAttributeAdded = 0x40,
        kAttributeRemoved = 0x80,
        kAttributeRenamed = 0x100,
        kAttributeKeyable = 0x200,
        kAttributeUnkeyable = 0x400,
        kIncomingDirection = 0x800,
        kAttributeArrayAdded = 0x1000,
        kAttributeArrayRemoved = 0x2000,
        kOtherPlugSet = 0x4000,
        kLast = 0x8000
    };
    enum KeyableChangeMsg { kKeyChangeInvalid = 0, kMakeKeyable, kMakeUnkeyable, kKeyChangeLast };
    typedef void (*MAttr2PlugFunction)(MNodeMessage::AttributeMessage msg, MPlug& plug, MPlug& otherPlug,
                                       void* clientData);
    typedef void (*MAttrPlugFunction)(MNodeMessage::AttributeMessage msg, MPlug& plug, void* clientData);
    typedef void (*MKeyableFunction)(MPlug& plug, void* clientData, MNodeMessage::KeyableChangeMsg msg, bool& decision);

    static MCallbackId addAttributeChangedCallback(MObject& node, MNodeMessage::MAttr2PlugFunction func,
                                                   void* clientData = NULL, MStatus* ReturnStatus = NULL);
    static MCallbackId addAttributeAddedOrRemovedCallback(MObject& node, MNodeMessage::MAttrPlugFunction func,
                                                          void* clientData = NULL, MStatus* ReturnStatus = NULL);
    /// Each time that something of the node is dirtied, once however much it is.
    static MCallbackId addNodeDirtyCallback(MObject& node, MMessage::MNodeFunction func, void* clientData = NULL,
                                            MStatus* ReturnStatus = NULL);
    static MCallbackId addNodeDirtyPlugCallback(MObject& node, MMessage::MNodePlugFunction func,
                                                void* clientData = NULL, MStatus* ReturnStatus = NULL);
    /// With the name before. A null object stands for all nodes.
    static MCallbackId addNameChangedCallback(MObject& node, MMessage::MNodeStringFunction func,
                                              void* clientData = NULL, MStatus* ReturnStatus = NULL);
    /// With the identifier before.
    static MCallbackId addUuidChangedCallback(MObject& node, MMessage::MNodeUuidFunction func, void* clientData = NULL,
                                              MStatus* ReturnStatus = NULL);
    /// Before a deletion. What the modifier gathers is done before the node goes, and undone after it is back.
    static MCallbackId addNodeAboutToDeleteCallback(MObject& node, MMessage::MNodeModifierFunction func,
                                                    void* clientData = NULL, MStatus* ReturnStatus = NULL);
    /// Before the node leaves the scene with its connections still there, when the scene is emptied, too.
    static MCallbackId addNodePreRemovalCallback(MObject& node, MMessage::MNodeFunction func, void* clientData = NULL,
                                                 MStatus* ReturnStatus = NULL);
    /// When the node is gone for good.
    static MCallbackId addNodeDestroyedCallback(MObject& node, MMessage::MBasicFunction func, void* clientData = NULL,
                                                MStatus* ReturnStatus = NULL);
    /// Asked before the plug is made keyable or not; `decision` false prevents it.
    static MCallbackId addKeyableChangeOverride(MPlug& plug, MNodeMessage::MKeyableFunction func,
                                                void* clientData = NULL, MStatus* status = NULL);
    static const char* className();
};
