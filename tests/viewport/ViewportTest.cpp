#include "ViewFixture.h"

#include <GL/glext.h>

#include <set>
#include <stdexcept>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const MColor red(1, 0, 0), green(0, 1, 0);

/// A point of the world, the view it is seen in, and the pixel (from the top left) it must fall on.
struct PointCase {
    const char* fault;
    int width, height;
    double x, y, z;
    bool orthographic;
    std::map<const char*, double> camera; ///< attributes of the camera
    double eye[3], eyeTurn[3], eyeScale;
    const char* pixel;
};

void PrintTo(const PointCase& c, std::ostream* out) { *out << c.fault; }

class PointPlace : public ViewFixture, public testing::WithParamInterface<PointCase> {};

TEST_P(PointPlace, IsWhereTheCameraSeesIt) {
    const PointCase& c = GetParam();
    openView(c.width, c.height);
    if (IsSkipped()) return;
    Node& camera = makeCamera(c.orthographic);
    for (const auto& [attribute, value] : c.camera) set(camera, attribute, value);
    set3(*camera.parent, "translate", c.eye[0], c.eye[1], c.eye[2]);
    set3(*camera.parent, "rotate", c.eyeTurn[0] * degree, c.eyeTurn[1] * degree, c.eyeTurn[2] * degree);
    set3(*camera.parent, "scale", c.eyeScale, c.eyeScale, c.eyeScale);
    ASSERT_TRUE(view->setCamera(camera));
    makePoint("point", c.x, c.y, c.z, red);
    render();
    EXPECT_THAT(litPixels(), ElementsAre(std::string(c.pixel) + ":255,0,0"));
}

// At a distance of 10 the film of makeCamera shows 10 units. The points lie at pixel centres, to be worked by hand:
// column = width / 2 + x * pixels per unit, row from the top = height / 2 - y * pixels per unit, both cut off.
INSTANTIATE_TEST_SUITE_P(
    Cases, PointPlace,
    testing::Values(
        PointCase{"perspective", 100, 100, 1.25, 0.75, 0, false, {}, {0, 0, 10}, {}, 1, "62,42"},
        PointCase{
            "perspective does not divide by depth", 100, 100, 2.5, 1.5, -10, false, {}, {0, 0, 10}, {}, 1, "62,42"},
        PointCase{"orthographic divides by depth", 100, 50, 1.25, 0.75, -10, true, {}, {0, 0, 10}, {}, 1, "62,17"},
        PointCase{"view turned the wrong way", 100, 100, 0, 0.75, -1.25, false, {}, {10, 0, 0}, {0, 90, 0}, 1, "62,42"},
        PointCase{"scale of the camera enters", 100, 100, 1.25, 0.75, 0, false, {}, {0, 0, 10}, {}, 5, "62,42"},
        PointCase{"fill: film narrower than the port",
                  200,
                  100,
                  1.225,
                  0.725,
                  0,
                  false,
                  {{"filmFit", 0}},
                  {0, 0, 10},
                  {},
                  1,
                  "124,35"},
        PointCase{"fill: film wider than the port",
                  100,
                  200,
                  1.225,
                  0.725,
                  0,
                  false,
                  {{"filmFit", 0}},
                  {0, 0, 10},
                  {},
                  1,
                  "74,85"},
        PointCase{"vertical fit", 200, 100, 1.25, 0.75, 0, false, {{"filmFit", 2}}, {0, 0, 10}, {}, 1, "112,42"},
        PointCase{"overscan fit", 200, 100, 1.25, 0.75, 0, false, {{"filmFit", 3}}, {0, 0, 10}, {}, 1, "112,42"},
        PointCase{"horizontal fit, moved to the film's top edge by 2.5 units",
                  200,
                  100,
                  1.225,
                  0.725,
                  0,
                  false,
                  {{"filmFit", 1}, {"filmFitOffset", 1}},
                  {0, 0, 10},
                  {},
                  1,
                  "124,85"},
        PointCase{"film offset by a tenth of an inch, 1 unit",
                  100,
                  100,
                  1.25,
                  0.75,
                  0,
                  false,
                  {{"horizontalFilmOffset", 0.1}},
                  {0, 0, 10},
                  {},
                  1,
                  "52,42"},
        PointCase{"squeezed film of 2 to 1 fills the port",
                  200,
                  100,
                  1.25,
                  0.75,
                  0,
                  false,
                  {{"lensSqueezeRatio", 2}},
                  {0, 0, 10},
                  {},
                  1,
                  "112,42"}));

class ViewportTest : public ViewFixture {
protected:
    /// Opens a view of 100 x 100 pixels, 10 a unit, from (0, 0, 10) on.
    void openOrtho() {
        openView(100, 100);
        if (IsSkipped()) return;
        ASSERT_TRUE(view->setCamera(makeCamera(true)));
    }
};

// Fault: a locator's draw misses the matrices above it, or they are applied in the wrong order.
TEST_F(ViewportTest, LocatorsDrawInTheirOwnSpace) {
    openOrtho();
    if (IsSkipped()) return;
    Node& moved = make("transform", "moved");
    set3(moved, "translate", 1, 0, 0);
    Node& turned = make("transform", "turned", &moved);
    set3(turned, "rotate", 0, 0, 90 * degree); // (0.75, -0.25) becomes (0.25, 0.75)
    MMatrix told;
    makePoint("point", 0.75, -0.25, 0, red, &turned);
    const auto draw = TestLocator::draws["point"];
    TestLocator::draws["point"] = [&](DrawCall call) {
        draw(call);
        call.view.modelViewMatrix(told);
    };
    render();
    EXPECT_THAT(litPixels(), ElementsAre("62,42:255,0,0"));
    const double expected[4][4] = {{0, 1, 0, 0}, {-1, 0, 0, 0}, {0, 0, 1, 0}, {1, 0, -10, 1}};
    EXPECT_TRUE(told.isEquivalent(MMatrix(expected), 1e-12)) << told;
}

struct MeshCase {
    const char* fault;
    double scaleX, turnY;
    int left, right; ///< columns that are lit, the last one excluded
    int grey;
};

void PrintTo(const MeshCase& c, std::ostream* out) { *out << c.fault; }

class MeshPicture : public ViewportTest, public testing::WithParamInterface<MeshCase> {};

// A unit plate that faces the camera, centred at (1, 0.5): columns 55 to 64, rows 40 to 49. Its grey is 0.5 x 0.8 of
// the light, by the cosine between normal and view: 102 when it faces the camera, 51 at 60 degrees.
TEST_P(MeshPicture, CoversItsPixelsExactly) {
    openOrtho();
    if (IsSkipped()) return;
    const MeshCase& c = GetParam();
    Node& place = make("transform", "place");
    set3(place, "translate", 1, 0.5, 0);
    set3(place, "rotate", 0, c.turnY * degree, 0);
    set3(place, "scale", c.scaleX, 1, 1);
    makeMesh("plate", host::mesh::polyCube({.depth = 0}), &place);
    render();
    std::vector<std::string> expected;
    const std::string grey = std::to_string(c.grey);
    for (int y = 40; y < 50; ++y)
        for (int x = c.left; x < c.right; ++x)
            expected.push_back(std::to_string(x) + "," + std::to_string(y) + ":" + grey + "," + grey + "," + grey);
    EXPECT_EQ(litPixels(), expected);
}

INSTANTIATE_TEST_SUITE_P(Cases, MeshPicture,
                         testing::Values(MeshCase{"silhouette or light", 1, 0, 55, 65, 102},
                                         MeshCase{"mirrored mesh unlit", -1, 0, 55, 65, 102},
                                         MeshCase{"scale makes normals longer", 2, 0, 50, 70, 102},
                                         MeshCase{"light ignores the angle", 2, 60, 55, 65, 51},
                                         MeshCase{"back side unlit", 1, 180, 55, 65, 102}));

// Fault: hidden branches drawn, siblings in another order than the DAG's, a status that misleads the draw.
TEST_F(ViewportTest, DrawsWhatIsVisibleInDagOrder) {
    openOrtho();
    if (IsSkipped()) return;
    std::map<std::string, M3dView::DisplayStatus> statuses;
    const auto locator = [&](const std::string& name, Node* parent) -> Node& {
        TestLocator::draws[name] = [&statuses, name](DrawCall c) {
            statuses[name] = c.status;
            EXPECT_EQ(c.path.partialPathName(), MString(name.c_str()));
        };
        return make("testLocator", name, parent);
    };
    Node& top = make("transform", "top1");
    Node& hidden = make("transform", "hidden", &top);
    locator("inHidden", &make("transform", "group", &hidden));
    Node& first = make("transform", "first");
    locator("a", &first);
    locator("lastA", &first);
    locator("b", &first);
    Node& templated = make("transform", "templated", &top);
    locator("c", &make("transform", "below", &templated));
    Node& intermediate = locator("d", &top);
    locator("e", &top);
    set(hidden, "visibility", 0);
    set(templated, "template", 1);
    set(intermediate, "intermediateObject", 1);
    make("locator", "builtIn", &top);
    scene.setSelection({{first.shared_from_this(), ""}});
    scene.reorder(top, scene.world()->children.size() - 1);
    render();
    EXPECT_THAT(TestLocator::drawn, ElementsAre("a", "b", "c", "e", "lastA"));
    EXPECT_EQ(statuses["a"], M3dView::kLead);
    EXPECT_EQ(statuses["c"], M3dView::kTemplate);
    EXPECT_EQ(statuses["e"], M3dView::kDormant);
    TestLocator::drawn.clear();
    set(hidden, "visibility", 1);
    render();
    EXPECT_THAT(TestLocator::drawn, ElementsAre("a", "b", "inHidden", "c", "e", "lastA"));
}

// Fault: a templated mesh hides what is behind it, or is not seen at all.
TEST_F(ViewportTest, TemplatedMeshesAreWireframes) {
    openOrtho();
    if (IsSkipped()) return;
    Node& plate = makeMesh("plate", host::mesh::polyCube({.width = 2, .height = 2}));
    set(*plate.parent, "template", 1);
    render();
    const auto picture = view->picture();
    EXPECT_EQ(picture.at(50, 50)[0], 0);
    EXPECT_EQ(picture.at(45, 45)[0], 0);
    EXPECT_GE(litPixels().size(), 70u) << "four edges of 20 pixels each";
    EXPECT_LE(litPixels().size(), 90u);
}

struct LeakCase {
    const char* what;
    void (*leak)();
};

void PrintTo(const LeakCase& c, std::ostream* out) { *out << c.what; }

class Leak : public ViewportTest, public testing::WithParamInterface<LeakCase> {};

// Fault: what one plug-in leaves behind in GL spoils the locators, meshes and frames that follow.
TEST_P(Leak, DoesNotReachOthers) {
    openOrtho();
    if (IsSkipped()) return;
    TestLocator::draws["leaky"] = [](DrawCall) { GetParam().leak(); };
    make("testLocator", "leaky");
    makePoint("point", 1.25, 0.75, 0, red);
    makeMesh("plate", host::mesh::polyCube({.width = 0.1, .height = 0.1, .depth = 0}));
    set3(*scene.findNode("plate")->dag()->parent, "translate", 0.05, 0.05, 0);
    for (int frame = 0; frame < 2; ++frame) {
        render();
        EXPECT_THAT(litPixels(), ElementsAre("62,42:255,0,0", "50,49:102,102,102")) << "frame " << frame;
    }
    EXPECT_THAT(errors, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Cases, Leak,
                         testing::Values(LeakCase{"capabilities",
                                                  [] {
                                                      glEnable(GL_BLEND);
                                                      glBlendFunc(GL_ZERO, GL_ZERO);
                                                      glEnable(GL_SCISSOR_TEST);
                                                      glScissor(0, 0, 1, 1);
                                                      glEnable(GL_CULL_FACE);
                                                      glCullFace(GL_FRONT_AND_BACK);
                                                      glDepthFunc(GL_NEVER);
                                                      glColorMask(0, 0, 0, 0);
                                                      glViewport(0, 0, 1, 1);
                                                  }},
                                         LeakCase{"matrices",
                                                  [] {
                                                      glMatrixMode(GL_PROJECTION);
                                                      glPushMatrix();
                                                      glScaled(2, 2, 2);
                                                      glMatrixMode(GL_MODELVIEW);
                                                      for (int i = 0; i < 5; ++i) glPushMatrix();
                                                      glLoadIdentity();
                                                      glMatrixMode(GL_TEXTURE);
                                                  }},
                                         LeakCase{"too many pops",
                                                  [] {
                                                      glPopMatrix();
                                                      for (int i = 0; i < 3; ++i) glPopAttrib();
                                                      for (int i = 0; i < 3; ++i) glPopClientAttrib();
                                                      glEnable(GL_LIGHTING);
                                                      glColorMask(0, 0, 0, 0);
                                                  }},
                                         LeakCase{"pushed attributes",
                                                  [] {
                                                      for (int i = 0; i < 5; ++i) glPushAttrib(GL_ALL_ATTRIB_BITS);
                                                      for (int i = 0; i < 5; ++i)
                                                          glPushClientAttrib(GL_CLIENT_ALL_ATTRIB_BITS);
                                                      glDisable(GL_DEPTH_TEST);
                                                      glPointSize(8);
                                                  }},
                                         LeakCase{"glBegin without glEnd",
                                                  [] {
                                                      glBegin(GL_TRIANGLES);
                                                      glVertex3d(0, 0, 0);
                                                  }},
                                         LeakCase{"framebuffer", [] { glBindFramebuffer(GL_FRAMEBUFFER, 0); }},
                                         LeakCase{"open display list", [] { glNewList(glGenLists(1), GL_COMPILE); }},
                                         LeakCase{"program, arrays and buffer",
                                                  [] {
                                                      const char* text =
                                                          "void main() { gl_FragColor = vec4(0, 1, 0, 1); }";
                                                      const GLuint shader = glCreateShader(GL_FRAGMENT_SHADER),
                                                                   program = glCreateProgram();
                                                      glShaderSource(shader, 1, &text, nullptr);
                                                      glCompileShader(shader);
                                                      glAttachShader(program, shader);
                                                      glLinkProgram(program);
                                                      glUseProgram(program);
                                                      GLuint buffer = 0, array = 0;
                                                      glGenVertexArrays(1, &array);
                                                      glBindVertexArray(array);
                                                      glGenBuffers(1, &buffer);
                                                      glBindBuffer(GL_ARRAY_BUFFER, buffer);
                                                      for (GLuint i = 0; i < 4; ++i) {
                                                          glVertexAttribPointer(i, 3, GL_DOUBLE, 0, 0, nullptr);
                                                          glEnableVertexAttribArray(i);
                                                      }
                                                  }},
                                         LeakCase{"texture",
                                                  [] {
                                                      GLuint texture = 0;
                                                      const unsigned char black[4] = {};
                                                      glGenTextures(1, &texture);
                                                      glActiveTexture(GL_TEXTURE1);
                                                      glBindTexture(GL_TEXTURE_2D, texture);
                                                      glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 1, 1, 0, GL_RGBA,
                                                                   GL_UNSIGNED_BYTE, black);
                                                      glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
                                                      glEnable(GL_TEXTURE_2D);
                                                  }},
                                         LeakCase{"the view's own begin and port", [] {
                                                      M3dView view = M3dView::active3dView();
                                                      EXPECT_FALSE(view.endGL()) << "ended the frame's own beginGL";
                                                      EXPECT_TRUE(view.beginGL());
                                                      EXPECT_TRUE(view.pushViewport(0, 0, 5, 5));
                                                  }}));

// Fault: an exception ends the frame or the process, or nobody learns which node is at fault.
TEST_F(ViewportTest, ReportsNodesThatFail) {
    openOrtho();
    if (IsSkipped()) return;
    TestLocator::draws["throws"] = [](DrawCall) { throw std::runtime_error("no texture"); };
    TestLocator::draws["throwsOddly"] = [](DrawCall) { throw 1; };
    TestLocator::draws["badCall"] = [](DrawCall) { glEnable(0xffff); };
    for (const char* name : {"throws", "throwsOddly", "badCall"}) make("testLocator", name);
    makePoint("point", 1.25, 0.75, 0, red);
    render();
    EXPECT_THAT(litPixels(), ElementsAre("62,42:255,0,0"));
    EXPECT_THAT(errors,
                ElementsAre(testing::AllOf(HasSubstr("throws"), HasSubstr("no texture")), HasSubstr("throwsOddly")));
    EXPECT_THAT(warnings, ElementsAre(testing::AllOf(HasSubstr("badCall"), HasSubstr("GL_INVALID_ENUM"))));
    render();
    EXPECT_EQ(warnings.size(), 1u) << "the same GL error was told again";
}

// Fault: a node that an earlier draw deleted is drawn, and memory that is gone is read.
TEST_F(ViewportTest, DrawsMayDeleteNodes) {
    openOrtho();
    if (IsSkipped()) return;
    TestLocator::draws["deletes"] = [this](DrawCall) {
        scene.deleteNodes({scene.findNode("victim")});
        scene.undo.clear();
    };
    make("testLocator", "deletes");
    make("testLocator", "victim");
    render();
    EXPECT_THAT(TestLocator::drawn, ElementsAre("deletes"));
}

// Fault: a picture of nothing that is called complete.
TEST_F(ViewportTest, TellsWhyItCannotDraw) {
    openOrtho();
    if (IsSkipped()) return;
    std::string error;
    Node& camera = *view->camera();
    EXPECT_FALSE(view->setCamera(*camera.parent));
    set(camera, "nearClipPlane", 20);
    set(camera, "farClipPlane", 10);
    EXPECT_FALSE(view->render(&error));
    EXPECT_THAT(error, HasSubstr("eyeShape"));
    scene.deleteNodes({&camera});
    EXPECT_EQ(view->camera(), scene.findNode("perspShape"));
    scene.rename(*scene.findNode("perspShape"), "other");
    EXPECT_FALSE(view->render(&error));
    EXPECT_THAT(error, HasSubstr("no camera"));
    EXPECT_FALSE(host::viewport::Viewport::create(0, 10, &error));
    EXPECT_THAT(error, HasSubstr("at least one pixel"));
    EXPECT_EQ(host::viewport::Viewport::active(), view.get());
}

} // namespace
