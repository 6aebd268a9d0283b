#include "CloudLibrary.h"

#include "Common/Messages.h"

#include <limits>
#include <tinyxml.h>

namespace orvo {
namespace {

constexpr const char* cloudElement = "ParticleCloud";
constexpr const char* sphereElement = "ParticleCloudSphere";
constexpr const char* rowNames[] = {"x_vec", "y_vec", "z_vec", "pos_vec"};
/// Of what the node keeps from 1 on.
constexpr XmlRange aboveZero{.min = std::numeric_limits<float>::min(), .below = 1.0};

CloudShapeSphere readSphere(XmlFile& file, const TiXmlElement& element) {
    CloudShapeSphere sphere;
    sphere.opacity = file.single(&element, "opacity", {0.0, 1.0});
    sphere.density = file.single(&element, "density", {0.0, 1.0});
    const TiXmlElement* transform = file.child(&element, "Transform");
    for (int row = 0; row < 4; ++row) {
        const Vector3 v = file.triple(transform, rowNames[row]);
        double(&m)[4] = sphere.transform.m[row];
        m[0] = v.x, m[1] = v.y, m[2] = v.z;
    }
    return sphere;
}

CloudTemplate readCloud(XmlFile& file, const TiXmlElement* element) {
    CloudTemplate cloud;
    CloudSettings& settings = cloud.settings;
    settings.spriteDensity = file.single(element, "spriteDensity", aboveZero);
    settings.spriteSize = file.single(element, "spriteSize", aboveZero);
    settings.groundShadowOffset = file.single(element, "groundShadowOffset");
    settings.enableGroundFade = file.flag(element, "enableGroundFade");
    settings.groundFadeStart = file.single(element, "groundFadeStart");
    settings.groundFadeEnd = file.single(element, "groundFadeEnd");
    settings.domeYOffset = file.single(element, "domeYOffset");
    cloud.shapes.boundRadius = file.single(element, "geomBoundSphereRadius", {.min = 0.0});
    cloud.shapes.boundCentre = file.triple(element, "geomBoundSpherePos");
    cloud.shapes.seed = file.word(element, "randSeed");
    if (!file.ok()) return cloud;
    for (const auto* e = element->FirstChildElement(sphereElement); e && file.ok();
         e = e->NextSiblingElement(sphereElement))
        cloud.shapes.spheres.push_back(readSphere(file, *e));
    return cloud;
}

} // namespace

void writeCloudFileHeader(OutputFile& file, const char* type) {
    file.print("<?xml version=\"1.0\" encoding=\"utf-8\"?>\n");
    file.print("<%s\n", cloudRootElement);
    file.print("\ttype = \"%s\"\n", type);
    file.print("\tversion = \"%d\"\n", cloudFileVersion);
    file.print("\t>\n");
}

void writeParticleCloudElement(OutputFile& file, const char* indent, const CloudTemplate& cloud) {
    const CloudSettings& settings = cloud.settings;
    const CloudShapeSet& shapes = cloud.shapes;
    file.print("%s<ParticleCloud\n", indent);
    file.print("%s\tspriteDensity = \"%f\"\n", indent, settings.spriteDensity);
    file.print("%s\tspriteSize = \"%f\"\n", indent, settings.spriteSize);
    file.print("%s\tgroundShadowOffset = \"%f\"\n", indent, settings.groundShadowOffset);
    file.print("%s\tenableGroundFade = \"%d\"\n", indent, settings.enableGroundFade);
    file.print("%s\tgroundFadeStart = \"%f\"\n", indent, settings.groundFadeStart);
    file.print("%s\tgroundFadeEnd = \"%f\"\n", indent, settings.groundFadeEnd);
    file.print("%s\tdomeYOffset = \"%f\"\n", indent, settings.domeYOffset);
    file.print("%s\tgeomBoundSphereRadius = \"%f\"\n", indent, shapes.boundRadius);
    file.print("%s\tgeomBoundSpherePos = \"%f %f %f\"\n", indent, shapes.boundCentre.x, shapes.boundCentre.y,
               shapes.boundCentre.z);
    file.print("%s\trandSeed = \"%d\"\n", indent, shapes.seed);
    file.print("%s\t>\n", indent);
    const std::string deeper = std::string(indent) + '\t';
    for (const CloudShapeSphere& sphere : shapes.spheres) writeCloudShapeSphere(file, deeper.c_str(), sphere);
    file.print("%s</ParticleCloud>\n", indent);
}

bool writeCloudShapeSphere(OutputFile& file, const char* indent, const CloudShapeSphere& sphere) {
    file.print("%s<ParticleCloudSphere\n", indent);
    file.print("%s\topacity = \"%f\"\n", indent, sphere.opacity);
    file.print("%s\tdensity = \"%f\"\n", indent, sphere.density);
    file.print("%s\t>\n", indent);
    file.print("%s\t<Transform\n", indent);
    for (int row = 0; row < 4; ++row) {
        const double(&m)[4] = sphere.transform.m[row];
        file.print("%s\t\t%s = \"%10.10f %10.10f %10.10f\"\n", indent, rowNames[row], m[0], m[1], m[2]);
    }
    file.print("%s\t/>\n", indent);
    file.print("%s</ParticleCloudSphere>\n", indent);
    return true;
}

void writeCloudFileFooter(OutputFile& file) { file.print("</%s>\n", cloudRootElement); }

std::optional<CloudTemplate> readCloudFile(XmlFile& file) {
    CloudTemplate cloud =
        readCloud(file, file.child(file.root(cloudRootElement, {{cloudFileType, cloudFileVersion}}), cloudElement));
    if (!file.ok()) return std::nullopt;
    return cloud;
}

std::optional<std::vector<CloudTemplate>> readCloudLibrary(XmlFile& file) {
    std::vector<CloudTemplate> clouds;
    const TiXmlElement* first =
        file.child(file.root(cloudRootElement, {{cloudLibraryType, cloudFileVersion}}), cloudElement);
    for (const auto* e = first; e && file.ok(); e = e->NextSiblingElement(cloudElement))
        clouds.push_back(readCloud(file, e));
    if (!file.ok()) return std::nullopt;
    return clouds;
}

void reportHeldValues(const XmlFile& file) {
    if (!file.ok()) return;
    for (const std::string& warning : file.warnings()) reportWarning("%s", warning);
}

bool isCloudFile(XmlFile& file) { return file.text(file.root(cloudRootElement), "type") == cloudFileType; }

} // namespace orvo
