#pragma once

#include <maya/MTypes.h>

#include <iostream>

class MString;

/// Result of an API call: success, or one of the kinds of failure.
class OPENMAYA_EXPORT MStatus {
public:
    enum MStatusCode {
        kSuccess = 0,
        kFailure,
        kInsufficientMemory,
        kInvalidParameter,
        kLicenseFailure,
        kUnknownParameter,
        kNotImplemented,
        kNotFound,
        kEndOfFile
    };

    inline MStatus() : code_(kSuccess) {}
    MStatus(MStatus::MStatusCode status);
    inline MStatus(const MStatus& status) : code_(status.code_) {}
    inline MStatus& operator=(const MStatus& rhs);

    inline bool operator==(const MStatus& rhs) const { return code_ == rhs.code_; }
    inline bool operator==(const MStatusCode rhs) const { return code_ == rhs; }
    inline bool operator!=(const MStatus& rhs) const { return code_ != rhs.code_; }
    inline bool operator!=(const MStatusCode rhs) const { return code_ != rhs; }

    /// True when the call failed.
    inline bool error() const { return code_ != kSuccess; }
    inline void clear() { code_ = kSuccess; }
    inline MStatus::MStatusCode statusCode() const { return code_; }

    /// The code's name and a sentence about it, for example "(kNotFound): Item not found".
    MString errorString() const;

    /// Writes "TEXT: " and the error string as one line to standard error; with an empty text the error string alone.
    void perror(const char* preString) const;
    void perror(const MString& preString) const;

    /// `status` says whether the call succeeded; `statusCode`, one of MStatusCode, says how it failed.
    inline void set(bool status, unsigned char statusCode, unsigned char internalStatusCode);
    inline void setSuccess() { code_ = kSuccess; }

    /// True when the call succeeded.
    inline operator bool() const { return code_ == kSuccess; }

private:
    MStatusCode code_;
};

using MS = MStatus;

inline MStatus& MStatus::operator=(const MStatus& rhs) {
    code_ = rhs.code_;
    return *this;
}

inline void MStatus::set(bool status, unsigned char statusCode, unsigned char) {
    if (status)
        code_ = kSuccess;
    else
        code_ = statusCode > kSuccess && statusCode <= kEndOfFile ? static_cast<MStatusCode>(statusCode) : kFailure;
}

inline bool operator==(const MStatus::MStatusCode code, const MStatus& status) { return status.statusCode() == code; }
inline bool operator!=(const MStatus::MStatusCode code, const MStatus& status) { return status.statusCode() != code; }

OPENMAYA_EXPORT std::ostream& operator<<(std::ostream& out, MStatus& status);

/// Reports a failed status with its place in the source on standard error, and goes on.
#define CHECK_MSTATUS(_status)                                                                                         \
    do {                                                                                                               \
        MStatus _check_status_ = (_status);                                                                            \
        if (_check_status_.error()) {                                                                                  \
            std::cerr << "\nAPI error detected in " << __FILE__ << " at line " << __LINE__ << std::endl;               \
            _check_status_.perror("");                                                                                 \
        }                                                                                                              \
    } while (false)

/// As CHECK_MSTATUS; after the report it returns `_retVal` from the calling function.
#define CHECK_MSTATUS_AND_RETURN(_status, _retVal)                                                                     \
    do {                                                                                                               \
        MStatus _return_status_ = (_status);                                                                           \
        if (_return_status_.error()) {                                                                                 \
            CHECK_MSTATUS(_return_status_);                                                                            \
            return (_retVal);                                                                                          \
        }                                                                                                              \
    } while (false)

/// As CHECK_MSTATUS; after the report it returns the status from the calling function.
#define CHECK_MSTATUS_AND_RETURN_IT(_status) CHECK_MSTATUS_AND_RETURN((_status), _return_status_)

// Behind the class: they need it themselves.
#include <maya/MString.h>
