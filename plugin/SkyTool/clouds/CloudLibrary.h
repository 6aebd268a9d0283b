#pragma once

#include "CloudShapes.h"
#include "Common/OutputFile.h"
#include "Common/XmlFile.h"

#include <optional>
#include <string>
#include <vector>

/// The XML files of clouds: one cloud ("Modeler_ParticleCloud") or a library ("Modeler_ParticleCloudLibrary").
namespace orvo {

/// An artist's settings of one cloud. Lengths are metres.
struct CloudSettings {
    double spriteDensity = 10000.0;  ///< candidates in a cube of 1000 metres' side
    double spriteSize = 200.0;       ///< side of a sprite
    double groundShadowOffset = 0.0; ///< as authored
    bool enableGroundFade = false;
    double groundFadeStart = 60.0; ///< height above the cloud's centre
    double groundFadeEnd = -20.0;  ///< height above the cloud's centre
    double domeYOffset = 0.0;
    bool operator==(const CloudSettings&) const = default;
};

/// One cloud as a file holds it.
struct CloudTemplate {
    CloudSettings settings;
    CloudShapeSet shapes;
    bool operator==(const CloudTemplate&) const = default;
};

constexpr const char* cloudFileType = "Modeler_ParticleCloud";
constexpr const char* cloudLibraryType = "Modeler_ParticleCloudLibrary";
constexpr int cloudFileVersion = 1; ///< of both
/// The root element of all files of clouds.
constexpr const char* cloudRootElement = "OrvoAtmosphere";

/// The XML declaration and the opening tag of a cloud or library file.
void writeCloudFileHeader(OutputFile& file, const char* type);
/// The ParticleCloud element with its shapes, every line behind the indent.
void writeParticleCloudElement(OutputFile& file, const char* indent, const CloudTemplate& cloud);
/// The ParticleCloudSphere element. Always true.
bool writeCloudShapeSphere(OutputFile& file, const char* indent, const CloudShapeSphere& sphere);
void writeCloudFileFooter(OutputFile& file);

/// Reads the one cloud, or all clouds, of a file that has been read as XML; nothing, and the file's error(), when it is
/// refused.
std::optional<CloudTemplate> readCloudFile(XmlFile& file);
std::optional<std::vector<CloudTemplate>> readCloudLibrary(XmlFile& file);

/// Warns of the values that were out of range in a file that was taken.
void reportHeldValues(const XmlFile& file);

/// Whether the root of a file that has been read as XML says that it holds a single cloud.
bool isCloudFile(XmlFile& file);

} // namespace orvo
