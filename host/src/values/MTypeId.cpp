#include <maya/MTypeId.h>

#include "values/StatusOut.h"

MTypeId::MTypeId() : id_(0) {}
MTypeId::MTypeId(unsigned int id) : id_(id) {}
MTypeId::MTypeId(unsigned int prefix, unsigned int id) : id_((prefix << 8) | (id & 0xFFu)) {}
MTypeId::MTypeId(const MTypeId& src) = default;
MTypeId& MTypeId::operator=(const MTypeId& rhs) = default;

bool MTypeId::operator==(const MTypeId& rhs) const { return id_ == rhs.id_; }
bool MTypeId::operator!=(const MTypeId& rhs) const { return id_ != rhs.id_; }

unsigned int MTypeId::id(MStatus* ReturnStatus) const {
    host::setStatus(ReturnStatus, MStatus::kSuccess);
    return id_;
}

const char* MTypeId::className() { return "MTypeId"; }
