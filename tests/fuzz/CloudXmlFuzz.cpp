#include "SkyTool/clouds/CloudLibrary.h"
#include "SkyTool/clouds/CloudShadingFile.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <tinyxml.h>

/// The readers of cloud, library and shading files on any bytes. The first byte chooses the reader, so that seeds can
/// be files behind an '0', '1' or '2'. Whatever is accepted must be safe for what comes after.
namespace {

void require(bool condition) {
    if (!condition) std::abort();
}

void requireFinite(const orvo::Vector3& v) { require(std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z)); }

void check(const orvo::CloudTemplate& cloud) {
    const orvo::CloudSettings& s = cloud.settings;
    require(s.spriteDensity > 0.0 && s.spriteSize > 0.0 && cloud.shapes.boundRadius >= 0.0);
    for (const double value : {s.spriteDensity, s.spriteSize, s.groundShadowOffset, s.groundFadeStart, s.groundFadeEnd,
                               s.domeYOffset, cloud.shapes.boundRadius})
        require(std::isfinite(value));
    requireFinite(cloud.shapes.boundCentre);
    for (const orvo::CloudShapeSphere& sphere : cloud.shapes.spheres) {
        require(sphere.opacity >= 0.0 && sphere.opacity <= 1.0 && sphere.density >= 0.0 && sphere.density <= 1.0);
        for (const auto& row : sphere.transform.m) {
            requireFinite({row[0], row[1], row[2]});
            require(row[3] == (&row == &sphere.transform.m[3] ? 1.0 : 0.0));
        }
    }
}

/// The parser must not nest deeper than the scan before it allows: it would overflow the stack.
void checkDepth(const TiXmlNode& document) {
    int depth = 0;
    for (const TiXmlNode* node = &document; node;) {
        if (const TiXmlNode* child = node->FirstChild()) {
            require(++depth <= orvo::XmlFile::maxDepth + 1); // text in the deepest element
            node = child;
            continue;
        }
        while (node && !node->NextSibling()) node = node == &document ? nullptr : (--depth, node->Parent());
        if (node) node = node == &document ? nullptr : node->NextSibling();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    orvo::XmlFile file;
    const bool parsed = file.parse(std::string(reinterpret_cast<const char*>(data) + 1, size - 1), "fuzz");
    require(parsed == file.ok());
    if (parsed) {
        orvo::XmlFile again;
        require(again.parse(std::string(reinterpret_cast<const char*>(data) + 1, size - 1), "fuzz"));
        if (const TiXmlElement* root = again.root(orvo::cloudRootElement)) checkDepth(*root->GetDocument());
    }
    bool accepted = false;
    if (data[0] % 3 == 0) {
        const auto cloud = readCloudFile(file);
        if ((accepted = cloud.has_value())) check(*cloud);
    } else if (data[0] % 3 == 1) {
        const auto clouds = readCloudLibrary(file);
        if ((accepted = clouds.has_value())) std::for_each(clouds->begin(), clouds->end(), check);
    } else {
        const auto params = readCloudShadingFile(file);
        if ((accepted = params.has_value())) {
            requireFinite(params->cloudColour);
            requireFinite(params->lightingAmbient);
            require(params->shadingOpacity >= 0.0 && params->shadingOpacity <= 1.0);
            require(params->selfShadowFalloff >= 0.0 && std::isfinite(params->selfShadowFalloff));
        }
    }
    require(accepted == file.ok() && accepted == file.error().empty());
    return 0;
}
