#include "SceneFile.h"

#include "../Failure.h"
#include "CloudData.h"
#include "ElementRules.h"
#include "XmlFile.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <map>

namespace orvosky::inspect {
namespace {

namespace fs = std::filesystem;

struct SceneElement {
    ElementRule rule;
    bool single; ///< at most one may be there
};

std::vector<AttributeRule> withSun(std::initializer_list<AttributeRule> own) {
    std::vector<AttributeRule> all{{"sunDir", Kind::Triple, -1, 1},
                                   {"sunColour", Kind::Triple},
                                   {"sunIntensity", Kind::Number, 0, 5},
                                   {"sunDiskSize", Kind::Number, 0, 1},
                                   {"sunDiskFalloff", Kind::Number, 0, 50},
                                   {"sunDiskWeight", Kind::Number, 0, 2},
                                   {"sunEnable", Kind::Flag}};
    all.insert(all.end(), own);
    return all;
}

AttributeRule metres(const char* name, double min = -infinite, double max = infinite) {
    return {name, Kind::Number, min, max, "m"};
}

/// The elements of a scene, in their order.
const std::vector<SceneElement>& sceneElements() {
    static const std::vector<SceneElement> elements{
        {{"SkySceneSettings", {{"useGameSunDir", Kind::Flag}, {"cloudBackBufferRes", Kind::Integer, 0, 2}}}, true},
        {{"BasicSky", withSun({{"zenithColour", Kind::Triple},
                               {"horizonColour", Kind::Triple},
                               {"horizonFalloff", Kind::Number, 0},
                               {"horizonOffset", Kind::Number, -1, 1}})},
         false},
        {{"GradientSky",
          withSun(
              {{"brightness", Kind::Number, 0, 3}, {"xcoord", Kind::Number, 0, 1}, {"gradientTexture", Kind::Text}})},
         false},
        {{"TexturedSky",
          {{"brightness", Kind::Number, 0, 3}, {"rotation", Kind::Number, 0, 360, "degrees"}, {"texture", Kind::Text}}},
         false},
        {{"ExpHeightFog",
          {{"fogDensity", Kind::Number, 0.0001, infinite, "/ 100000 cm"},
           metres("fogHeight", 1),
           metres("fogHeightOffset"),
           {"fogColour", Kind::Triple},
           {"fogAlpha", Kind::Number, 0, 1}}},
         true},
        {{"SceneFog",
          {metres("fogStart", 1),
           metres("fogEnd", 1),
           {"fogAlpha", Kind::Number, 0.0001, 1},
           {"fogColour", Kind::Triple}}},
         true},
        {{"SpriteCloud",
          {{"renderMode", Kind::Integer, 0, 1},
           {"tint", Kind::Triple},
           {"alphaScale", Kind::Number, 0, 2},
           {"brightness", Kind::Number, 0, 3},
           {"textureMipBias", Kind::Number},
           {"texture", Kind::Text}}},
         false},
        {{"ParticleCloudShadingParams",
          {{"sunDir", Kind::Triple, -1, 1},
           {"sunColour", Kind::Triple},
           {"sunIntensity", Kind::Number, 0, 5},
           {"cloudColour", Kind::Triple},
           {"shadingBrightness", Kind::Number, 0, 10},
           {"spriteTexture", Kind::Text},
           {"lightingAmbient", Kind::Triple},
           {"lightingSunGlowAmount", Kind::Number, 0, 10},
           {"lightingSunGlowHaloSize", Kind::Number, 0, 100},
           {"lightingRimGlowAmount", Kind::Number, 0}}},
         true},
        {{"ParticleCloudDome",
          {metres("domeHeight"),
           metres("domeCurvature", 1),
           metres("domeInnerRadius", 10),
           metres("domeOuterRadius", 10),
           {"windVelocity", Kind::Number, 0, 100, "m per time unit"},
           {"windDir", Kind::Number, 0, 360, "degrees"}}},
         true},
        {{"ParticleCloud",
          {{"vertexDataAddress", Kind::Integer, 0, 2147483647, "bytes"},
           metres("spriteSize", above0),
           {"numSprites", Kind::Integer, 1, 4000},
           metres("geomBoundSphereRadius", above0),
           {"geomBoundSpherePos", Kind::Triple, -infinite, infinite, "m"},
           metres("cullingSphereRadius", above0),
           {"cullingSpherePos", Kind::Triple, -infinite, infinite, "m"},
           metres("groundShadowOffset"),
           {"enableDomePositioning", Kind::Flag},
           metres("domeYOffset"),
           {"enableGroundFade", Kind::Flag},
           {"groundFadeStart", Kind::Number, -infinite, infinite, "m", "enableGroundFade"},
           {"groundFadeEnd", Kind::Number, -infinite, infinite, "m", "enableGroundFade"},
           {"shadingOpacity", Kind::Number, 0, 1},
           {"groundShadowAmount", Kind::Number, 0, 1},
           {"sunShadowAmount", Kind::Number, 0, 1},
           {"spriteShadowAmount", Kind::Number, 0, 1},
           {"cloudSelfShadowEnable", Kind::Flag},
           {"cloudSelfShadowAmount", Kind::Number, 0, 1, {}, "cloudSelfShadowEnable"}}},
         false},
        {{"CloudVertData", {{"size", Kind::Integer, 1, 2147483647, "bytes"}}}, true},
    };
    return elements;
}

/// The mesh of a sprite cloud: its counts and its box, not every vertex.
Element readMesh(const XmlElement& xml, Problems& problems) {
    static const ElementRule rule{"TriMesh", {{"numVerts", Kind::Integer, 1}, {"numTris", Kind::Integer, 1}}};
    static const ElementRule vertexRule{"Vert", {{"pos", Kind::Triple}, {"uv", Kind::Text}}};
    static const ElementRule triangleRule{"Tri", {{"indicies", Kind::Triple, 0}}};
    Element mesh = readElement(xml, rule, 0, problems);
    checkChildren(xml, {"Vert", "Tri"}, "TriMesh", problems);

    Triple low{infinite, infinite, infinite}, high{-infinite, -infinite, -infinite};
    int vertices = 0, triangles = 0;
    for (auto v = xml.first("Vert"); v; v = v.next("Vert")) {
        const Element vertex = readElement(v, vertexRule, ++vertices, problems);
        if (const auto before = v.previous(); before && before.name() == "Tri")
            problems.add(vertex, "it stands behind a triangle");
        if (const auto uv = vertex.get<std::string>("uv"); uv && !readTriple(*uv + " 0"))
            problems.add(vertex, "uv is not 2 numbers: '" + printable(*uv, 60) + "'");
        if (const auto p = vertex.get<Triple>("pos"))
            for (std::size_t k = 0; k < 3; ++k)
                low[k] = std::min(low[k], (*p)[k]), high[k] = std::max(high[k], (*p)[k]);
    }
    for (auto t = xml.first("Tri"); t; t = t.next("Tri")) {
        const Element triangle = readElement(t, triangleRule, ++triangles, problems);
        if (const auto corners = triangle.get<Triple>("indicies"))
            for (const double c : *corners)
                if (c != std::floor(c) || c >= vertices)
                    problems.add(triangle, fmt::format("there is no vertex {}", c));
    }
    const auto compare = [&](const char* attribute, int found) {
        if (const auto told = mesh.get<std::int64_t>(attribute); told && *told != found)
            problems.add(mesh, fmt::format("{} is {}, but the elements are {}", attribute, *told, found));
    };
    compare("numVerts", vertices);
    compare("numTris", triangles);
    if (low[0] <= high[0]) {
        mesh.derived.push_back({"verticesFrom", low, "m"});
        mesh.derived.push_back({"verticesTo", high, "m"});
    }
    return mesh;
}

/// What an element's own attributes and children have to be beyond their limits.
void checkElement(const XmlElement& xml, Element& element, Inspection& found) {
    Problems& problems = found.problems;
    if (element.name != "SpriteCloud") checkChildren(xml, {}, element.described(), problems);
    if (element.name == "SpriteCloud") {
        checkChildren(xml, {"TriMesh"}, element.described(), problems);
        const XmlElement mesh = xml.first("TriMesh");
        if (!mesh)
            problems.add(element, "the element <TriMesh> is missing");
        else if (mesh.next("TriMesh"))
            problems.add(element, "there is more than one <TriMesh>");
        if (mesh) element.children.push_back(readMesh(mesh, problems));
    } else if (element.name == "SceneFog") {
        const auto start = element.get<double>("fogStart"), end = element.get<double>("fogEnd");
        if (start && end && *start > *end) problems.add(element, "fogStart lies behind fogEnd");
    } else if (element.name == "BasicSky" || element.name == "GradientSky") {
        const auto d = element.get<Triple>("sunDir");
        if (d && std::abs(std::hypot((*d)[0], (*d)[1], (*d)[2]) - 1) > 1e-5)
            problems.add(element, "sunDir is not of unit length");
    }
    for (const char* texture : {"gradientTexture", "texture", "spriteTexture"})
        if (const auto path = element.get<std::string>(texture); path && path->empty())
            found.notes.push_back(fmt::format("{}: {} is empty.", element.described(), texture));
}

std::size_t rank(std::string_view name) {
    const auto& known = sceneElements();
    const auto at = std::ranges::find(known, name, [](const SceneElement& e) { return std::string_view(e.rule.name); });
    return static_cast<std::size_t>(at - known.begin());
}

/// Reads all elements and checks their order; unknown ones are told and left out.
void readElements(const XmlElement& root, Inspection& found) {
    std::vector<int> counts(sceneElements().size());
    std::size_t highest = 0;
    for (XmlElement xml = root.first(); xml; xml = xml.next()) {
        const std::size_t kind = rank(xml.name());
        if (kind == counts.size()) continue;
        const SceneElement& known = sceneElements()[kind];
        ++counts[kind];
        const bool many = !known.single || counts[kind] > 1;
        Element element = readElement(xml, known.rule, many ? counts[kind] : 0, found.problems);
        if (known.single && counts[kind] == 2)
            found.problems.add(element, fmt::format("a scene has at most one {}", known.rule.name));
        if (kind < highest)
            found.problems.add(
                element, fmt::format("it stands behind {}, but belongs before it", sceneElements()[highest].rule.name));
        highest = std::max(highest, kind);
        checkElement(xml, element, found);
        found.elements.push_back(std::move(element));
    }
    if (counts[0] == 0) found.problems.add(root.line(), "OrvoAtmosphere", "there is no SkySceneSettings");
}

const Element* find(const Inspection& found, std::string_view name) {
    const auto at = std::ranges::find(found.elements, name, &Element::name);
    return at == found.elements.end() ? nullptr : &*at;
}

/// Clouds need shading; those of a dome need the dome, and come before the others.
void checkClouds(std::span<Element*> clouds, Inspection& found) {
    if (!clouds.empty() && !find(found, "ParticleCloudShadingParams"))
        found.problems.add(*clouds[0], "there are clouds, but no ParticleCloudShadingParams");
    bool free = false;
    for (const Element* cloud : clouds) {
        const auto positioned = cloud->get<std::int64_t>("enableDomePositioning");
        if (positioned == 1 && !find(found, "ParticleCloudDome"))
            found.problems.add(*cloud, "enableDomePositioning is 1, but there is no ParticleCloudDome");
        if (positioned == 1 && free)
            found.problems.add(*cloud, "it belongs to the dome, but stands behind a free cloud");
        free = free || positioned == 0;
    }
}

/// The data file's path, or nothing for a file that is not called .atmos.
std::optional<std::string> dataPath(const std::string& file) {
    const std::string_view wanted = ".atmos";
    if (file.size() <= wanted.size()) return std::nullopt;
    const std::size_t at = file.size() - wanted.size();
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        const char c = file[at + i];
        if ((c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c) != wanted[i]) return std::nullopt;
    }
    return file.substr(0, at + 1) + "cdata";
}

/// Checks the data file against its declaration and the clouds.
void checkData(std::span<Element*> clouds, const Element& declared, const std::string& path, PlainFile& data,
               Inspection& found) {
    const auto size = declared.get<std::int64_t>("size");
    if (size && static_cast<std::uint64_t>(*size) != data.size())
        found.problems.add(
            declared, fmt::format("size is {}, but {} holds {}", *size, printable(path), counted(data.size(), "byte")));
    const int last = data.size() == 0 ? 0 : data.bytes(data.size() - 1, data.size())[0];
    found.data = {.file = path, .size = data.size(), .endMark = last == 1};
    if (last != 1)
        found.problems.add(declared, data.size() == 0 ? printable(path) + " is empty"
                                                      : fmt::format("the last byte of {} is {}, not the end mark 1",
                                                                    printable(path), last));
    checkCloudData(clouds, data, found);
}

void checkData(std::span<Element*> clouds, Inspection& found) {
    const Element* declared = find(found, "CloudVertData");
    const auto path = dataPath(found.file);
    if (!declared) {
        if (!clouds.empty()) found.problems.add(*clouds[0], "there are clouds, but no CloudVertData");
        std::error_code ignored;
        if (clouds.empty() && path && fs::exists(*path, ignored))
            found.notes.push_back(printable(*path) + " lies beside the scene, but does not belong to it: there is no "
                                                     "CloudVertData.");
        return;
    }
    if (clouds.empty()) found.problems.add(*declared, "there is CloudVertData, but no ParticleCloud");
    if (!path) {
        found.problems.add(*declared, "the file's name does not end in .atmos, so it has no .cdata");
        return;
    }
    try {
        PlainFile data(*path);
        checkData(clouds, *declared, *path, data, found);
    } catch (const Failure& e) {
        found.problems.add(*declared, e.what());
    }
}

} // namespace

void inspectScene(const XmlElement& root, Inspection& found) {
    checkChildren(root,
                  {"SkySceneSettings", "BasicSky", "GradientSky", "TexturedSky", "ExpHeightFog", "SceneFog",
                   "SpriteCloud", "ParticleCloudShadingParams", "ParticleCloudDome", "ParticleCloud", "CloudVertData"},
                  "OrvoAtmosphere", found.problems);
    readElements(root, found);
    std::vector<Element*> clouds;
    for (Element& element : found.elements)
        if (element.name == "ParticleCloud") clouds.push_back(&element);
    checkClouds(clouds, found);
    checkData(clouds, found);
}

} // namespace orvosky::inspect
