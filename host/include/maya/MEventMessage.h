#pragma once

#include <maya/MMessage.h>

/// Callbacks of events that have names, such as "SelectionChanged". Events of the user interface have names, too, and
/// never happen.
class OPENMAYA_EXPORT MEventMessage : public MMessage {
public:
    /// kInvalidParameter for a name that is none of getEventNames().
    static MCallbackId addEventCallback(const MString& event, MMessage::MBasicFunction func, void* clientData = NULL,
                                        MStatus* ReturnStatus = NULL);
    static MStatus getEventNames(MStringArray& names);
    static const char* className();
};
