#pragma once

#include "CloudGeneration.h"
#include "CloudLibrary.h"
#include "CloudShadingParams.h"
#include "Common/OutputFile.h"

#include <vector>

/// How a cloud goes into an export: its element in the ".atmos" file and its packed sprites in the ".cdata" file.
namespace orvo {

/// The next multiple of 128, where a cloud's data may begin.
std::size_t paddedCloudVertexSize(std::size_t size);
/// Appends zero bytes up to there.
void padCloudVertexData(std::vector<unsigned char>& bytes);

/// Whether a cloud's records hold shadow data.
bool recordsHoldShadow(const ParticleCloudGeom& geom);

/// The bytes of a cloud's records: none for a geometry without sprites or positions, or without a finite radius.
std::size_t cloudVertexDataSize(const ParticleCloudGeom& geom, double radius);

/// Appends one record a sprite, big-endian: the centre as three 16-bit integers (c / radius x 32767), the random value
/// and the opacity as a byte each and, with shadow data, eight transmittances e^(-k x depth) as a byte each; all
/// truncated.
/// @param toBounds takes sprite centres into the frame of the geometry's bounding sphere
/// @param radius of the bounding sphere, in centimetres
/// @param falloff k, per unit of optical depth
/// @return false, and nothing written, for a geometry without sprites or positions, or without a finite radius
bool appendCloudVertexData(const ParticleCloudGeom& geom, const Matrix44& toBounds, double radius, double falloff,
                           std::vector<unsigned char>& bytes);

/// One generated cloud, free or of a dome. Lengths are centimetres but for those of the settings.
struct GeneratedCloud {
    const CloudSettings& settings;
    const ParticleCloudGeom& geom;
    Vector3 setCentre;                  ///< centre of the shape set; for a dome cloud its base position
    double setRadius = 0.0;             ///< radius of the shape set
    bool enableDomePositioning = false; ///< whether the runtime moves the cloud over the dome
};

/// The same for a generated cloud, with its own frame, radius and falloff.
bool appendCloudVertexData(const GeneratedCloud& cloud, const CloudShadingParams& shading,
                           std::vector<unsigned char>& bytes);

/// Writes the cloud's ParticleCloud element and appends its vertex data. What the element says of self-shadow is what
/// the records hold, whatever the parameters are by now. A cloud without sprites writes nothing and is a success.
/// @return false, with a message, when the vertex data could not be made
bool saveCloudToXml(OutputFile& file, const char* indent, std::vector<unsigned char>& cloudVertices,
                    const GeneratedCloud& cloud, const CloudShadingParams& shading);

} // namespace orvo
