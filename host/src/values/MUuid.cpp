#include <maya/MUuid.h>

#include "base/Letters.h"
#include "values/StatusOut.h"

#include <algorithm>
#include <random>
#include <string>

namespace {

constexpr std::size_t textLength = 36;

bool isDash(std::size_t place) { return place == 8 || place == 13 || place == 18 || place == 23; }

int digit(char c) {
    if (host::isDigit(c)) return c - '0';
    c = host::upperCase(c);
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

} // namespace

MUuid::MUuid() = default;
MUuid::MUuid(const MUuid& other) = default;
MUuid::~MUuid() = default;
MUuid& MUuid::operator=(const MUuid& rhs) = default;

MUuid::MUuid(const unsigned int* uuid) {
    for (std::size_t i = 0; uuid && i < bytes_.size(); ++i)
        bytes_[i] = static_cast<unsigned char>(uuid[i / 4] >> (24 - 8 * (i % 4)));
}

MUuid::MUuid(const unsigned char* uuid) {
    if (uuid) std::copy(uuid, uuid + bytes_.size(), bytes_.begin());
}

MUuid::MUuid(const MString& value, MStatus* ReturnStatus) {
    const std::string text(value.asChar(), value.length());
    bool good = text.size() == textLength;
    std::size_t nibble = 0;
    for (std::size_t i = 0; good && i < text.size(); ++i) {
        if (isDash(i)) {
            good = text[i] == '-';
            continue;
        }
        const int d = digit(text[i]);
        good = d >= 0;
        if (good) bytes_[nibble / 2] = static_cast<unsigned char>(bytes_[nibble / 2] << 4 | d);
        ++nibble;
    }
    if (!good) bytes_.fill(0);
    host::setStatus(ReturnStatus, good ? MStatus::kSuccess : MStatus::kInvalidParameter);
}

bool MUuid::operator==(const MUuid& rhs) const { return bytes_ == rhs.bytes_; }
bool MUuid::operator!=(const MUuid& rhs) const { return bytes_ != rhs.bytes_; }

MStatus MUuid::get(unsigned char* uuid) const {
    if (!uuid) return MStatus::kInvalidParameter;
    std::copy(bytes_.begin(), bytes_.end(), uuid);
    return MStatus::kSuccess;
}

MString MUuid::asString() const {
    std::string text;
    for (const unsigned char byte : bytes_) {
        if (isDash(text.size())) text += '-';
        for (const int d : {byte >> 4, byte & 15}) text += "0123456789ABCDEF"[d];
    }
    return MString(text.c_str());
}

MUuid::operator MString() const { return asString(); }
void MUuid::copy(const MUuid& rhs) { *this = rhs; }

bool MUuid::valid() const {
    return std::any_of(bytes_.begin(), bytes_.end(), [](unsigned char b) { return b != 0; });
}

MStatus MUuid::generate() {
    std::random_device source;
    for (auto& byte : bytes_) byte = static_cast<unsigned char>(source());
    bytes_[6] = static_cast<unsigned char>((bytes_[6] & 0x0f) | 0x40);
    bytes_[8] = static_cast<unsigned char>((bytes_[8] & 0x3f) | 0x80);
    return MStatus::kSuccess;
}

const char* MUuid::className() { return "MUuid"; }
