#pragma once

#include <maya/MStatus.h>

/// Identifier of a node type in scene files.
class OPENMAYA_EXPORT MTypeId {
public:
    MTypeId();
    MTypeId(unsigned int id);
    /// `prefix` is the number of a block of 256 identifiers, `id` (0 to 255) the place in the block.
    MTypeId(unsigned int prefix, unsigned int id);
    MTypeId(const MTypeId& src);
    MTypeId& operator=(const MTypeId& rhs);

    bool operator==(const MTypeId& rhs) const;
    bool operator!=(const MTypeId& rhs) const;

    unsigned int id(MStatus* ReturnStatus = NULL) const;
    static const char* className();

private:
    unsigned int id_;
};
