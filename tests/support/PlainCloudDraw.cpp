#include "PlainCloudDraw.h"

#include "Common/GlStateScope.h"
#include "SkyTool/skies/ViewQuad.h"

#include <algorithm>
#include <vector>

namespace orvo::plain {
namespace {

constexpr const char* fragmentFile = "ParticleCloudSprite.frag";
const SkyShaderTexts fixedDirShaders{"ParticleCloud", "ParticleCloudSpriteFixedDir.vert", fragmentFile, true,
                                     "sprite fixed dir shader"};
const SkyShaderTexts shadowCubeShaders{"ParticleCloud", "ParticleCloudSpriteShadowCube.vert", fragmentFile, true,
                                       "sprite shadow cube shader"};

/// A soft round puff, for clouds without a texture.
bool uploadPuff(TextureHandle& texture, const std::string&) {
    constexpr int size = 64;
    std::vector<unsigned char> pixels(size * size * 4, 255);
    for (int y = 0; y < size; ++y)
        for (int x = 0; x < size; ++x) {
            const double u = (x + 0.5) / size * 2.0 - 1.0, v = (y + 0.5) / size * 2.0 - 1.0;
            const double inside = std::max(0.0, 1.0 - (u * u + v * v));
            pixels[static_cast<std::size_t>(y * size + x) * 4 + 3] =
                static_cast<unsigned char>(inside * inside * 255.0 + 0.5);
        }
    return uploadTexture2DRgba(texture, size, size, pixels.data(), {.mipmaps = true});
}

/// The vertex arrays of a cloud, enabled while it is drawn.
class VertexArrays {
public:
    explicit VertexArrays(const ShaderProgram& program) : program_(program) {}
    ~VertexArrays() {
        for (const GLuint location : enabled_) gl().disableVertexAttribArray(location);
    }
    VertexArrays(const VertexArrays&) = delete;
    VertexArrays& operator=(const VertexArrays&) = delete;
    void add(const char* name, int components, const std::vector<float>& values) {
        const GLint location = gl().getAttribLocation(program_.handle(), name);
        if (location == -1 || values.empty()) return;
        enabled_.push_back(static_cast<GLuint>(location));
        gl().enableVertexAttribArray(enabled_.back());
        gl().vertexAttribPointer(enabled_.back(), components, GL_FLOAT, GL_FALSE, 0, values.data());
    }

private:
    const ShaderProgram& program_;
    std::vector<GLuint> enabled_;
};

/// What the vertex stage reads.
void setVertexUniforms(ShaderProgram& program, const CloudToDraw& cloud, const CloudShadingParams& shading,
                       const Vector3& eyePoint) {
    const CloudSettings& s = cloud.settings;
    setUniform(program, "eyePoint", eyePoint);
    setUniform(program, "spriteSize", s.spriteSize * 100.0);
    setUniform(program, "sunDir", shading.sunDir);
    setUniform(program, "cloudCenter", cloud.setCentre);
    setUniform(program, "domeoffset", cloud.domeOffset);
    setUniform(program, "domeopacity", cloud.opacity);
    setUniform(program, "sunShadowAmount", shading.sunShadowAmount);
    setUniform(program, "groundShadowAmount", shading.groundShadowAmount);
    setUniform(program, "groundShadowOffset", s.groundShadowOffset * 100.0);
    // A fade that is off still goes through smoothstep, which wants its edges apart.
    setUniform(program, "enableGroundFade", s.enableGroundFade ? 1.0 : 0.0);
    setUniform(program, "groundFadeStart", s.enableGroundFade ? s.groundFadeStart * 100.0 : 1.0);
    setUniform(program, "groundFadeEnd", s.enableGroundFade ? s.groundFadeEnd * 100.0 : 0.0);
    setUniform(program, "selfShadowAmount", shading.selfShadowAmount);
    // The optical depth is in metres of full cloud; the falloff holds for a hundred of them, as in exported data.
    setUniform(program, "selfShadowFalloff", shading.selfShadowFalloff / 100.0);
}

/// What the pixel stage reads.
void setPixelUniforms(ShaderProgram& program, const CloudShadingParams& shading) {
    program.setUniformI("spriteTexture", 0);
    setUniform(program, "sunColour", shading.sunColour);
    setUniform(program, "ambientColour", shading.lightingAmbient);
    setUniform(program, "cloudColour", shading.cloudColour);
    setUniform(program, "brightness", shading.shadingBrightness);
    setUniform(program, "cloudOpacity", shading.shadingOpacity);
    setUniform(program, "spriteShadowAmount", shading.spriteShadowAmount);
    setUniform(program, "sunGlowAmount", shading.lightingSunGlowAmount);
    setUniform(program, "sunGlowExponent", 200.0 / std::max(shading.lightingSunGlowHaloSize, 0.1));
    setUniform(program, "wireFrame", 0.0);
}

void setState(const CloudToDraw& cloud) {
    glEnable(GL_BLEND);
    glBlendFunc(GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
    glDepthMask(GL_FALSE);
    cloud.depthTest ? glEnable(GL_DEPTH_TEST) : glDisable(GL_DEPTH_TEST);
    glDisable(GL_ALPHA_TEST);
    glDisable(GL_LIGHTING);
    glDisable(GL_CULL_FACE);
    glDisable(GL_POLYGON_SMOOTH);
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
}

} // namespace

std::vector<GLuint> verticesBackToFront(const ParticleCloudGeom& geom, const Vector3& eye) {
    std::vector<std::pair<double, GLuint>> sprites(static_cast<std::size_t>(geom.numSprites));
    for (std::size_t i = 0; i < sprites.size(); ++i) {
        const float* p = &geom.positions[i * 12];
        const Vector3 toSprite = Vector3{p[0], p[1], p[2]} - eye;
        sprites[i] = {-dot(toSprite, toSprite), static_cast<GLuint>(i)};
    }
    std::sort(sprites.begin(), sprites.end());
    std::vector<GLuint> vertices;
    vertices.reserve(sprites.size() * 4);
    for (const auto& [distance, sprite] : sprites)
        for (GLuint corner = 0; corner < 4; ++corner) vertices.push_back(sprite * 4 + corner);
    return vertices;
}

bool CloudSpriteRenderer::prepare(const CloudShadingParams&) {
    if (!texture_) texture_ = sharedTexture(&uploadPuff, "");
    return fixedDir_.get(fixedDirShaders) && shadowCube_.get(shadowCubeShaders) && texture_;
}

void CloudSpriteRenderer::draw(const CloudToDraw& cloud, const CloudShadingParams& shading, const Vector3& eyePoint) {
    if (cloud.geom.numSprites <= 0 || !texture_) return;
    const bool withShadow = !cloud.geom.shadowCube0.empty() && shading.enableSelfShadow;
    ShaderProgram* program = withShadow ? shadowCube_.get(shadowCubeShaders) : fixedDir_.get(fixedDirShaders);
    if (!program) return;

    const GlStateScope state;
    setState(cloud);
    gl().activeTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_2D, texture_->name());
    disableClientArrays();
    {
        VertexArrays arrays(*program);
        arrays.add("in_pos", 3, cloud.geom.positions);
        arrays.add("in_rand", 1, cloud.geom.randoms);
        arrays.add("in_uvcoord", 2, cloud.geom.uvCoords);
        arrays.add("in_opacity", 1, cloud.geom.opacities);
        arrays.add("in_shadowCubeData0", 4, cloud.geom.shadowCube0);
        arrays.add("in_shadowCubeData1", 4, cloud.geom.shadowCube1);
        program->bind();
        setVertexUniforms(*program, cloud, shading, eyePoint);
        setPixelUniforms(*program, shading);
        const std::vector<GLuint> vertices = verticesBackToFront(cloud.geom, eyePoint - cloud.domeOffset);
        const auto count = static_cast<GLsizei>(vertices.size());
        glDrawElements(GL_QUADS, count, GL_UNSIGNED_INT, vertices.data());
        if (cloud.wireFrame) {
            setUniform(*program, "wireFrame", 1.0);
            glPolygonMode(GL_FRONT_AND_BACK, GL_LINE);
            glDrawElements(GL_QUADS, count, GL_UNSIGNED_INT, vertices.data());
        }
    }
    ShaderProgram::unbind();
}

} // namespace orvo::plain
