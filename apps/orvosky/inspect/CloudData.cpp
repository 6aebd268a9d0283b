#include "CloudData.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace orvosky::inspect {
namespace {

using Bytes = std::span<const unsigned char>;

constexpr std::uint64_t alignment = 128;     ///< bytes; a cloud's records begin at a multiple
constexpr std::uint64_t plainRecord = 8;     ///< bytes: x, y, z, random value, opacity
constexpr std::uint64_t shadowedRecord = 16; ///< and eight transmittances
constexpr double unit = 32767;               ///< of a sprite's position: the radius of the bounding sphere

/// A cloud's records as its element tells of them.
struct Records {
    Element* cloud;
    std::uint64_t address, sprites, size; ///< size of one, in bytes
    std::uint64_t end() const { return address + sprites * size; }
};

/// How the space from a cloud's records to what follows is to be.
struct Room {
    std::uint64_t end; ///< where the next cloud, or the end mark, lies
    bool last;         ///< the end mark follows, without padding
};

bool allZero(Bytes bytes) {
    return std::all_of(bytes.begin(), bytes.end(), [](unsigned char b) { return b == 0; });
}

bool fits(const Records& r, const Room& room, PlainFile& data) {
    if (r.end() > room.end) return false;
    return room.last ? r.end() == room.end : room.end - r.end() < alignment && allZero(data.bytes(r.end(), room.end));
}

std::string belonging(std::uint64_t bytes) { return counted(bytes, "byte") + (bytes == 1 ? " belongs" : " belong"); }

/// Says what is wrong with how a cloud's records fill the space up to what follows. Readers know the size of a record
/// from the flag alone; that the other size would do is worth saying.
void checkRoom(const Records& r, const Room& room, const Element* next, PlainFile& data, Problems& problems) {
    if (fits(r, room, data)) return;
    Records other = r;
    other.size = r.size == plainRecord ? shadowedRecord : plainRecord;
    const std::string hint =
        fits(other, room, data)
            ? fmt::format("; records of {} bytes, without regard to the flag, would fit", other.size)
            : std::string();
    const std::string follows = next ? next->described() : "the end mark";
    std::string what =
        fmt::format("its {} of {} bytes (cloudSelfShadowEnable is {}) {} at byte {}", counted(r.sprites, "record"),
                    r.size, r.size == shadowedRecord ? 1 : 0, r.sprites == 1 ? "ends" : "end", r.end());
    if (r.end() > room.end)
        what += fmt::format(", beyond the start of {} at {}", follows, room.end);
    else if (room.last)
        what += fmt::format(", but the end mark lies at {}: {} to no cloud", room.end, belonging(room.end - r.end()));
    else if (room.end - r.end() >= alignment)
        what += fmt::format(", but {} begins at {}: padding takes less than {} bytes", follows, room.end, alignment);
    else
        what += fmt::format("; the padding from there to {} is not zero", room.end);
    problems.add(*r.cloud, what + hint);
}

std::int16_t bigEndian16(Bytes bytes, std::uint64_t at) {
    return static_cast<std::int16_t>(bytes[at] << 8 | bytes[at + 1]);
}

/// The mean of bytes, as they come.
class ByteRange {
public:
    void add(unsigned char b) {
        low_ = std::min(low_, b), high_ = std::max(high_, b);
        sum_ += b;
        ++count_;
    }
    Triple lowMeanHigh(double scale) const {
        return {low_ / scale, static_cast<double>(sum_) / static_cast<double>(count_) / scale, high_ / scale};
    }

private:
    unsigned char low_ = 255, high_ = 0;
    std::uint64_t sum_ = 0, count_ = 0;
};

/// Notes spheres that are too small, or a bounding sphere that is too large, for the sprites. Lengths are metres.
void noteSpheres(const Element& cloud, const Triple& inBounds, double radius, double farthest, double fromSet,
                 Inspection& found) {
    const double step = radius / unit;
    const double tolerance = 0.01 + 3 * step + 1e-6 * std::hypot(inBounds[0], inBounds[1], inBounds[2]);
    if (const auto size = cloud.get<double>("spriteSize")) {
        const double needed = farthest + *size * std::sqrt(0.5);
        if (std::abs(needed - radius) > tolerance)
            found.notes.push_back(fmt::format("{}: its sprites reach {:.6g} m from the centre of the bounding sphere, "
                                              "whose radius is {:.6g} m.",
                                              cloud.described(), needed, radius));
    }
    if (const auto culling = cloud.get<double>("cullingSphereRadius"); culling && fromSet > *culling + tolerance)
        found.notes.push_back(fmt::format("{}: sprites lie up to {:.6g} m from the centre of the culling sphere, whose "
                                          "radius is {:.6g} m.",
                                          cloud.described(), fromSet, *culling));
}

/// Reads the sprites and adds what they are like to the element.
void measure(const Records& r, PlainFile& data, Inspection& found) {
    Element& cloud = *r.cloud;
    const Bytes bytes = data.bytes(r.address, r.end());
    ByteRange opacity;
    std::array<int, 3> low{32767, 32767, 32767}, high{-32768, -32768, -32768};
    std::uint64_t outside = 0, firstOutside = 0, zeroShadows = 0;
    double farthest = 0, fromSet = 0; // farthest in units, fromSet in metres

    const auto radius = cloud.get<double>("geomBoundSphereRadius");
    const auto bounds = cloud.get<Triple>("geomBoundSpherePos"), set = cloud.get<Triple>("cullingSpherePos");
    for (std::uint64_t i = 0; i < r.sprites; ++i) {
        const std::uint64_t at = i * r.size;
        Triple c;
        bool valid = true;
        for (std::size_t k = 0; k < 3; ++k) {
            const int units = bigEndian16(bytes, at + 2 * k);
            low[k] = std::min(low[k], units), high[k] = std::max(high[k], units);
            valid = valid && units >= -32767;
            c[k] = units;
        }
        const double norm = std::hypot(c[0], c[1], c[2]);
        farthest = std::max(farthest, norm);
        if ((!valid || norm > unit + 2) && outside++ == 0) firstOutside = i;
        if (radius && bounds) {
            for (std::size_t k = 0; k < 3; ++k) c[k] = (*bounds)[k] + c[k] / unit * *radius;
            fromSet = std::max(fromSet, std::hypot(c[0], c[1], c[2]));
        }
        opacity.add(bytes[at + 7]);
        if (r.size == shadowedRecord)
            zeroShadows +=
                static_cast<std::uint64_t>(std::count(bytes.begin() + static_cast<std::ptrdiff_t>(at + 8),
                                                      bytes.begin() + static_cast<std::ptrdiff_t>(at + 16), 0));
    }
    if (outside > 0)
        found.problems.add(cloud,
                           fmt::format("{} of its {} {} outside of the bounding sphere; the first is sprite {} at "
                                       "byte {}",
                                       outside, counted(r.sprites, "sprite"), outside == 1 ? "lies" : "lie",
                                       firstOutside, r.address + firstOutside * r.size));

    const auto whole = [](std::uint64_t v) { return static_cast<std::int64_t>(v); };
    cloud.derived.push_back({"recordSize", whole(r.size), "bytes"});
    cloud.derived.push_back({"recordsEnd", whole(r.end()), "bytes"});
    if (radius && bounds && set) {
        const auto corner = [&](const std::array<int, 3>& units) {
            Triple p;
            for (std::size_t k = 0; k < 3; ++k) p[k] = (*set)[k] + (*bounds)[k] + units[k] / unit * *radius;
            return p;
        };
        cloud.derived.push_back({"spritesFrom", corner(low), "m"});
        cloud.derived.push_back({"spritesTo", corner(high), "m"});
        cloud.derived.push_back({"farthestSprite", farthest / unit * *radius, "m"});
        if (outside == 0) noteSpheres(cloud, *bounds, *radius, farthest / unit * *radius, fromSet, found);
    }
    cloud.derived.push_back({"opacityLowMeanHigh", opacity.lowMeanHigh(255)});
    if (r.size == shadowedRecord) cloud.derived.push_back({"zeroShadowBytes", whole(zeroShadows)});
}

} // namespace

void checkCloudData(std::span<Element*> clouds, PlainFile& data, Inspection& found) {
    const std::uint64_t recordsEnd = data.size() == 0 ? 0 : data.size() - 1; // the end mark follows
    Problems& problems = found.problems;

    std::vector<std::optional<Records>> all;
    for (Element* cloud : clouds) {
        const auto address = cloud->get<std::int64_t>("vertexDataAddress"),
                   sprites = cloud->get<std::int64_t>("numSprites"),
                   shadowed = cloud->get<std::int64_t>("cloudSelfShadowEnable");
        // What is missing or out of range has been told already, and says nothing about the data.
        const bool known = address && sprites && shadowed && *address >= 0 && *sprites >= 1 && *sprites <= 4000;
        all.emplace_back(known ? std::optional(Records{cloud, static_cast<std::uint64_t>(*address),
                                                       static_cast<std::uint64_t>(*sprites),
                                                       *shadowed == 1 ? shadowedRecord : plainRecord})
                               : std::nullopt);
    }

    for (std::size_t i = 0; i < all.size(); ++i) {
        if (!all[i]) continue;
        const Records& r = *all[i];
        if (r.address % alignment != 0)
            problems.add(*r.cloud, fmt::format("vertexDataAddress {} is no multiple of {}", r.address, alignment));
        if (i == 0 && r.address != 0)
            problems.add(*r.cloud, fmt::format("its records begin at byte {}; before them, {} to no cloud", r.address,
                                               belonging(r.address)));
        if (i > 0 && all[i - 1] && r.address <= all[i - 1]->address)
            problems.add(*r.cloud, fmt::format("its records begin at byte {}, not behind those of {} at {}", r.address,
                                               all[i - 1]->cloud->described(), all[i - 1]->address));
        if (r.address >= recordsEnd) {
            problems.add(*r.cloud, fmt::format("its records, from byte {} on, lie beyond the {} that the data hold",
                                               r.address, counted(recordsEnd, "byte")));
            continue;
        }
        const bool last = i + 1 == all.size();
        if (last)
            checkRoom(r, {recordsEnd, true}, nullptr, data, problems);
        else if (all[i + 1] && all[i + 1]->address > r.address && all[i + 1]->address <= recordsEnd)
            checkRoom(r, {all[i + 1]->address, false}, all[i + 1]->cloud, data, problems);
        else if (r.end() > recordsEnd)
            problems.add(*r.cloud,
                         fmt::format("its records of {} bytes end at byte {}, beyond the {} that the data hold", r.size,
                                     r.end(), counted(recordsEnd, "byte")));
        if (r.end() <= recordsEnd) measure(r, data, found);
    }
}

} // namespace orvosky::inspect
