#pragma once

#include <maya/MMessage.h>

/// Callbacks of the DAG. A path stands for the node as the child (parents added and removed), or as the parent
/// (children added, removed and reordered). There are no instances here, so that nothing tells of them.
class OPENMAYA_EXPORT MDagMessage : public MMessage {
public:
    enum DagMessage {
        kInvalidMsg = -1,
        kParentAdded,
        kParentRemoved,
        kChildAdded,
        kChildRemoved,
        kChildReordered,
        kInstanceAdded,
        kInstanceRemoved,
        kLast
    };
    /// Which parts of a matrix changed: all may have.
    enum MatrixModifiedFlags { kAll = (1 << 28) - 1 };
    typedef void (*MMessageParentChildFunction)(MDagMessage::DagMessage msgType, MDagPath& child, MDagPath& parent,
                                                void* clientData);
    typedef void (*MWorldMatrixModifiedFunction)(MObject& transformNode, MDagMessage::MatrixModifiedFlags& modified,
                                                 void* clientData);

    static MCallbackId addParentAddedCallback(MMessage::MParentChildFunction func, void* clientData = NULL,
                                              MStatus* ReturnStatus = NULL);
    static MCallbackId addParentAddedCallback(MDagPath& node, MMessage::MParentChildFunction func,
                                              void* clientData = NULL, MStatus* ReturnStatus = NULL);
    static MCallbackId addParentAddedDagPathCallback(MDagPath& node, MMessage::MParentChildFunction func,
                                                     void* clientData = NULL, MStatus* ReturnStatus = NULL);
    static MCallbackId addParentRemovedCallback(MMessage::MParentChildFunction func, void* clientData = NULL,
                                                MStatus* ReturnStatus = NULL);
    static MCallbackId addParentRemovedCallback(MDagPath& node, MMessage::MParentChildFunction func,
                                                void* clientData = NULL, MStatus* ReturnStatus = NULL);
    static MCallbackId addParentRemovedDagPathCallback(MDagPath& node, MMessage::MParentChildFunction func,
                                                       void* clientData = NULL, MStatus* ReturnStatus = NULL);
    static MCallbackId addChildAddedCallback(MMessage::MParentChildFunction func, void* clientData = NULL,
                                             MStatus* ReturnStatus = NULL);
    static MCallbackId addChildAddedCallback(MDagPath& node, MMessage::MParentChildFunction func,
                                             void* clientData = NULL, MStatus* ReturnStatus = NULL);
    static MCallbackId addChildAddedDagPathCallback(MDagPath& node, MMessage::MParentChildFunction func,
                                                    void* clientData = NULL, MStatus* ReturnStatus = NULL);
    static MCallbackId addChildRemovedCallback(MMessage::MParentChildFunction func, void* clientData = NULL,
                                               MStatus* ReturnStatus = NULL);
    static MCallbackId addChildRemovedCallback(MDagPath& node, MMessage::MParentChildFunction func,
                                               void* clientData = NULL, MStatus* ReturnStatus = NULL);
    static MCallbackId addChildRemovedDagPathCallback(MDagPath& node, MMessage::MParentChildFunction func,
                                                      void* clientData = NULL, MStatus* ReturnStatus = NULL);
    static MCallbackId addChildReorderedCallback(MMessage::MParentChildFunction func, void* clientData = NULL,
                                                 MStatus* ReturnStatus = NULL);
    static MCallbackId addChildReorderedCallback(MDagPath& node, MMessage::MParentChildFunction func,
                                                 void* clientData = NULL, MStatus* ReturnStatus = NULL);
    static MCallbackId addChildReorderedDagPathCallback(MDagPath& node, MMessage::MParentChildFunction func,
                                                        void* clientData = NULL, MStatus* ReturnStatus = NULL);
    static MCallbackId addInstanceAddedCallback(MMessage::MParentChildFunction func, void* clientData = NULL,
                                                MStatus* ReturnStatus = NULL);
    static MCallbackId addInstanceAddedCallback(MDagPath& node, MMessage::MParentChildFunction func,
                                                void* clientData = NULL, MStatus* ReturnStatus = NULL);
    static MCallbackId addInstanceAddedDagPathCallback(MDagPath& node, MMessage::MParentChildFunction func,
                                                       void* clientData = NULL, MStatus* ReturnStatus = NULL);
    static MCallbackId addInstanceRemovedCallback(MMessage::MParentChildFunction func, void* clientData = NULL,
                                                  MStatus* ReturnStatus = NULL);
    static MCallbackId addInstanceRemovedCallback(MDagPath& node, MMessage::MParentChildFunction func,
                                                  void* clientData = NULL, MStatus* ReturnStatus = NULL);
    static MCallbackId addInstanceRemovedDagPathCallback(MDagPath& node, MMessage::MParentChildFunction func,
                                                         void* clientData = NULL, MStatus* ReturnStatus = NULL);
    static MCallbackId addDagCallback(DagMessage msgType, MDagMessage::MMessageParentChildFunction func,
                                      void* clientData = NULL, MStatus* ReturnStatus = NULL);
    static MCallbackId addDagCallback(DagMessage msgType, MMessage::MParentChildFunction func, void* clientData = NULL,
                                      MStatus* ReturnStatus = NULL);
    static MCallbackId addDagCallback(MDagPath& node, DagMessage msgType, MMessage::MParentChildFunction func,
                                      void* clientData = NULL, MStatus* ReturnStatus = NULL);
    static MCallbackId addDagCallback(MDagPath& node, DagMessage msgType, MDagMessage::MMessageParentChildFunction func,
                                      void* clientData = NULL, MStatus* ReturnStatus = NULL);
    static MCallbackId addDagDagPathCallback(MDagPath& node, DagMessage msgType,
                                             MDagMessage::MMessageParentChildFunction func, void* clientData = NULL,
                                             MStatus* ReturnStatus = NULL);
    static MCallbackId addAllDagChangesCallback(MDagMessage::MMessageParentChildFunction func, void* clientData = NULL,
                                                MStatus* ReturnStatus = NULL);
    static MCallbackId addAllDagChangesCallback(MDagPath& node, MDagMessage::MMessageParentChildFunction func,
                                                void* clientData = NULL, MStatus* ReturnStatus = NULL);
    static MCallbackId addAllDagChangesDagPathCallback(MDagPath& node, MDagMessage::MMessageParentChildFunction func,
                                                       void* clientData = NULL, MStatus* ReturnStatus = NULL);
    /// When the node's matrix in the world may have changed, by itself or by what is above it.
    static MCallbackId addWorldMatrixModifiedCallback(MDagPath& node, MDagMessage::MWorldMatrixModifiedFunction func,
                                                      void* clientData = NULL, MStatus* ReturnStatus = NULL);
    static const char* className();
};
