#include "TriMeshXml.h"

#include <charconv>
#include <cmath>
#include <cstring>
#include <string>

namespace orvo {
namespace {

constexpr std::size_t kBlock = 1 << 18;
/// The longest number: a double's 309 digits, its sign, point and decimals.
constexpr std::size_t kLongestNumber = 320;

/// The whole number nearest to `fraction` millionths of 2^-64, that is fraction x 10^6 / 2^64; ties go to the even
/// one. `inexact`: a part below the last bit was cut off. False when that part may decide the rounding.
bool millionths(std::uint64_t fraction, bool inexact, std::uint32_t& whole) {
    constexpr std::uint64_t half = std::uint64_t(1) << 63, slack = 1 << 20;
    // The product, as 64 bits of whole millionths and 64 bits of rest, from 32-bit halves.
    const std::uint64_t low = (fraction & 0xffffffffu) * 1000000u;
    const std::uint64_t high = (fraction >> 32) * 1000000u + (low >> 32);
    whole = static_cast<std::uint32_t>(high >> 32);
    const std::uint64_t rest = (high << 32) | (low & 0xffffffffu);
    if (inexact && (rest - (half - slack) <= 2 * slack || rest > 0 - slack)) return false;
    if (rest > half || (rest == half && (whole & 1u))) ++whole;
    return true;
}

/// Text that is gathered in large blocks on its way to a file.
class BlockWriter {
public:
    explicit BlockWriter(OutputFile& file) : file_(file), block_(kBlock, '\0'), at_(block_.data()) {}

    void text(std::string_view text) {
        if (text.size() > room()) flush();
        if (text.size() > room()) return file_.write(text);
        std::memcpy(at_, text.data(), text.size());
        at_ += text.size();
    }
    /// As printf's "%d" writes the bits of a 32-bit number.
    void integer(std::uint32_t value) {
        if (room() < kLongestNumber) flush();
        at_ = std::to_chars(at_, at_ + kLongestNumber, static_cast<std::int32_t>(value)).ptr;
    }
    /// As formatText's "%f" writes it.
    void real(double value) {
        if (room() < kLongestNumber) flush();
        if (std::signbit(value) && !std::isnan(value)) *at_++ = '-';
        value = std::fabs(value);
        if (!std::isfinite(value)) return text(std::isnan(value) ? "nan" : "inf");
        if (!common(value)) at_ = std::to_chars(at_, at_ + kLongestNumber, value, std::chars_format::fixed, 6).ptr;
    }
    void flush() {
        file_.write(block_.data(), static_cast<std::size_t>(at_ - block_.data()));
        at_ = block_.data();
    }

private:
    std::size_t room() const { return kBlock - static_cast<std::size_t>(at_ - block_.data()); }

    /// Writes a number that is not negative, in whole-number arithmetic; false, with nothing written, for the few that
    /// this cannot round for certain.
    bool common(double value) {
        if (!(value < 4294967295.0)) return false;
        auto whole = static_cast<std::uint32_t>(value);
        const double fraction = (value - whole) * 0x1p64; // both steps are exact
        const auto bits = static_cast<std::uint64_t>(fraction);
        std::uint32_t decimals;
        if (!millionths(bits, static_cast<double>(bits) != fraction, decimals)) return false;
        if (decimals == 1000000u) {
            decimals = 0;
            ++whole;
        }
        at_ = std::to_chars(at_, at_ + kLongestNumber, whole).ptr;
        *at_ = '.';
        for (char* digit = at_ + 6; digit != at_; --digit, decimals /= 10u)
            *digit = static_cast<char>('0' + decimals % 10u);
        at_ += 7;
        return true;
    }

    OutputFile& file_;
    std::string block_;
    char* at_;
};

} // namespace

bool writeTriMeshXml(const TriMesh& mesh, OutputFile& file, const char* indent) {
    if (mesh.positions.empty() || mesh.triangles.empty() || !mesh.uvSets[0]) return false;
    file.print("%s<TriMesh\n", indent);
    file.print("%s\tnumVerts = \"%d\"\n", indent, mesh.numVerts());
    file.print("%s\tnumTris = \"%d\"\n", indent, mesh.numTris());
    file.print("%s\t>\n", indent);

    BlockWriter out(file);
    const std::string vertex = indent + std::string("\t<Vert pos=\"");
    for (std::size_t i = 0; i < mesh.positions.size(); ++i) {
        const Vector3& p = mesh.positions[i];
        const Uv& uv = (*mesh.uvSets[0])[i];
        out.text(vertex);
        out.real(p.x / 100);
        out.text(" ");
        out.real(p.y / 100);
        out.text(" ");
        out.real(p.z / 100);
        out.text("\" uv=\"");
        out.real(uv.u);
        out.text(" ");
        out.real(uv.v);
        out.text("\" />\n");
    }
    const std::string triangle = indent + std::string("\t<Tri indicies=\"");
    for (const TriMesh::Triangle& t : mesh.triangles) {
        out.text(triangle);
        out.integer(t[0]);
        out.text(" ");
        out.integer(t[1]);
        out.text(" ");
        out.integer(t[2]);
        out.text("\" />\n");
    }
    out.flush();
    file.print("%s</TriMesh>\n", indent);
    return true;
}

} // namespace orvo
