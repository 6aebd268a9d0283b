#include "SkyProgram.h"

#include "../Common/Messages.h"
#include "../Common/Paths.h"

namespace orvo {

const char* const viewQuadVertexShader = R"(attribute vec3 in_worldPos;
varying vec3 worldPos;
varying vec4 HWworldPos;

void main()
{
    worldPos = in_worldPos;
    HWworldPos = gl_ModelViewProjectionMatrix * vec4(in_worldPos, 1.0);
    gl_Position = HWworldPos;
}
)";

ShaderProgram* SkyProgram::get(const SkyShaderTexts& texts, const SourcePlace& where) {
    if (!program_ && !buildFailed_) {
        buildFailed_ = true;
        try {
            build(texts, where);
        } catch (...) {
            program_.reset();
        }
    }
    return buildFailed_ ? nullptr : program_.get();
}

void SkyProgram::build(const SkyShaderTexts& texts, const SourcePlace& where) {
    bool found = false;
    const std::string folder = texts.fromFiles ? shaderDirectory() : "";
    program_ = std::make_unique<ShaderProgram>(folder + texts.vertex, folder + texts.fragment, texts.fromFiles, &found);
    std::string log = program_->infoLog();
    if (!found) {
        log = std::string(texts.className) + ":  could not find shader files! :(";
    } else if (program_->isValid() && log.empty()) {
        buildFailed_ = false;
        return;
    } else {
        // Nothing was built, and so nothing logged, where the driver lacks what it takes.
        if (std::string reason; log.empty() && !glAvailable(&reason)) log = reason;
        log = std::string(texts.className) + ":  " + texts.what + " did not compile! :(  \n\nErrorReport:\n" + log;
    }
    program_.reset();
    // The log is the message's format: a doubled per cent sign in a driver's log becomes one.
    reportPlacedError({log.c_str(), where});
}

void SkyProgram::release() {
    program_.reset();
    buildFailed_ = false;
}

} // namespace orvo
