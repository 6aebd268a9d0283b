#pragma once

#include <maya/MObject.h>

/// An MObject that can be asked whether what it stands for is still there.
class OPENMAYA_EXPORT MObjectHandle {
public:
    MObjectHandle();
    MObjectHandle(const MObject& object);
    MObjectHandle(const MObjectHandle& handle);
    MObject object() const;
    const MObject& objectRef() const;
    unsigned int hashCode() const;
    /// Whether the node is in the scene.
    bool isValid() const;
    /// Whether the node exists, be it only in the undo queue.
    bool isAlive() const;
    bool operator==(const MObject& obj) const;
    bool operator==(const MObjectHandle& handle) const;
    bool operator!=(const MObject& obj) const;
    bool operator!=(const MObjectHandle& handle) const;
    MObjectHandle& operator=(const MObject& other);
    MObjectHandle& operator=(const MObjectHandle& other);

private:
    MObject object_;
};
