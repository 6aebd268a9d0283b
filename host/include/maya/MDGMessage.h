#pragma once

#include <maya/MMessage.h>

#define kDefaultNodeType "dependNode"

/// Callbacks of the dependency graph as a whole. A node type stands for those that are derived from it, too;
/// "dependNode" for all.
class OPENMAYA_EXPORT MDGMessage : public MMessage {
public:
    static MCallbackId addTimeChangeCallback(MMessage::MTimeFunction func, void* clientData = NULL,
                                             MStatus* ReturnStatus = NULL);
    static MCallbackId addDelayedTimeChangeCallback(MMessage::MTimeFunction func, void* clientData = NULL,
                                                    MStatus* ReturnStatus = NULL);
    static MCallbackId addDelayedTimeChangeRunupCallback(MMessage::MTimeFunction func, void* clientData = NULL,
                                                         MStatus* ReturnStatus = NULL);
    static MCallbackId addForceUpdateCallback(MMessage::MTimeFunction func, void* clientData = NULL,
                                              MStatus* ReturnStatus = NULL);
    static MCallbackId addNodeAddedCallback(MMessage::MNodeFunction func, const MString& nodeType = kDefaultNodeType,
                                            void* clientData = NULL, MStatus* ReturnStatus = NULL);
    static MCallbackId addNodeRemovedCallback(MMessage::MNodeFunction func, const MString& nodeType = kDefaultNodeType,
                                              void* clientData = NULL, MStatus* ReturnStatus = NULL);
    static MCallbackId addConnectionCallback(MMessage::MPlugFunction func, void* clientData = NULL,
                                             MStatus* ReturnStatus = NULL);
    /// Before a connection is made or broken by a request; undoing and redoing are not asked.
    static MCallbackId addPreConnectionCallback(MMessage::MPlugFunction func, void* clientData = NULL,
                                                MStatus* ReturnStatus = NULL);
    /// Asked before a node gets another identifier; kDoNotDoAction prevents it.
    static MCallbackId addNodeChangeUuidCheckCallback(MMessage::MCheckNodeUuidFunction func, void* clientData = NULL,
                                                      MStatus* ReturnStatus = NULL);
    static const char* className();
};
