#include "CloudSpriteRenderer.h"

#include "Common/GlStateScope.h"
#include "Common/Paths.h"
#include "SkyTool/skies/ViewQuad.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <functional>
#include <vector>

namespace orvo {
namespace {

constexpr const char* fragmentFile = "ParticleCloudSprite.frag";
const SkyShaderTexts fixedDirShaders{"ParticleCloud", "ParticleCloudSpriteFixedDir.vert", fragmentFile, true,
                                     "sprite fixed dir shader"};
const SkyShaderTexts shadowCubeShaders{"ParticleCloud", "ParticleCloudSpriteShadowCube.vert", fragmentFile, true,
                                       "sprite shadow cube shader"};

/// What a draw may spend on taking and uploading orders when another one will follow.
constexpr std::chrono::microseconds orderBudget{2000};

/// A soft round puff, for clouds without a texture.
bool uploadPuff(TextureHandle& texture, const std::string&) {
    constexpr int size = 64;
    std::vector<unsigned char> pixels(std::size_t{size} * size * 4, 255);
    for (int y = 0; y < size; ++y)
        for (int x = 0; x < size; ++x) {
            const double u = (x + 0.5) / size * 2.0 - 1.0, v = (y + 0.5) / size * 2.0 - 1.0;
            const double inside = std::max(0.0, 1.0 - (u * u + v * v));
            pixels[static_cast<std::size_t>(y * size + x) * 4 + 3] =
                static_cast<unsigned char>(std::lround(inside * inside * 255.0));
        }
    return uploadTexture2DRgba(texture, size, size, pixels.data(), {.mipmaps = true});
}

bool loadSprite(TextureHandle& texture, const std::string& path) {
    return loadTextureRgba(texture, path, false, false, true);
}

/// A vertex attribute of the cloud programs, and where a geometry has its values.
struct SpriteAttribute {
    const char* name;
    GLint components;
    const std::vector<float> ParticleCloudGeom::*values;
};
constexpr SpriteAttribute attributes[] = {{"in_pos", 3, &ParticleCloudGeom::positions},
                                          {"in_rand", 1, &ParticleCloudGeom::randoms},
                                          {"in_uvcoord", 2, &ParticleCloudGeom::uvCoords},
                                          {"in_opacity", 1, &ParticleCloudGeom::opacities},
                                          {"in_shadowCubeData0", 4, &ParticleCloudGeom::shadowCube0},
                                          {"in_shadowCubeData1", 4, &ParticleCloudGeom::shadowCube1}};

bool uploadVertices(GlBuffer& buffer, const std::shared_ptr<const GlShareMark>& context,
                    const ParticleCloudGeom& geom) {
    std::array<std::span<const std::byte>, std::size(attributes)> parts;
    std::transform(std::begin(attributes), std::end(attributes), parts.begin(),
                   [&](const SpriteAttribute& a) { return std::as_bytes(std::span(geom.*a.values)); });
    return buffer.fill(context, GL_ARRAY_BUFFER, GL_STATIC_DRAW, parts);
}

/// What the vertex stage reads, the same for all clouds of a node.
void setVertexUniforms(ShaderProgram& program, const CloudShadingParams& shading, const Vector3& eyePoint) {
    setUniform(program, "eyePoint", eyePoint);
    setUniform(program, "sunDir", shading.sunDir);
    setUniform(program, "sunShadowAmount", shading.sunShadowAmount);
    setUniform(program, "groundShadowAmount", shading.groundShadowAmount);
    setUniform(program, "selfShadowAmount", shading.selfShadowAmount);
    // The optical depth is in metres of full cloud; the falloff holds for a hundred of them, as in exported data.
    setUniform(program, "selfShadowFalloff", shading.selfShadowFalloff / 100.0);
}

/// The same for one of them.
void setSettingUniforms(ShaderProgram& program, const CloudSettings& s) {
    setUniform(program, "spriteSize", s.spriteSize * 100.0);
    setUniform(program, "groundShadowOffset", s.groundShadowOffset * 100.0);
    // A fade that is off still goes through smoothstep, which wants its edges apart.
    setUniform(program, "enableGroundFade", s.enableGroundFade ? 1.0 : 0.0);
    setUniform(program, "groundFadeStart", s.enableGroundFade ? s.groundFadeStart * 100.0 : 1.0);
    setUniform(program, "groundFadeEnd", s.enableGroundFade ? s.groundFadeEnd * 100.0 : 0.0);
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

void setState() {
    glEnable(GL_BLEND);
    glBlendFunc(GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
    glDepthMask(GL_FALSE);
    glDisable(GL_ALPHA_TEST);
    glDisable(GL_LIGHTING);
    glDisable(GL_CULL_FACE);
    glDisable(GL_POLYGON_SMOOTH);
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
}

/// Puts numbers into uniforms whose locations are known.
void setUniform(const ShaderProgram& program, std::int32_t location, const Vector3& v) {
    program.setUniformF(location, static_cast<float>(v.x), static_cast<float>(v.y), static_cast<float>(v.z));
}

} // namespace

/// The drawing of some clouds: from cloud to cloud only what differs is set.
class CloudSpriteRenderer::Batch {
public:
    Batch(CloudSpriteRenderer& renderer, const CloudShadingParams& shading, const Vector3& eyePoint)
        : renderer_(renderer), shading_(shading), eyePoint_(eyePoint), context_(GlShareMark::ofCurrentContext()) {
        if (context_) context_->sweep();
        setState();
        gl().activeTexture(GL_TEXTURE0);
        glBindTexture(GL_TEXTURE_2D, renderer.texture_->name());
        disableClientArrays();
    }
    ~Batch() {
        disableArrays();
        ShaderProgram::unbind();
    }
    Batch(const Batch&) = delete;
    Batch& operator=(const Batch&) = delete;

    /// Brings the orders of the clouds' sprites up to date, as far as they have to be and time allows.
    /// @param clouds the nearest comes last
    void bringOrdersUpToDate(std::span<const CloudToDraw> clouds, const std::function<bool()>& mayLag) {
        std::vector<const CloudToDraw*> late;
        for (auto cloud = clouds.rbegin(); cloud != clouds.rend(); ++cloud) {
            if (cloud->geom.numSprites <= 0) continue;
            std::optional<SpriteOrder>& order = cloud->sprites.order_;
            if (!order) order.emplace(cloud->geom);
            if (!order->exists())
                order->sortFor(eyeFor(*cloud));
            else if (!order->isRightFor(eyeFor(*cloud)))
                late.push_back(&*cloud);
        }
        if (late.empty()) return;
        if (!mayLag || !mayLag()) {
            for (const CloudToDraw* cloud : late) cloud->sprites.order_->sortFor(eyeFor(*cloud));
            return;
        }
        // Who has waited longest comes first, so that everybody comes to it; then the nearest.
        std::ranges::stable_sort(late, std::greater(),
                                 [](const CloudToDraw* cloud) { return cloud->sprites.lateDraws_; });
        if (!renderer_.sorter_) renderer_.sorter_ = SpriteSorter::shared();
        for (const CloudToDraw* cloud : late) {
            cloud->sprites.order_->follow(eyeFor(*cloud), *renderer_.sorter_);
            ++cloud->sprites.lateDraws_;
        }
        const auto end = std::chrono::steady_clock::now() + orderBudget;
        for (const CloudToDraw* cloud : late) {
            if (!cloud->sprites.order_->catchUp()) continue;
            cloud->sprites.lateDraws_ = 0;
            fillBuffers(*cloud);
            if (std::chrono::steady_clock::now() >= end) break;
        }
    }

    void draw(const CloudToDraw& cloud) {
        if (cloud.geom.numSprites <= 0) return;
        const bool withShadow = !cloud.geom.shadowCube0.empty() && shading_.enableSelfShadow;
        ShaderProgram* program =
            withShadow ? renderer_.shadowCube_.get(shadowCubeShaders) : renderer_.fixedDir_.get(fixedDirShaders);
        if (!program) return;
        if (program != program_) use(*program);
        if (depthTest_ != cloud.depthTest) {
            depthTest_ = cloud.depthTest;
            cloud.depthTest ? glEnable(GL_DEPTH_TEST) : glDisable(GL_DEPTH_TEST);
        }
        if (settings_ != cloud.settings) {
            settings_ = cloud.settings;
            setSettingUniforms(*program, cloud.settings);
        }
        setUniform(*program, centreLocation_, cloud.setCentre);
        setUniform(*program, offsetLocation_, cloud.domeOffset);
        program->setUniformF(opacityLocation_, static_cast<float>(cloud.opacity));

        const void* elements = bindVertices(cloud);
        const auto count = static_cast<GLsizei>(cloud.sprites.order_->vertices().size());
        glDrawElements(GL_QUADS, count, GL_UNSIGNED_SHORT, elements);
        if (!cloud.wireFrame) return;
        program->setUniformF("wireFrame", 1.0f);
        glPolygonMode(GL_FRONT_AND_BACK, GL_LINE);
        glDrawElements(GL_QUADS, count, GL_UNSIGNED_SHORT, elements);
        glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
        program->setUniformF("wireFrame", 0.0f);
    }

private:
    void use(ShaderProgram& program) {
        disableArrays();
        program_ = &program;
        program.bind();
        setVertexUniforms(program, shading_, eyePoint_);
        setPixelUniforms(program, shading_);
        settings_.reset();
        centreLocation_ = program.uniformLocation("cloudCenter");
        offsetLocation_ = program.uniformLocation("domeoffset");
        opacityLocation_ = program.uniformLocation("domeopacity");
        std::transform(std::begin(attributes), std::end(attributes), locations_.begin(),
                       [&](const SpriteAttribute& a) { return program.attributeLocation(a.name); });
        for (const GLint location : locations_)
            if (location != -1) gl().enableVertexAttribArray(static_cast<GLuint>(location));
    }

    void disableArrays() {
        if (!program_) return;
        for (const GLint location : locations_)
            if (location != -1) gl().disableVertexAttribArray(static_cast<GLuint>(location));
    }

    /// Where the eye is for a cloud that is not moved away from its place.
    Vector3 eyeFor(const CloudToDraw& cloud) const { return eyePoint_ - cloud.domeOffset; }

    /// Brings the cloud's buffers up to date. @return false when it is to be drawn without them
    bool fillBuffers(const CloudToDraw& cloud) {
        CloudSprites& s = cloud.sprites;
        if (!context_ || s.refused_ == context_) return false;
        const bool upToDate = s.elements_.isIn(context_) && s.elementsRevision_ == s.order_->revision();
        const auto elements = std::as_bytes(std::span(s.order_->vertices()));
        if ((s.vertices_.isIn(context_) || uploadVertices(s.vertices_, context_, cloud.geom)) &&
            (upToDate || s.elements_.fill(context_, GL_ELEMENT_ARRAY_BUFFER, GL_DYNAMIC_DRAW, {&elements, 1}))) {
            s.elementsRevision_ = s.order_->revision();
            return true;
        }
        s.vertices_.release();
        s.elements_.release();
        s.refused_ = context_;
        return false;
    }

    /// Lets the attributes be read from the cloud's buffers, or, where there are none, from its arrays.
    /// @return where the elements are
    const void* bindVertices(const CloudToDraw& cloud) {
        const bool buffered = fillBuffers(cloud);
        gl().bindBuffer(GL_ARRAY_BUFFER, cloud.sprites.vertices_.name());
        gl().bindBuffer(GL_ELEMENT_ARRAY_BUFFER, cloud.sprites.elements_.name());
        std::size_t offset = 0;
        for (std::size_t i = 0; i < std::size(attributes); ++i) {
            const std::vector<float>& values = cloud.geom.*attributes[i].values;
            // NOLINTNEXTLINE(performance-no-int-to-ptr): with a buffer bound, OpenGL takes an offset as an address
            const void* from = buffered ? reinterpret_cast<const void*>(offset) : values.data();
            offset += values.size() * sizeof(float);
            if (locations_[i] != -1)
                gl().vertexAttribPointer(static_cast<GLuint>(locations_[i]), attributes[i].components, GL_FLOAT,
                                         GL_FALSE, 0, from);
        }
        return buffered ? nullptr : cloud.sprites.order_->vertices().data();
    }

    // First of all, so that they are restored last.
    const GlStateScope state_;
    const GlArrayScope arrays_;
    CloudSpriteRenderer& renderer_;
    const CloudShadingParams& shading_;
    const Vector3 eyePoint_;
    const std::shared_ptr<const GlShareMark> context_;
    ShaderProgram* program_ = nullptr;
    std::array<GLint, std::size(attributes)> locations_{};
    GLint centreLocation_ = -1, offsetLocation_ = -1, opacityLocation_ = -1;
    std::optional<CloudSettings> settings_;
    std::optional<bool> depthTest_;
};

bool CloudSpriteRenderer::prepare(const CloudShadingParams& shading) {
    const bool fixedDir = fixedDir_.get(fixedDirShaders), shadowCube = shadowCube_.get(shadowCubeShaders);
    if (!fixedDir || !shadowCube) return false;
    if (textureLoaded_ && texturePath_ == shading.shadingTexture) return true;
    textureLoaded_ = true;
    texturePath_ = shading.shadingTexture;
    texture_.reset();
    if (!texturePath_.empty()) texture_ = sharedTexture(&loadSprite, absoluteCopy(texturePath_));
    if (!texture_) texture_ = sharedTexture(&uploadPuff, "");
    return true;
}

void CloudSpriteRenderer::reloadTexture() {
    // Once for all clouds of a refresh: the first one that is drawn loads the picture for the others.
    if (textureLoaded_) forgetSharedTexture(&loadSprite, absoluteCopy(texturePath_));
    textureLoaded_ = false;
}

void CloudSpriteRenderer::draw(std::span<const CloudToDraw> clouds, const CloudShadingParams& shading,
                               const Vector3& eyePoint, const std::function<bool()>& mayLag) {
    if (clouds.empty() || !texture_) return;
    Batch batch(*this, shading, eyePoint);
    batch.bringOrdersUpToDate(clouds, mayLag);
    for (const CloudToDraw& cloud : clouds) batch.draw(cloud);
}

void CloudSpriteRenderer::release() {
    fixedDir_.release();
    shadowCube_.release();
    texture_.reset();
    textureLoaded_ = false;
    sorter_.reset();
}

} // namespace orvo
