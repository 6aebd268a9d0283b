#include "CloudVertexData.h"

#include "Common/Messages.h"

#include <algorithm>
#include <cmath>

namespace orvo {
namespace {

constexpr std::size_t alignment = 128;
constexpr int corners = 4; ///< vertices a sprite

/// The low byte of a value, truncated.
unsigned char byteOf(double value) { return static_cast<unsigned char>(static_cast<std::int64_t>(value) & 0xFF); }

/// A coordinate as a part of the radius. One that is no number, or lies beyond the radius, keeps to the range.
std::uint16_t coordinate(double c, double radius) {
    const double scaled = c / radius * 32767.0;
    if (!(scaled == scaled)) return 0;
    return static_cast<std::uint16_t>(static_cast<std::int16_t>(std::clamp(scaled, -32768.0, 32767.0)));
}

/// Depths are sums of positive terms; one that is no number counts as no shadow.
unsigned char transmittance(double falloff, double depth) {
    const double scaled = std::exp(-falloff * depth) * 256.0;
    return byteOf(scaled >= 0.0 && scaled <= 256.0 ? scaled : 256.0);
}

} // namespace

std::size_t paddedCloudVertexSize(std::size_t size) { return (size + alignment - 1) / alignment * alignment; }

void padCloudVertexData(std::vector<unsigned char>& bytes) { bytes.resize(paddedCloudVertexSize(bytes.size()), 0); }

bool recordsHoldShadow(const ParticleCloudGeom& geom) { return !geom.shadowCube0.empty() && !geom.shadowCube1.empty(); }

std::size_t cloudVertexDataSize(const ParticleCloudGeom& geom, double radius) {
    if (geom.numSprites <= 0 || geom.positions.empty() || !std::isfinite(radius)) return 0;
    return static_cast<std::size_t>(geom.numSprites) * (recordsHoldShadow(geom) ? 16 : 8);
}

bool appendCloudVertexData(const ParticleCloudGeom& geom, const Matrix44& toBounds, double radius, double falloff,
                           std::vector<unsigned char>& bytes) {
    const std::size_t size = cloudVertexDataSize(geom, radius), start = bytes.size();
    if (size == 0) return false;
    const bool withShadow = recordsHoldShadow(geom);
    bytes.resize(start + size);
    unsigned char* out = bytes.data() + start;
    for (std::size_t sprite = 0; sprite < static_cast<std::size_t>(geom.numSprites); ++sprite) {
        const std::size_t vertex = sprite * corners;
        const float* p = &geom.positions[vertex * 3];
        const Vector3 centre = MatrixTransformPoint(toBounds, {p[0], p[1], p[2]});
        for (const double c : {centre.x, centre.y, centre.z}) {
            const std::uint16_t value = coordinate(c, radius);
            *out++ = static_cast<unsigned char>(value >> 8);
            *out++ = static_cast<unsigned char>(value & 0xFF);
        }
        *out++ = byteOf(static_cast<double>(geom.randoms[vertex]) * 256.0);
        *out++ = byteOf(std::min(static_cast<double>(geom.opacities[vertex]) * 256.0, 255.0) + 0.5);
        if (!withShadow) continue;
        for (const std::vector<float>* cube : {&geom.shadowCube0, &geom.shadowCube1})
            for (std::size_t i = 0; i < 4; ++i) *out++ = transmittance(falloff, (*cube)[vertex * 4 + i]);
    }
    return true;
}

bool appendCloudVertexData(const GeneratedCloud& cloud, const CloudShadingParams& shading,
                           std::vector<unsigned char>& bytes) {
    const Vector3 centre = cloud.setCentre + cloud.geom.boundCentre;
    return appendCloudVertexData(cloud.geom, translationMatrix(centre * -1.0), cloud.geom.boundRadius,
                                 shading.selfShadowFalloff / 100.0, bytes);
}

bool saveCloudToXml(OutputFile& file, const char* indent, std::vector<unsigned char>& cloudVertices,
                    const GeneratedCloud& cloud, const CloudShadingParams& shading) {
    if (cloud.geom.numSprites <= 0) return true;
    padCloudVertexData(cloudVertices);
    const std::size_t address = cloudVertices.size();
    if (!appendCloudVertexData(cloud, shading, cloudVertices)) {
        reportPlacedError("ParticleCloud::SaveToXML:  could not save vertex data\n");
        return false;
    }
    const auto real = [&](const char* format, double value) { file.print(format, indent, value); };
    const auto integer = [&](const char* format, long long value) { file.print(format, indent, value); };
    const auto metres = [&](const char* format, const Vector3& v) {
        file.print(format, indent, v.x / 100.0, v.y / 100.0, v.z / 100.0);
    };
    const CloudSettings& s = cloud.settings;
    file.print("%s<ParticleCloud\n", indent);
    integer("%s\tvertexDataAddress = \"%d\"\n", static_cast<long long>(address));
    real("%s\tspriteSize = \"%f\"\n", s.spriteSize);
    integer("%s\tnumSprites= \"%d\"\n", cloud.geom.numSprites);
    real("%s\tgeomBoundSphereRadius = \"%f\"\n", cloud.geom.boundRadius / 100.0);
    metres("%s\tgeomBoundSpherePos = \"%f %f %f\"\n", cloud.geom.boundCentre);
    real("%s\tcullingSphereRadius = \"%f\"\n", cloud.setRadius / 100.0);
    metres("%s\tcullingSpherePos = \"%f %f %f\"\n", cloud.setCentre);
    real("%s\tgroundShadowOffset = \"%f\"\n", s.groundShadowOffset);
    integer("%s\tenableDomePositioning = \"%d\"\n", cloud.enableDomePositioning);
    real("%s\tdomeYOffset = \"%f\"\n", s.domeYOffset);
    integer("%s\tenableGroundFade  = \"%d\"\n", s.enableGroundFade);
    if (s.enableGroundFade) {
        real("%s\tgroundFadeStart  = \"%f\"\n", s.groundFadeStart);
        real("%s\tgroundFadeEnd  = \"%f\"\n", s.groundFadeEnd);
    }
    real("%s\tshadingOpacity  = \"%f\"\n", shading.shadingOpacity);
    real("%s\tgroundShadowAmount  = \"%f\"\n", shading.groundShadowAmount);
    real("%s\tsunShadowAmount  = \"%f\"\n", shading.sunShadowAmount);
    real("%s\tspriteShadowAmount  = \"%f\"\n", shading.spriteShadowAmount);
    const bool withShadow = recordsHoldShadow(cloud.geom);
    integer("%s\tcloudSelfShadowEnable  = \"%d\"\n", withShadow);
    if (withShadow) real("%s\tcloudSelfShadowAmount  = \"%f\"\n", shading.selfShadowAmount);
    file.print("%s/>\n", indent);
    return true;
}

} // namespace orvo
