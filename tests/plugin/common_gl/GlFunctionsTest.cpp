#include "Common/GlFunctions.h"
#include "Common/ShaderProgram.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

namespace {

using namespace orvo;
using testing::HasSubstr;

/// A driver with one program of one fragment stage, whose link and validation say what a case asks for.
struct FakeDriver {
    std::string linkLog{}, validateLog{}, compileLog{};
    bool linkable = true, valid = true, compilable = true;
    std::string log{};
    bool compiled = false, linked = false, validated = false;

    GlFunctions table() {
        GlFunctions t;
        t.createProgram = [] { return 7u; };
        t.createShader = [](GLenum) { return 3u; };
        t.compileShader = [this](GLuint) { compiled = compilable; };
        t.linkProgram = [this](GLuint) { linked = linkable && compiled, log = linkLog; };
        t.validateProgram = [this](GLuint) { validated = linked && valid, log = validateLog; };
        t.getProgramiv = [this](GLuint, GLenum name, GLint* value) {
            *value = name == GL_ATTACHED_SHADERS  ? 1
                     : name == GL_LINK_STATUS     ? linked
                     : name == GL_VALIDATE_STATUS ? validated
                     : name == GL_INFO_LOG_LENGTH ? static_cast<GLint>(log.size() + 1)
                                                  : 0;
        };
        t.getAttachedShaders = [](GLuint, GLsizei, GLsizei* count, GLuint* shaders) { *count = 1, *shaders = 3; };
        t.getShaderiv = [this](GLuint, GLenum name, GLint* value) {
            *value = name == GL_COMPILE_STATUS ? compiled : static_cast<GLint>(compileLog.size() + 1);
        };
        t.getProgramInfoLog = [this](GLuint, GLsizei, GLsizei*, GLchar* text) { std::strcpy(text, log.c_str()); };
        t.getShaderInfoLog = [this](GLuint, GLsizei, GLsizei*, GLchar* text) { std::strcpy(text, compileLog.c_str()); };
        return permissive(t);
    }
};

struct LinkCase {
    const char* name;
    FakeDriver driver;
    bool valid;
    const char* log;
    friend void PrintTo(const LinkCase& c, std::ostream* out) { *out << c.name; }
};

class PermissiveLinkTest : public testing::TestWithParam<LinkCase> {};

// Fault: a good program refused because of what one vendor's driver says, a warning swallowed, or a reason lost.
TEST_P(PermissiveLinkTest, EveryDriverAnswersAlike) {
    FakeDriver driver = GetParam().driver;
    const GlFunctionsScope scope(driver.table());
    const ShaderProgram program("text", GL_FRAGMENT_SHADER, false);
    EXPECT_EQ(program.isValid(), GetParam().valid);
    EXPECT_EQ(program.infoLog(), GetParam().log);
}

INSTANTIATE_TEST_SUITE_P(
    Drivers, PermissiveLinkTest,
    testing::Values(
        LinkCase{"Silent", {}, true, ""},
        LinkCase{"ValidationChatter", {.validateLog = "Validation successful.\n"}, true, ""},
        LinkCase{"LinkChatter", {.linkLog = "Vertex shader(s) linked, fragment shader(s) linked.\n \n"}, true, ""},
        LinkCase{"Warning",
                 {.linkLog = "Fragment shader(s) linked.\nWARNING: 0:3: unused\n", .validateLog = "No errors."},
                 true,
                 "WARNING: 0:3: unused\n"},
        LinkCase{"LinkError", {.linkLog = "no main", .linkable = false}, false, "no main"},
        LinkCase{"CompileError",
                 {.linkLog = "not compiled", .compileLog = "0:1: syntax error", .compilable = false},
                 false,
                 "not compiled\nfragment shader:\n0:1: syntax error"},
        LinkCase{"InvalidOnly", {.validateLog = "too many units", .valid = false}, false, "too many units"}),
    [](const auto& info) { return std::string(info.param.name); });

// Fault: a caller with a short buffer overrun, or the driver's own log hidden after an explicit validation.
TEST(PermissiveLog, IsCutToTheBufferAndEndsWithValidation) {
    FakeDriver driver{.linkLog = "warning", .validateLog = "driver's"};
    const GlFunctions table = driver.table();
    table.linkProgram(7);
    char text[5] = "####";
    GLsizei length = 0;
    table.getProgramInfoLog(7, 4, &length, text);
    EXPECT_STREQ(text, "war");
    EXPECT_EQ(length, 3);
    table.validateProgram(7);
    char whole[32] = "";
    table.getProgramInfoLog(7, 32, nullptr, whole);
    EXPECT_STREQ(whole, "driver's");
}

// Fault: a call through a missing entry point, where no context is current, ends the host.
TEST(NoContext, TheTableIsHarmless) {
    const GlFunctionsScope scope{GlFunctions{}};
    bool found = false;
    ShaderProgram program("a", "b", false, &found);
    EXPECT_FALSE(program.isValid());
    EXPECT_EQ(program.infoLog(), "");
    EXPECT_EQ(program.uniformLocation("u"), -1);
    EXPECT_EQ(program.attributeLocation("a"), -1);
    program.setUniformF("u", 1.0f);
}

} // namespace
