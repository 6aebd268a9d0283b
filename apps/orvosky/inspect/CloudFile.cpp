#include "CloudFile.h"

#include "ElementRules.h"

#include <ImathMatrixAlgo.h>
#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace orvosky::inspect {
namespace {

const ElementRule& shadingRule() {
    static const ElementRule rule{"ParticleCloudShadingParams",
                                  {{"shading_tex_filepath", Kind::Text},
                                   {"cloudColour", Kind::Triple},
                                   {"shadingOpacity", Kind::Number, 0, 1},
                                   {"shadingBrightness", Kind::Number, 0, 10},
                                   {"sunShadowAmount", Kind::Number, 0, 1},
                                   {"groundShadowAmount", Kind::Number, 0, 1},
                                   {"spriteShadowAmount", Kind::Number, 0, 1},
                                   {"enableSelfShadow", Kind::Flag},
                                   {"selfShadowAmount", Kind::Number, 0, 1},
                                   {"selfShadowFalloff", Kind::Number, 0},
                                   {"lightingAmbient", Kind::Triple},
                                   {"lightingSunGlowAmount", Kind::Number, 0, 10},
                                   {"lightingSunGlowHaloSize", Kind::Number, 0, 100}}};
    return rule;
}

const ElementRule& cloudRule() {
    static const ElementRule rule{"ParticleCloud",
                                  {{"spriteDensity", Kind::Number, above0, infinite, "a cubic kilometre"},
                                   {"spriteSize", Kind::Number, above0, infinite, "m"},
                                   {"groundShadowOffset", Kind::Number, -infinite, infinite, "m"},
                                   {"enableGroundFade", Kind::Flag},
                                   {"groundFadeStart", Kind::Number, -infinite, infinite, "m"},
                                   {"groundFadeEnd", Kind::Number, -infinite, infinite, "m"},
                                   {"domeYOffset", Kind::Number, -infinite, infinite, "m"},
                                   {"geomBoundSphereRadius", Kind::Number, 0, infinite, "cm"},
                                   {"geomBoundSpherePos", Kind::Triple, -infinite, infinite, "cm"},
                                   {"randSeed", Kind::Integer, -2147483648.0, 4294967295.0}}};
    return rule;
}

const ElementRule& sphereRule() {
    static const ElementRule rule{"ParticleCloudSphere",
                                  {{"opacity", Kind::Number, 0, 1}, {"density", Kind::Number, 0, 1}}};
    return rule;
}

const ElementRule& transformRule() {
    static const ElementRule rule{
        "Transform",
        {{"x_vec", Kind::Triple}, {"y_vec", Kind::Triple}, {"z_vec", Kind::Triple}, {"pos_vec", Kind::Triple}}};
    return rule;
}

double distance(const Triple& a, const Triple& b) { return std::hypot(a[0] - b[0], a[1] - b[1], a[2] - b[2]); }

/// Works out where an ellipsoid lies and how large it is. Its matrix takes row vectors from scene centimetres into the
/// space in which it is the unit sphere.
void measure(const Element& transform, Element& sphere, const Element& cloud, Problems& problems) {
    const auto x = transform.get<Triple>("x_vec"), y = transform.get<Triple>("y_vec"),
               z = transform.get<Triple>("z_vec"), p = transform.get<Triple>("pos_vec");
    if (!x || !y || !z || !p) return;
    const Imath::M33d linear((*x)[0], (*x)[1], (*x)[2], (*y)[0], (*y)[1], (*y)[2], (*z)[0], (*z)[1], (*z)[2]);
    // What places clouds inverts the matrix in metres and refuses determinants up to 1e-15.
    const double determinant = (linear * 100.0).determinant();
    if (!std::isfinite(determinant) || std::abs(determinant) <= 1e-15) {
        problems.add(transform, fmt::format("the matrix of {} cannot be inverted: the ellipsoid would be flat, or "
                                            "absurdly large",
                                            sphere.described()));
        return;
    }
    Imath::M33d u, v;
    Imath::V3d singular;
    Imath::jacobiSVD(linear, u, singular, v);
    const Imath::V3d centre = Imath::V3d(-(*p)[0], -(*p)[1], -(*p)[2]) * linear.inverse();
    const Triple at{centre.x, centre.y, centre.z};
    Triple axes{1 / std::abs(singular.x), 1 / std::abs(singular.y), 1 / std::abs(singular.z)};
    std::ranges::sort(axes, std::greater());
    sphere.derived.push_back({"centre", Triple{at[0] / 100, at[1] / 100, at[2] / 100}, "m"});
    sphere.derived.push_back({"semiAxes", Triple{axes[0] / 100, axes[1] / 100, axes[2] / 100}, "m"});

    const auto radius = cloud.get<double>("geomBoundSphereRadius");
    const auto bounds = cloud.get<Triple>("geomBoundSpherePos");
    // Ten decimals are few for the matrix of a large ellipsoid far away.
    if (radius && bounds && !(distance(at, *bounds) <= 1.01 * *radius + 1e-4 * std::hypot(at[0], at[1], at[2])))
        problems.add(sphere, fmt::format("its centre lies outside of the bounding sphere of {}", cloud.described()));
}

Element readSphere(const XmlElement& xml, int number, const Element& cloud, Problems& problems) {
    Element sphere = readElement(xml, sphereRule(), number, problems);
    checkChildren(xml, {"Transform"}, sphere.described(), problems);
    const XmlElement transform = xml.first("Transform");
    if (!transform) {
        problems.add(sphere, "the element <Transform> is missing");
        return sphere;
    }
    if (transform.next("Transform")) problems.add(sphere, "there is more than one <Transform>");
    checkChildren(transform, {}, "Transform", problems);
    sphere.children.push_back(readElement(transform, transformRule(), number, problems));
    measure(sphere.children.back(), sphere, cloud, problems);
    return sphere;
}

/// The generator gives up on more than a million candidates, without a word.
void noteDensity(const Element& cloud, Inspection& found) {
    const auto density = cloud.get<double>("spriteDensity"), radius = cloud.get<double>("geomBoundSphereRadius");
    if (!density || !radius || !(*density > 0)) return;
    const double step = 1000.0 / std::cbrt(*density) * 100; // centimetres
    const double across = std::floor(2 * *radius / step);
    if (across * across * across > 1e6)
        found.notes.push_back(fmt::format("{}: its density makes {:.3g} candidates; above a million, a cloud gets no "
                                          "sprites.",
                                          cloud.described(), across * across * across));
}

void readClouds(const XmlElement& root, Inspection& found) {
    int number = 0;
    for (auto xml = root.first("ParticleCloud"); xml; xml = xml.next("ParticleCloud")) {
        Element cloud = readElement(xml, cloudRule(), ++number, found.problems);
        checkChildren(xml, {"ParticleCloudSphere"}, cloud.described(), found.problems);
        for (auto s = xml.first("ParticleCloudSphere"); s; s = s.next("ParticleCloudSphere"))
            cloud.children.push_back(readSphere(s, static_cast<int>(cloud.children.size()) + 1, cloud, found.problems));
        if (cloud.children.empty())
            found.notes.push_back(cloud.described() + ": without <ParticleCloudSphere> it gets no sprites.");

        cloud.derived.push_back({"shapes", static_cast<std::int64_t>(cloud.children.size())});
        if (const auto radius = cloud.get<double>("geomBoundSphereRadius"))
            cloud.derived.push_back({"boundRadius", *radius / 100, "m"});
        if (const auto seed = cloud.get<std::int64_t>("randSeed"))
            cloud.derived.push_back({"seed", static_cast<std::int64_t>(static_cast<std::uint32_t>(*seed))});
        noteDensity(cloud, found);
        const auto start = cloud.get<double>("groundFadeStart"), end = cloud.get<double>("groundFadeEnd");
        if (start && end && std::abs(*start - *end - 80) > 1e-5)
            found.notes.push_back(fmt::format("{}: its ground fade spans {:.6g} m; the tools always write 80 m.",
                                              cloud.described(), *start - *end));
        found.elements.push_back(std::move(cloud));
    }
    if (number == 0) found.problems.add(root.line(), "OrvoAtmosphere", "there is no <ParticleCloud>");
}

XmlElement readShading(const XmlElement& root, Inspection& found) {
    const XmlElement xml = root.first("ParticleCloudShadingParams");
    if (!xml) return {};
    found.elements.push_back(readElement(xml, shadingRule(), 0, found.problems));
    checkChildren(xml, {}, "ParticleCloudShadingParams", found.problems);
    if (xml.next("ParticleCloudShadingParams"))
        found.problems.add(xml.line(), "OrvoAtmosphere", "there is more than one <ParticleCloudShadingParams>");
    return xml;
}

} // namespace

void inspectCloud(const XmlElement& root, Inspection& found) {
    checkChildren(root, {"ParticleCloud"}, "OrvoAtmosphere", found.problems);
    readClouds(root, found);
    if (found.elements.size() > 1)
        found.problems.add(
            root.line(), "OrvoAtmosphere",
            fmt::format("there are {} <ParticleCloud>; a file of this type holds one", found.elements.size()));
}

void inspectCloudLibrary(const XmlElement& root, Inspection& found) {
    checkChildren(root, {"ParticleCloudShadingParams", "ParticleCloud"}, "OrvoAtmosphere", found.problems);
    const XmlElement shading = readShading(root, found);
    if (!shading)
        found.notes.push_back("Without <ParticleCloudShadingParams>: the library carries no shading of its own.");
    else if (shading != root.first())
        found.problems.add(shading.line(), "ParticleCloudShadingParams", "it does not stand before the clouds");
    readClouds(root, found);
}

void inspectShadingParams(const XmlElement& root, Inspection& found) {
    checkChildren(root, {"ParticleCloudShadingParams"}, "OrvoAtmosphere", found.problems);
    if (!readShading(root, found))
        found.problems.add(root.line(), "OrvoAtmosphere", "there is no <ParticleCloudShadingParams>");
}

} // namespace orvosky::inspect
