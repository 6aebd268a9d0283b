// What lights the meshes of a view, and what a view leaves out that is to show no locators.
#include "ViewFixture.h"
#include "api/graph/Handle.h"

#include <array>

namespace {

using testing::ElementsAre;

struct LightCase {
    const char* fault;
    const char* type; ///< of the light; null for none
    double intensity;
    std::array<double, 3> colour, place;
    double turnY; ///< of the light, degrees
    std::map<const char*, double> attributes;
    double meshTurnY, meshScaleX; ///< turned first, then mirrored
    const char* seen;             ///< red, green and blue of the mesh's one pixel
};

void PrintTo(const LightCase& c, std::ostream* out) { *out << c.fault; }

class LitMesh : public ViewFixture, public testing::WithParamInterface<LightCase> {};

// A plate of one pixel at the origin, seen from (0, 0, 10). It gives back 0.5 x 0.8 of the light, by the cosine between
// normal and light: 102 of 255.
TEST_P(LitMesh, IsAsBrightAsTheLightMakesIt) {
    openView(100, 100);
    if (IsSkipped()) return;
    ASSERT_TRUE(view->setCamera(makeCamera(true)));
    const LightCase& c = GetParam();
    Node& mirror = make("transform", "mirror");
    set3(mirror, "scale", c.meshScaleX, 1, 1);
    Node& place = make("transform", "place", &mirror);
    set3(place, "translate", c.meshScaleX * 0.05, 0.05, 0);
    set3(place, "rotate", 0, c.meshTurnY * degree, 0);
    makeMesh("plate", host::mesh::polyCube({.width = 0.1, .height = 0.1, .depth = 0}), &place);
    if (c.type) {
        Node& at = make("transform", "at");
        set3(at, "translate", c.place[0], c.place[1], c.place[2]);
        set3(at, "rotate", 0, c.turnY * degree, 0);
        Node& light = make(c.type, "light", &at);
        set(light, "intensity", c.intensity);
        scene.setValue(light.cell("color"),
                       host::scene::Numeric(host::scene::NumericType::Float, 3, c.colour[0], c.colour[1], c.colour[2]));
        for (const auto& [name, value] : c.attributes) set(light, name, value);
    }
    render();
    EXPECT_THAT(litPixels(), ElementsAre(std::string("50,49:") + c.seen));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, LitMesh,
    testing::Values(
        LightCase{"no light of the scene, none from the camera", nullptr, 0, {}, {}, 0, {}, 0, 1, "102,102,102"},
        LightCase{"a directional light's way, colour or strength lost",
                  "directionalLight",
                  2,
                  {1, 0.5, 0},
                  {50, 0, -50},
                  60,
                  {},
                  0,
                  1,
                  "102,51,0"},
        LightCase{"the camera's light remains beside the scene's",
                  "directionalLight",
                  1,
                  {0, 0, 1},
                  {},
                  0,
                  {},
                  0,
                  1,
                  "0,0,102"},
        LightCase{
            "a hidden light shines", "directionalLight", 2, {1, 0, 0}, {}, 0, {{"visibility", 0}}, 0, 1, "102,102,102"},
        LightCase{"a mirrored mesh is lit on the side that lies away from the light",
                  "directionalLight",
                  1,
                  {1, 1, 1},
                  {},
                  -60,
                  {},
                  60,
                  -1,
                  "102,102,102"},
        LightCase{
            "a point light's decay", "pointLight", 2, {1, 1, 1}, {0, 0, 2}, 0, {{"decayRate", 2}}, 0, 1, "51,51,51"},
        LightCase{"an ambient light that has a direction",
                  "ambientLight",
                  0.5,
                  {1, 1, 0},
                  {0, 0, -9},
                  0,
                  {{"ambientShade", 0}},
                  30,
                  1,
                  "51,51,0"},
        LightCase{"an ambient light's shade",
                  "ambientLight",
                  2,
                  {1, 1, 1},
                  {0, 0, 99},
                  0,
                  {{"ambientShade", 0.5}},
                  60,
                  1,
                  "153,153,153"})); // half of it, and half of that half by the angle

// Faults: aids in a view that is to have none, or the sky gone with them.
TEST_F(ViewFixture, LocatorsCanBeLeftOut) {
    openView(100, 100);
    if (IsSkipped()) return;
    ASSERT_TRUE(view->setCamera(makeCamera(true)));
    makePoint("aid", 1.25, 0.75, 0, MColor(1, 0, 0));
    makePoint("keptSky", 2.25, 0.75, 0, MColor(0, 1, 0)); // does not want to be left out
    M3dView api = host::api::Access::view(view->serial());
    EXPECT_TRUE(api.objectDisplay() & M3dView::kDisplayLocators);
    render();
    EXPECT_THAT(litPixels(), ElementsAre("62,42:255,0,0", "72,42:0,255,0"));
    EXPECT_TRUE(api.setObjectDisplay(api.objectDisplay() & ~unsigned(M3dView::kDisplayLocators)));
    render();
    EXPECT_THAT(litPixels(), ElementsAre("72,42:0,255,0"));
}

} // namespace
