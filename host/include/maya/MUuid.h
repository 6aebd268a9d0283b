#pragma once

#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MTypes.h>

#include <array>

/// A universally unique identifier; all zeros until it is given a value.
class OPENMAYA_EXPORT MUuid {
public:
    MUuid();
    MUuid(const MUuid& other);
    /// From four words, or sixteen bytes, the first ones first.
    MUuid(const unsigned int* uuid);
    MUuid(const unsigned char* uuid);
    /// From a text such as "B2A0D5F4-0C0F-4B6C-8E5C-6F2D0B6A9C31", in any case; kInvalidParameter for others.
    MUuid(const MString& value, MStatus* ReturnStatus = NULL);
    ~MUuid();
    MUuid& operator=(const MUuid& rhs);
    bool operator==(const MUuid& rhs) const;
    bool operator!=(const MUuid& rhs) const;
    /// Writes sixteen bytes.
    MStatus get(unsigned char* uuid) const;
    MString asString() const;
    operator MString() const;
    void copy(const MUuid& rhs);
    /// False while it is all zeros.
    bool valid() const;
    /// Gives it a new random value (version 4).
    MStatus generate();
    static const char* className();

private:
    std::array<unsigned char, 16> bytes_{};
};
