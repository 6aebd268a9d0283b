#include <maya/MStatus.h>
#include <maya/MString.h>

MStatus::MStatus(MStatus::MStatusCode status) : code_(status >= kSuccess && status <= kEndOfFile ? status : kFailure) {}

MString MStatus::errorString() const {
    switch (code_) {
    case kSuccess: return "(kSuccess): Success";
    case kFailure: return "(kFailure): Unexpected Internal Failure";
    case kInsufficientMemory: return "(kInsufficientMemory): Insufficient Memory";
    case kInvalidParameter: return "(kInvalidParameter): Object is incompatible with this method";
    case kLicenseFailure: return "(kLicenseFailure): Application not licensed for attempted operation";
    case kUnknownParameter: return "(kUnknownParameter): Unknown Parameter";
    case kNotImplemented: return "(kNotImplemented): Not Implemented";
    case kNotFound: return "(kNotFound): Item not found";
    case kEndOfFile: return "(kEndOfFile): End of File";
    }
    return MString();
}

void MStatus::perror(const char* preString) const {
    if (preString && *preString) std::cerr << preString << ": ";
    std::cerr << errorString() << '\n';
}

void MStatus::perror(const MString& preString) const { perror(preString.asChar()); }

std::ostream& operator<<(std::ostream& out, MStatus& status) { return out << status.errorString(); }
