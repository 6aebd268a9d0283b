// Clouds as the plug-in draws them, from buffers, beside the plain drawing of the same clouds.
#include "PlainCloudDraw.h"
#include "PluginScene.h"
#include "RandomClouds.h"

#include "kit/Places.h"
#include "viewport/GlContext.h"
#include "viewport/GlState.h"
#include "viewport/OffscreenTarget.h"

#include <EGL/egl.h>
#include <gtest/gtest.h>

#include <algorithm>

using namespace orvo;
using host::viewport::GlContext;
using host::viewport::OffscreenTarget;

namespace {

constexpr int width = 192, height = 108;

class CloudDraw : public PluginScene {
protected:
    CloudDraw() {
        makeToolsRoot(orvo::test::shaders());
        shading_.enableSelfShadow = true;
        shading_.sunDir = {0.6, 0.64, 0.48};
        settings_[0].spriteSize = 200;
        settings_[1] = {.spriteSize = 120, .groundShadowOffset = 30, .enableGroundFade = true};
        for (std::uint32_t i = 0; i < 4; ++i) {
            const CloudShapeSet set = randomCloud(12, 60 + i).set;
            centres_.push_back(set.boundCentre);
            geoms_.push_back(GenerateSprites(set, 3000.0, 20000.0, i != 3, shading_.sunDir, false, 0, 0));
            EXPECT_GT(geoms_.back()->numSprites, 50);
        }
    }
    void SetUp() override {
        std::string error;
        context_ = GlContext::create(&error);
        if (!context_) GTEST_SKIP() << error;
    }
    ~CloudDraw() override {
        if (context_) context_->makeCurrent();
    }

    /// Four unlike clouds, of which the last one is without shadow data.
    std::vector<CloudToDraw> clouds() {
        std::vector<CloudToDraw> list;
        for (std::size_t i = 0; i < geoms_.size(); ++i)
            list.push_back({.settings = settings_[i % 2],
                            .geom = *geoms_[i],
                            .sprites = sprites_[i],
                            .setCentre = centres_[i],
                            .domeOffset = Vector3{double(i) * 40000.0 - 60000.0, 0, -30000.0 * double(i)},
                            .opacity = 1.0 - 0.2 * double(i),
                            .depthTest = i == 2,
                            .wireFrame = i == 1});
        return list;
    }

    /// What the current context shows after `draw`, from an eye.
    template <class Draw>
    static std::vector<unsigned char> picture(const Vector3& eye, Draw&& draw) {
        const auto target = OffscreenTarget::create(width, height);
        target->bind();
        glViewport(0, 0, width, height);
        host::viewport::setDefaultState();
        glClearColor(0.1f, 0.2f, 0.4f, 1);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        glFrustum(-60, 60, -33.75, 33.75, 100, 1e7);
        glMatrixMode(GL_MODELVIEW);
        glLoadIdentity();
        glTranslated(-eye.x, -eye.y, -eye.z);
        draw();
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
        const auto drawn = target->readPixels();
        return {drawn.at(0, 0), drawn.at(0, 0) + width * height * 4};
    }
    std::vector<unsigned char> drawn(const Vector3& eye, const std::function<bool()>& mayLag = {}) {
        return picture(eye, [&] {
            EXPECT_TRUE(renderer_.prepare(shading_));
            renderer_.draw(clouds(), shading_, eye, mayLag);
        });
    }
    std::vector<unsigned char> plain(const Vector3& eye) {
        return picture(eye, [&] {
            plain::CloudSpriteRenderer renderer;
            EXPECT_TRUE(renderer.prepare(shading_));
            for (const CloudToDraw& cloud : clouds()) renderer.draw(cloud, shading_, eye);
        });
    }
    /// Every channel within one step; and the clouds are to be seen at all.
    static void expectAlike(const std::vector<unsigned char>& a, const std::vector<unsigned char>& b) {
        int off = 0, covered = 0;
        for (std::size_t i = 0; i < a.size(); ++i) {
            off += std::abs(a[i] - b[i]) > 1;
            covered += i % 4 == 0 && a[i] > 60;
        }
        EXPECT_EQ(off, 0);
        EXPECT_GT(covered, width * height / 10);
    }

    static int buffers() {
        const auto isBuffer = reinterpret_cast<GLboolean (*)(GLuint)>(eglGetProcAddress("glIsBuffer"));
        int count = 0;
        for (GLuint name = 1; name < 1000; ++name) count += isBuffer(name) == GL_TRUE;
        return count;
    }

    CloudShadingParams shading_;
    CloudSettings settings_[2];
    std::vector<Vector3> centres_;
    std::vector<std::unique_ptr<ParticleCloudGeom>> geoms_;
    std::unique_ptr<GlContext> context_; ///< to which the following belong
    CloudSpriteRenderer renderer_;
    CloudSprites sprites_[4];
};

const Vector3 front{0, 0, 160000}, aside{20000, 3000, 150000}, closer{-30000, 0, 90000};

} // namespace

// Faults: an attribute from the wrong place of a buffer, a uniform or a state that stays from the cloud before, sprites
// in the order of another eye, or a new cloud with the vertices of the old one.
TEST_F(CloudDraw, LooksLikeThePlainDrawing) {
    expectAlike(drawn(front), plain(front));
    expectAlike(drawn(front), plain(front));
    expectAlike(drawn(aside), plain(aside));
    shading_.enableSelfShadow = false;
    expectAlike(drawn(aside), plain(aside));
    std::swap(geoms_[0], geoms_[1]);
    for (CloudSprites& sprites : sprites_) sprites = {};
    expectAlike(drawn(aside), plain(aside));
}

// Faults: an order that is never right for an eye that has come to rest, or that asks for draws without end; sorting at
// once where another draw follows; a late order where none does.
TEST_F(CloudDraw, OrdersAreRightWhenTheEyeRests) {
    drawn(front);
    for (const Vector3& eye : {front + Vector3{30, 0, 0}, closer}) {
        int asked = 0, draws = 1;
        const auto follows = [&] { return ++asked, true; };
        drawn(eye, follows);
        EXPECT_EQ(asked, 1);
        std::vector<unsigned char> last;
        for (int before = 0; before != asked && draws < 20; ++draws) {
            before = asked;
            last = drawn(eye, follows);
        }
        EXPECT_LT(draws, 20);
        expectAlike(last, plain(eye));
        expectAlike(drawn(aside, [] { return false; }), plain(aside));
    }
}

// Faults: a picture that lacks clouds, or a crash, where the driver has no buffer objects.
TEST_F(CloudDraw, DrawsWithoutBuffersWhereThereAreNone) {
    GlFunctions table = gl();
    table.genBuffers = GlFunctions().genBuffers;
    const GlFunctionsScope scope(table);
    expectAlike(drawn(front), plain(front));
    EXPECT_EQ(buffers(), 0);
}

// Faults: buffers that are used, or deleted, in a context to which their names mean something else; buffers that nobody
// deletes.
TEST_F(CloudDraw, KeepsBuffersInTheirContext) {
    drawn(front);
    EXPECT_EQ(buffers(), 8);
    sprites_[0] = {};
    EXPECT_EQ(buffers(), 6);
    const auto other = GlContext::create();
    ASSERT_TRUE(other);
    // Names of others, which are those of the first context's clouds.
    const auto genBuffers = reinterpret_cast<void (*)(GLsizei, GLuint*)>(eglGetProcAddress("glGenBuffers"));
    const auto bindBuffer = reinterpret_cast<void (*)(GLenum, GLuint)>(eglGetProcAddress("glBindBuffer"));
    GLuint names[8];
    genBuffers(8, names);
    for (const GLuint name : names) bindBuffer(GL_ARRAY_BUFFER, name);
    sprites_[1] = {};
    EXPECT_EQ(buffers(), 8);
    {
        CloudSpriteRenderer there;
        const auto seen = picture(front, [&] {
            EXPECT_TRUE(there.prepare(shading_));
            there.draw(clouds(), shading_, front);
        });
        expectAlike(seen, plain(front));
        EXPECT_EQ(buffers(), 16);
        for (CloudSprites& sprites : sprites_) sprites = {};
        EXPECT_EQ(buffers(), 8);
    }
    context_->makeCurrent();
    drawn(front);
    EXPECT_EQ(buffers(), 8) << "those of the clouds that ended elsewhere are gone";
}

// Faults: GL state that others had set and that is another one after the clouds.
TEST_F(CloudDraw, LeavesTheStateAsItWas) {
    const auto genBuffers = reinterpret_cast<void (*)(GLsizei, GLuint*)>(eglGetProcAddress("glGenBuffers"));
    const auto integer = [](GLenum name) {
        GLint value = -1;
        glGetIntegerv(name, &value);
        return value;
    };
    picture(front, [&] {
        EXPECT_TRUE(renderer_.prepare(shading_));
        GLuint names[2];
        genBuffers(2, names);
        gl().bindBuffer(GL_ARRAY_BUFFER, names[0]);
        gl().bindBuffer(GL_ELEMENT_ARRAY_BUFFER, names[1]);
        glEnableClientState(GL_NORMAL_ARRAY);
        glBlendFunc(GL_ZERO, GL_SRC_COLOR);
        glDepthFunc(GL_GREATER);
        const GLenum questions[] = {GL_ARRAY_BUFFER_BINDING,
                                    GL_ELEMENT_ARRAY_BUFFER_BINDING,
                                    GL_NORMAL_ARRAY,
                                    GL_BLEND,
                                    GL_BLEND_SRC,
                                    GL_BLEND_DST,
                                    GL_DEPTH_TEST,
                                    GL_DEPTH_WRITEMASK,
                                    GL_DEPTH_FUNC,
                                    GL_CURRENT_PROGRAM,
                                    GL_TEXTURE_BINDING_2D,
                                    GL_POLYGON_MODE,
                                    GL_ATTRIB_STACK_DEPTH,
                                    GL_CLIENT_ATTRIB_STACK_DEPTH,
                                    GL_MODELVIEW_STACK_DEPTH};
        std::vector<GLint> before;
        for (const GLenum question : questions) before.push_back(integer(question));
        renderer_.draw(clouds(), shading_, front);
        for (std::size_t i = 0; i < before.size(); ++i)
            EXPECT_EQ(integer(questions[i]), before[i]) << std::hex << questions[i];
        const auto attribiv =
            reinterpret_cast<void (*)(GLuint, GLenum, GLint*)>(eglGetProcAddress("glGetVertexAttribiv"));
        for (GLuint i = 0; i < 16; ++i) {
            GLint enabled = -1;
            attribiv(i, GL_VERTEX_ATTRIB_ARRAY_ENABLED, &enabled);
            EXPECT_EQ(enabled, 0) << i;
        }
        glDisableClientState(GL_NORMAL_ARRAY);
    });
}
