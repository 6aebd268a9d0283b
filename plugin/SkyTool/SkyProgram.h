#pragma once

#include "Common/ShaderProgram.h"
#include "Common/SourcePlace.h"

#include <memory>

namespace orvo {

/// The sources of a node's GLSL program.
struct SkyShaderTexts {
    const char* className;         ///< in front of error messages
    const char *vertex, *fragment; ///< the texts, or the names of their files in the shader folder
    bool fromFiles = false;
    const char* what = "shader"; ///< what did not compile
};

/// A node's GLSL program, built at the first use. A build that failed is reported once and not tried again until
/// release(). Used on the drawing thread, with the viewport's context current.
///
/// To the node the program is its own. Behind that, nodes whose sources are equal hold one program of the context, as
/// long as one of them does; so a user sets all of its uniforms whenever it draws.
class SkyProgram {
public:
    /// The program, built when needed; null after a failed build.
    ShaderProgram* get(const SkyShaderTexts& texts, const SourcePlace& where = SourcePlace::current());
    /// Gives the program up and forgets a failure.
    void release();
    bool buildFailed() const { return buildFailed_; }

private:
    void build(const SkyShaderTexts& texts, const SourcePlace& where);

    bool buildFailed_ = false;
    std::shared_ptr<ShaderProgram> program_;
};

/// The vertex shader of the view-filling quads: hands the world position on as worldPos and HWworldPos.
extern const char* const viewQuadVertexShader;

} // namespace orvo
