#include "Common/ShaderProgram.h"

#include "kit/TemporaryFolder.h"
#include "viewport/GlContext.h"
#include "viewport/OffscreenTarget.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
namespace {

using namespace orvo;
using host::viewport::GlContext;
using host::viewport::OffscreenTarget;
using testing::ElementsAre;
using testing::HasSubstr;

const char* const plainVertex = "attribute vec3 in_worldPos; void main() { gl_Position = vec4(in_worldPos, 1.0); }";
const char* const colourFragment = "uniform vec3 colour; void main() { gl_FragColor = vec4(colour, 1.0); }";

/// A driver that notes every call by name and first arguments.
struct Recorder {
    std::vector<std::string> calls;
    GLuint next = 10;

    void note(const std::string& call) { calls.push_back(call); }
    GlFunctions table() {
        GlFunctions t;
        t.createProgram = [this] { return note("createProgram"), next++; };
        t.createShader = [this](GLenum) { return note("createShader"), next++; };
        t.shaderSource = [this](GLuint s, GLsizei n, const GLchar* const* text, const GLint* lengths) {
            note("source " + std::to_string(s) + " " + std::to_string(n) + (lengths ? " lengths " : " ") + *text);
        };
        t.compileShader = [this](GLuint s) { note("compile " + std::to_string(s)); };
        t.getShaderiv = [](GLuint, GLenum, GLint* value) { *value = GL_TRUE; };
        t.attachShader = [this](GLuint, GLuint s) { note("attach " + std::to_string(s)); };
        t.linkProgram = [this](GLuint p) { note("link " + std::to_string(p)); };
        t.deleteShader = [this](GLuint s) { note("deleteShader " + std::to_string(s)); };
        t.deleteProgram = [this](GLuint p) { note("deleteProgram " + std::to_string(p)); };
        t.getUniformLocation = [this](GLuint, const GLchar* name) {
            note(std::string("locate ") + name);
            return std::string(name) == "missing" ? -1 : 4;
        };
        t.uniform1f = [this](GLint location, GLfloat) { note("1f " + std::to_string(location)); };
        t.uniform2i = [this](GLint location, GLint, GLint) { note("2i " + std::to_string(location)); };
        t.uniformMatrix3fv = [this](GLint location, GLsizei n, GLboolean flip, const GLfloat*) {
            note("matrix3 " + std::to_string(location) + " " + std::to_string(n) + (flip ? " transposed" : ""));
        };
        return t;
    }
    std::vector<std::string> take() { return std::exchange(calls, {}); }
};

// Fault: stages from text compiled by the class, attached in the wrong order, or freed in the wrong order or not at
// all.
TEST(ShaderProgramCalls, FromText) {
    Recorder driver;
    const GlFunctionsScope scope(driver.table());
    bool found = false;
    {
        const ShaderProgram program("V", "F", false, &found);
        EXPECT_TRUE(found);
        EXPECT_FALSE(program.vertexStage()->compiled);
        EXPECT_THAT(driver.take(), ElementsAre("createProgram", "createShader", "source 11 1 V", "createShader",
                                               "source 12 1 F", "attach 11", "attach 12", "link 10"));
    }
    EXPECT_THAT(driver.take(), ElementsAre("deleteShader 11", "deleteShader 12", "deleteProgram 10"));
}

// Fault: files found under another case refused, not compiled, or a missing one that leaves half a program.
TEST(ShaderProgramCalls, FromFiles) {
    const orvo::test::TemporaryFolder folder;
    folder.write("Sky.vert", "V");
    folder.write("Sky.frag", "");
    Recorder driver;
    const GlFunctionsScope scope(driver.table());
    bool found = false;
    {
        const ShaderProgram program((folder / "sky.VERT").string(), (folder / "sky.frag").string(), true, &found);
        EXPECT_TRUE(found);
        EXPECT_TRUE(program.fragmentStage()->compiled);
        EXPECT_THAT(driver.take(),
                    ElementsAre("createProgram", "createShader", "source 11 1 V", "compile 11", "createShader",
                                "source 12 1 ", "compile 12", "attach 11", "attach 12", "link 10"));
    }
    driver.take();
    {
        const ShaderProgram program((folder / "sky.vert").string(), (folder / "none.frag").string(), true, &found);
        EXPECT_FALSE(found);
        EXPECT_EQ(program.vertexStage(), nullptr);
    }
    EXPECT_THAT(driver.take(), ElementsAre("createProgram", "deleteProgram 13"));
}

// Fault: a type that is no stage makes a GL object, or loses the value that stands in its place.
TEST(ShaderProgramCalls, OddStageTypeMakesNoObject) {
    Recorder driver;
    const GlFunctionsScope scope(driver.table());
    EXPECT_EQ(ShaderStage(GL_GEOMETRY_SHADER).handle, static_cast<std::uint32_t>(GL_GEOMETRY_SHADER));
    EXPECT_THAT(driver.take(), ElementsAre());
}

// Fault: a location asked for at every frame, a missing uniform remembered or set, a wrong setter or matrix size.
TEST(ShaderProgramCalls, UniformLocationsAreRemembered) {
    Recorder driver;
    const GlFunctionsScope scope(driver.table());
    ShaderProgram program("V", "F", false);
    driver.take();
    program.setUniformF("there", 1.0f);
    program.setUniformI("there", 1, 2);
    program.setUniformF("missing", 1.0f);
    program.setUniformF("missing", 1.0f);
    const float matrix[16] = {};
    program.setUniformMatrix("there", 3, true, matrix);
    program.setUniformMatrix("there", 5, true, matrix);
    program.setUniformF(-1, 1.0f);
    EXPECT_THAT(driver.take(), ElementsAre("locate there", "1f 4", "2i 4", "locate missing", "locate missing",
                                           "matrix3 4 1 transposed"));
}

class ShaderProgramGl : public testing::Test {
protected:
    void SetUp() override {
        context = GlContext::create(&error);
        if (!context) GTEST_SKIP() << error;
        ASSERT_TRUE(glAvailable(&error)) << error;
    }
    std::string error;
    std::unique_ptr<GlContext> context;
};

// Fault: a program from text that this driver refuses, or a uniform or attribute that does not reach the shader. The
// colour 0.2, 0.4, 0.6 is 51, 102, 153 of 255.
TEST_F(ShaderProgramGl, DrawsFromText) {
    ShaderProgram program(plainVertex, colourFragment, false);
    ASSERT_TRUE(program.isValid());
    ASSERT_EQ(program.infoLog(), "");
    EXPECT_EQ(program.attachedShaders().size(), 2u);
    std::string name = "untouched";
    int size = 0;
    GLenum type = 0;
    program.activeUniform(9, name, size, type);
    EXPECT_EQ(name, "untouched");
    while (glGetError() != GL_NO_ERROR) {}
    program.activeUniform(0, name, size, type);
    EXPECT_EQ(name, "colour");
    EXPECT_EQ(type, static_cast<GLenum>(GL_FLOAT_VEC3));
    program.activeAttribute(0, name, size, type);
    EXPECT_EQ(name, "in_worldPos");
    EXPECT_EQ(program.fragmentStage()->source(), colourFragment);

    const auto target = OffscreenTarget::create(4, 4, &error);
    ASSERT_TRUE(target) << error;
    target->bind();
    glViewport(0, 0, 4, 4);
    const double quad[] = {-1, 1, 0, 1, 1, 0, 1, -1, 0, -1, -1, 0};
    const auto place = static_cast<GLuint>(program.attributeLocation("in_worldPos"));
    gl().enableVertexAttribArray(place);
    gl().vertexAttribPointer(place, 3, GL_DOUBLE, GL_FALSE, 0, quad);
    program.bind();
    program.setUniformF("colour", 0.2f, 0.4f, 0.6f);
    program.setUniformF("missing", 1.0f);
    glDrawArrays(GL_QUADS, 0, 4);
    ShaderProgram::unbind();
    const auto picture = target->readPixels();
    EXPECT_THAT(std::vector<int>(picture.at(2, 1), picture.at(2, 1) + 4), ElementsAre(51, 102, 153, 255));
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

// Fault: samplers of two types, both at unit 0 until they are set, make a good program invalid; or the check leaves
// other units or another program in use behind.
TEST_F(ShaderProgramGl, SamplersOfTwoTypesAreValid) {
    const ShaderProgram inUse(plainVertex, colourFragment, false);
    inUse.bind();
    ShaderProgram program(
        plainVertex,
        "uniform samplerCube sky; uniform sampler2D maps[2]; void main() { gl_FragColor = "
        "textureCube(sky, vec3(1.0)) + texture2D(maps[0], vec2(0.5)) + texture2D(maps[1], vec2(0.5)); }",
        false);
    EXPECT_TRUE(program.isValid());
    EXPECT_EQ(program.infoLog(), "");
    GLint current = 0;
    glGetIntegerv(GL_CURRENT_PROGRAM, &current);
    EXPECT_EQ(static_cast<std::uint32_t>(current), inUse.handle());
    for (const char* name : {"sky", "maps[0]", "maps[1]"}) {
        GLint unit = -1;
        gl().getUniformiv(program.handle(), program.uniformLocation(name), &unit);
        EXPECT_EQ(unit, 0) << name;
    }
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    ShaderProgram::unbind();
}

// Fault: a broken shader counted as good, or a log that does not name what is wrong with it.
TEST_F(ShaderProgramGl, BrokenShadersAreNamed) {
    const ShaderProgram program(plainVertex, "void main() { gl_FragColor = nosuchname; }", false);
    EXPECT_FALSE(program.isValid());
    EXPECT_THAT(program.infoLog(), HasSubstr("nosuchname"));
    const ShaderProgram unlinked("varying float a; void main() { gl_Position = vec4(a = 1.0); }",
                                 "varying vec2 a; void main() { gl_FragColor = a.xyxy; }", false);
    EXPECT_FALSE(unlinked.isValid());
    EXPECT_NE(unlinked.infoLog(), "");
}

// Fault: entry points claimed to be there on a thread whose context has gone.
TEST_F(ShaderProgramGl, AvailabilityFollowsTheContext) {
    context->release();
    EXPECT_FALSE(glAvailable(&error));
    EXPECT_THAT(error, HasSubstr("No OpenGL context"));
    const ShaderProgram program(plainVertex, colourFragment, false);
    EXPECT_FALSE(program.isValid());
    EXPECT_TRUE(context->makeCurrent());
    EXPECT_TRUE(glAvailable());
}

} // namespace
