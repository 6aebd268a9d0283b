#include "viewport/GlContext.h"
#include "viewport/OffscreenTarget.h"

#include <GL/gl.h>
#include <GL/glext.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <thread>

namespace {

using namespace host::viewport;
using testing::ElementsAre;
using testing::HasSubstr;

std::vector<int> pixel(const Picture& picture, int x, int y) { return {picture.at(x, y), picture.at(x, y) + 4}; }

class GlTest : public testing::Test {
protected:
    void SetUp() override {
        context = GlContext::create(&error);
        if (!context) GTEST_SKIP() << error;
    }
    std::string error;
    std::unique_ptr<GlContext> context;
};

// Fault: a machine without OpenGL that crashes or gives an unexplained null.
TEST(NoGl, IsToldClearly) {
    setenv("ORVOSKY_NO_GL", "1", 1);
    std::string error;
    EXPECT_EQ(GlContext::create(&error), nullptr);
    EXPECT_THAT(error, testing::StartsWith("No OpenGL context: "));
    EXPECT_EQ(GlContext::create(), nullptr);
    unsetenv("ORVOSKY_NO_GL");
    EXPECT_EQ(OffscreenTarget::create(4, 4, &error), nullptr);
    EXPECT_THAT(error, HasSubstr("No OpenGL context is current"));
}

// Fault: a core-profile context, in which the fixed-function calls of a viewport do nothing but raise errors.
TEST_F(GlTest, IsACompatibilityContext) {
    EXPECT_TRUE(context->isCurrent());
    EXPECT_THAT(context->description(), HasSubstr(reinterpret_cast<const char*>(glGetString(GL_RENDERER))));
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glPopAttrib();
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

// Fault: the end of one context takes down its neighbours, which share the display; or leaves a dead one current.
TEST_F(GlTest, ContextsEndOneByOne) {
    auto second = GlContext::create(&error);
    ASSERT_TRUE(second) << error;
    EXPECT_FALSE(context->isCurrent());
    context.reset();
    EXPECT_TRUE(second->isCurrent());
    EXPECT_NE(glGetString(GL_VERSION), nullptr);
    bool current = true;
    std::thread([&] { current = second->makeCurrent(); }).join();
    EXPECT_FALSE(current) << "one context was current on two threads";
    second->release();
    EXPECT_EQ(glGetString(GL_VERSION), nullptr);
    std::thread([&] { current = second->makeCurrent() && second->isCurrent(), second->release(); }).join();
    EXPECT_TRUE(current);
    second.reset();
    EXPECT_TRUE(GlContext::create(&error)) << error;
}

// Fault: pixels upside down, another target read, or the caller's pixel-store state used for (or lost by) the read.
TEST_F(GlTest, ReadsBackWhatWasDrawn) {
    const auto target = OffscreenTarget::create(5, 3, &error), other = OffscreenTarget::create(5, 3, &error);
    ASSERT_TRUE(target && other) << error;
    target->bind();
    glClearColor(0.2f, 0.4f, 0.6f, 0.8f);
    glClear(GL_COLOR_BUFFER_BIT);
    glEnable(GL_SCISSOR_TEST);
    glScissor(1, 2, 1, 1); // column 1 of the top row: GL counts rows from the bottom
    glClearColor(1, 0, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    glDisable(GL_SCISSOR_TEST);
    other->bind();
    glClearColor(0, 1, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    glPixelStorei(GL_PACK_ROW_LENGTH, 9);
    const Picture picture = target->readPixels();
    EXPECT_THAT(pixel(picture, 1, 0), ElementsAre(255, 0, 0, 255));
    EXPECT_THAT(pixel(picture, 4, 2), ElementsAre(51, 102, 153, 204));
    EXPECT_THAT(pixel(picture, 1, 2), ElementsAre(51, 102, 153, 204));
    GLint rowLength = 0, bound = 0, outer = -1;
    glGetIntegerv(GL_PACK_ROW_LENGTH, &rowLength);
    EXPECT_EQ(rowLength, 9);
    other->unbind();
    glGetIntegerv(GL_FRAMEBUFFER_BINDING, &bound);
    target->unbind();
    glGetIntegerv(GL_FRAMEBUFFER_BINDING, &outer);
    EXPECT_NE(bound, 0);
    EXPECT_EQ(outer, 0) << "the outer binding was not restored";
}

// Fault: no depth buffer, so that what is behind covers what is in front.
TEST_F(GlTest, TargetTestsDepth) {
    const auto target = OffscreenTarget::create(2, 2, &error);
    ASSERT_TRUE(target) << error;
    target->bind();
    GLint bits = 0;
    glGetFramebufferAttachmentParameteriv(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_FRAMEBUFFER_ATTACHMENT_DEPTH_SIZE,
                                          &bits);
    EXPECT_EQ(bits, 24);
    glViewport(0, 0, 2, 2);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glEnable(GL_DEPTH_TEST);
    for (const auto& [z, green] : {std::pair{-0.5f, 1.0f}, std::pair{0.5f, 0.0f}}) {
        glColor4f(1, green, 0, 1);
        glBegin(GL_QUADS);
        glVertex3f(-1, -1, z), glVertex3f(1, -1, z), glVertex3f(1, 1, z), glVertex3f(-1, 1, z);
        glEnd();
    }
    EXPECT_THAT(pixel(target->readPixels(), 1, 1), ElementsAre(255, 255, 0, 255));
}

// Fault: a size that no driver has leads to a GL error or an empty picture later, instead of a clear text now.
TEST_F(GlTest, RefusesSizesBeyondTheDriver) {
    EXPECT_FALSE(OffscreenTarget::create(std::numeric_limits<int>::max(), 4, &error));
    EXPECT_THAT(error, HasSubstr("limit"));
    EXPECT_FALSE(OffscreenTarget::create(4, 0, &error));
    EXPECT_THAT(error, HasSubstr("at least one pixel"));
}

} // namespace
