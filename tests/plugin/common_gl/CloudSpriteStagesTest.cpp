// The stages of the particle cloud's shaders against plain C++ twins of the same formulas, in double precision. The
// vertex stage is captured by transform feedback, vertex by vertex.
#include "Common/FileSystem.h"
#include "Common/GlFunctions.h"
#include "Common/Vector3.h"
#include "kit/Places.h"

#include "viewport/GlContext.h"
#include "viewport/OffscreenTarget.h"

#include <EGL/egl.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

namespace {

using orvo::Vector3;

template <class Function>
Function* entry(const char* name) {
    return reinterpret_cast<Function*>(eglGetProcAddress(name));
}

/// One vertex as it goes in.
struct Vertex {
    float pos[3], rand, uv[2], opacity, cube0[4], cube1[4];
};

/// As it comes out: clip position, texture coordinate, sprite blend, shadow, opacity, view vector.
struct Shaded {
    float position[4], texCoord[2], spriteBlend, shadow, opacity, viewVector[3];
};

struct Uniforms {
    Vector3 eyePoint, sunDir, cloudCenter, domeoffset;
    double spriteSize, domeopacity, sunShadowAmount, groundShadowAmount, groundShadowOffset, enableGroundFade,
        groundFadeStart, groundFadeEnd, selfShadowAmount, selfShadowFalloff;
};

double mix(double a, double b, double t) { return a * (1 - t) + b * t; }
double sign(double v) { return v > 0 ? 1 : v < 0 ? -1 : 0; }

/// The vertex stage in double precision; matrices are the identity.
std::array<double, 12> twin(const Vertex& v, const Uniforms& u, bool withCube) {
    const Vector3 centre = Vector3{v.pos[0], v.pos[1], v.pos[2]} + u.domeoffset;
    const Vector3 eyeDir = normalised(centre - u.eyePoint);
    const Vector3 side = normalised(cross(eyeDir, {0, 1, 0}));
    const Vector3 up = cross(side, eyeDir);
    const Vector3 unit = up * (v.uv[1] - 0.5) + side * (v.uv[0] - 0.5);
    const Vector3 corner = unit * u.spriteSize + centre, shading = unit * (u.spriteSize * 0.7) + centre;

    double s = v.uv[0], t = v.uv[1], r = v.rand;
    if (r < 0.5) s = 1 - s;
    r = std::fmod(r, 0.5) * 2;
    if (r < 0.5) t = 1 - t;
    r = std::fmod(r, 0.5) * 2;

    const Vector3 object = shading - (u.cloudCenter + u.domeoffset);
    double g = normalised(object - Vector3{0, u.groundShadowOffset, 0}).y;
    g = std::pow(std::abs(g), 0.25) * sign(g) * 0.5 + 0.5;
    double sun = dot(normalised(object), u.sunDir);
    sun = sun * sun * sign(sun) * 0.5 + 0.5;
    double shadow =
        (sun * u.sunShadowAmount + 1 - u.sunShadowAmount) * (g * u.groundShadowAmount + 1 - u.groundShadowAmount);
    if (withCube) {
        const Vector3 w{unit.x + 0.5, unit.y + 0.5, unit.z + 0.5};
        double z[4];
        for (int i = 0; i < 4; ++i) z[i] = mix(v.cube0[i], v.cube1[i], w.z);
        const double depth = mix(mix(z[0], z[2], w.y), mix(z[1], z[3], w.y), w.x);
        shadow *= std::exp(-u.selfShadowFalloff * depth) * u.selfShadowAmount + 1 - u.selfShadowAmount;
    }
    const double x = std::clamp((object.y - u.groundFadeEnd) / (u.groundFadeStart - u.groundFadeEnd), 0.0, 1.0);
    const double fade = mix(1, x * x * (3 - 2 * x), u.enableGroundFade);
    const Vector3 view = corner - u.eyePoint;
    return {corner.x, corner.y, corner.z, 1, s, t, r, shadow, v.opacity * u.domeopacity * fade, view.x, view.y, view.z};
}

std::string shaderText(const char* name) {
    std::ostringstream text;
    text << std::ifstream(orvo::test::shaders() + "/" + name).rdbuf();
    EXPECT_FALSE(text.str().empty()) << name;
    return text.str();
}

class CloudSpriteVertexStage : public testing::TestWithParam<bool> {
protected:
    void SetUp() override {
        std::string error;
        context_ = host::viewport::GlContext::create(&error);
        ASSERT_TRUE(context_) << error;
        ASSERT_TRUE(orvo::glAvailable());
        target_ = host::viewport::OffscreenTarget::create(1, 1, &error);
        ASSERT_TRUE(target_) << error;
        target_->bind();
    }
    void TearDown() override { target_.reset(); }

    static GLuint link(const std::string& vertexText) {
        auto& gl = orvo::gl();
        const GLuint program = gl.createProgram(), shader = gl.createShader(GL_VERTEX_SHADER);
        const char* text = vertexText.c_str();
        gl.shaderSource(shader, 1, &text, nullptr);
        gl.compileShader(shader);
        gl.attachShader(program, shader);
        const char* const outputs[] = {"gl_Position", "texCoord", "spriteBlend", "shadow", "opacity", "viewVector"};
        entry<void(GLuint, GLsizei, const char* const*, GLenum)>("glTransformFeedbackVaryings")(program, 6, outputs,
                                                                                                GL_INTERLEAVED_ATTRIBS);
        gl.linkProgram(program);
        GLint linked = 0;
        gl.getProgramiv(program, GL_LINK_STATUS, &linked);
        EXPECT_TRUE(linked);
        return program;
    }

    static std::vector<Shaded> run(GLuint program, const std::vector<Vertex>& vertices, const Uniforms& u) {
        auto& gl = orvo::gl();
        gl.useProgram(program);
        const auto real = [&](const char* name, double v) {
            gl.uniform1f(gl.getUniformLocation(program, name), static_cast<float>(v));
        };
        const auto vector = [&](const char* name, const Vector3& v) {
            gl.uniform3f(gl.getUniformLocation(program, name), static_cast<float>(v.x), static_cast<float>(v.y),
                         static_cast<float>(v.z));
        };
        vector("eyePoint", u.eyePoint);
        vector("sunDir", u.sunDir);
        vector("cloudCenter", u.cloudCenter);
        vector("domeoffset", u.domeoffset);
        real("spriteSize", u.spriteSize);
        real("domeopacity", u.domeopacity);
        real("sunShadowAmount", u.sunShadowAmount);
        real("groundShadowAmount", u.groundShadowAmount);
        real("groundShadowOffset", u.groundShadowOffset);
        real("enableGroundFade", u.enableGroundFade);
        real("groundFadeStart", u.groundFadeStart);
        real("groundFadeEnd", u.groundFadeEnd);
        real("selfShadowAmount", u.selfShadowAmount);
        real("selfShadowFalloff", u.selfShadowFalloff);
        const auto attribute = [&](const char* name, int size, const float* first) {
            const GLint location = gl.getAttribLocation(program, name);
            if (location < 0) return;
            gl.enableVertexAttribArray(location);
            gl.vertexAttribPointer(location, size, GL_FLOAT, GL_FALSE, sizeof(Vertex), first);
        };
        attribute("in_pos", 3, vertices[0].pos);
        attribute("in_rand", 1, &vertices[0].rand);
        attribute("in_uvcoord", 2, vertices[0].uv);
        attribute("in_opacity", 1, &vertices[0].opacity);
        attribute("in_shadowCubeData0", 4, vertices[0].cube0);
        attribute("in_shadowCubeData1", 4, vertices[0].cube1);

        GLuint buffer = 0;
        entry<void(GLsizei, GLuint*)>("glGenBuffers")(1, &buffer);
        const auto size = static_cast<GLsizeiptr>(vertices.size() * sizeof(Shaded));
        entry<void(GLenum, GLuint, GLuint)>("glBindBufferBase")(GL_TRANSFORM_FEEDBACK_BUFFER, 0, buffer);
        entry<void(GLenum, GLsizeiptr, const void*, GLenum)>("glBufferData")(GL_TRANSFORM_FEEDBACK_BUFFER, size,
                                                                             nullptr, GL_DYNAMIC_READ);
        glEnable(GL_RASTERIZER_DISCARD);
        entry<void(GLenum)>("glBeginTransformFeedback")(GL_POINTS);
        glDrawArrays(GL_POINTS, 0, static_cast<GLsizei>(vertices.size()));
        entry<void()>("glEndTransformFeedback")();
        glDisable(GL_RASTERIZER_DISCARD);
        glFinish();
        std::vector<Shaded> out(vertices.size());
        entry<void(GLenum, GLintptr, GLsizeiptr, void*)>("glGetBufferSubData")(GL_TRANSFORM_FEEDBACK_BUFFER, 0, size,
                                                                               out.data());
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
        return out;
    }

    std::unique_ptr<host::viewport::GlContext> context_;
    std::unique_ptr<host::viewport::OffscreenTarget> target_;
};

// Fault: any step of the expansion, the texture variety, the three shadows or the ground fade computed otherwise, the
// cube's corners in another order, or fades that apply while they are off.
TEST_P(CloudSpriteVertexStage, AgreesWithItsTwin) {
    const bool withCube = GetParam();
    const GLuint program =
        link(shaderText(withCube ? "ParticleCloudSpriteShadowCube.vert" : "ParticleCloudSpriteFixedDir.vert"));
    std::mt19937 random(20);
    const auto between = [&](double a, double b) { return std::uniform_real_distribution<double>(a, b)(random); };
    for (int round = 0; round < 8; ++round) {
        const Uniforms u{.eyePoint = {between(-400, -300), between(-50, 50), between(200, 300)},
                         .sunDir = orvo::normalised({between(-1, 1), between(0, 1), between(-1, 1)}),
                         .cloudCenter = {between(-20, 20), between(-20, 20), between(-20, 20)},
                         .domeoffset = round % 2 ? Vector3{between(-90, 90), 40, between(-90, 90)} : Vector3{},
                         .spriteSize = between(5, 40),
                         .domeopacity = round < 2 ? 1.0 : between(0, 1),
                         .sunShadowAmount = between(0, 1),
                         .groundShadowAmount = between(0, 1),
                         .groundShadowOffset = between(-30, 30),
                         .enableGroundFade = round % 3 == 0 ? 1.0 : 0.0,
                         .groundFadeStart = 35,
                         .groundFadeEnd = -25,
                         .selfShadowAmount = between(0, 1),
                         .selfShadowFalloff = between(0, 0.5)};
        std::vector<Vertex> vertices;
        for (int i = 0; i < 240; ++i) {
            Vertex v{};
            for (float& p : v.pos) p = static_cast<float>(between(-60, 60));
            // Away from the steps of the mirroring, where float and double may part.
            v.rand = static_cast<float>((i % 8 + between(0.05, 0.95)) / 8.0);
            v.uv[0] = static_cast<float>((i + 1) / 2 % 2);
            v.uv[1] = static_cast<float>(i / 2 % 2);
            v.opacity = static_cast<float>(between(0, 1));
            for (float* cube : {v.cube0, v.cube1})
                for (int k = 0; k < 4; ++k) cube[k] = static_cast<float>(between(0, 9));
            vertices.push_back(v);
        }
        const auto shaded = run(program, vertices, u);
        for (std::size_t i = 0; i < vertices.size(); ++i) {
            const auto expected = twin(vertices[i], u, withCube);
            const float* found = shaded[i].position;
            for (std::size_t k = 0; k < expected.size(); ++k)
                ASSERT_NEAR(found[k], expected[k], 2e-4 * std::max(1.0, std::abs(expected[k])))
                    << "round " << round << ", vertex " << i << ", output " << k;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Programs, CloudSpriteVertexStage, testing::Bool());

} // namespace
