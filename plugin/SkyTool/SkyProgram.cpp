#include "SkyProgram.h"

#include "Common/GlShareMark.h"
#include "Common/Messages.h"
#include "Common/Paths.h"
#include "Common/Undestroyed.h"

#include <map>
#include <tuple>

namespace orvo {
namespace {

/// The texts of a program's stages, and whether they come from files, which are compiled by themselves.
using ProgramKey = std::tuple<std::string, std::string, bool>;

struct SharedProgram {
    std::shared_ptr<const GlShareMark> mark; ///< where it was built
    std::unique_ptr<ShaderProgram> program;
};

using SharedPrograms = std::map<ProgramKey, std::weak_ptr<const SharedProgram>>;

/// What is in the files now: they may have been edited since another node read them.
ProgramKey keyOf(const std::string& vertex, const std::string& fragment, bool fromFiles) {
    if (!fromFiles) return {vertex, fragment, false};
    return {shaderFileText(vertex), shaderFileText(fragment), true};
}

std::shared_ptr<ShaderProgram> programOf(const std::shared_ptr<const SharedProgram>& shared) {
    return {shared, shared->program.get()};
}

/// The program that another node holds in this context; null when there is none.
std::shared_ptr<ShaderProgram> sharedProgram(const ProgramKey& key) {
    const SharedPrograms& programs = undestroyed<SharedPrograms>();
    const auto found = programs.find(key);
    const auto shared = found == programs.end() ? nullptr : found->second.lock();
    return shared && shared->mark && shared->mark->isCurrent() ? programOf(shared) : nullptr;
}

/// Lets others find a program that was built.
std::shared_ptr<ShaderProgram> shared(std::unique_ptr<ShaderProgram> program, const ProgramKey& key) {
    const auto drop = [key](const SharedProgram* shared) {
        delete shared;
        SharedPrograms& programs = undestroyed<SharedPrograms>();
        // A later one may stand in its place.
        if (const auto found = programs.find(key); found != programs.end() && found->second.expired())
            programs.erase(found);
    };
    const std::shared_ptr<const SharedProgram> made(
        new SharedProgram{GlShareMark::ofCurrentContext(), std::move(program)}, drop);
    undestroyed<SharedPrograms>()[key] = made;
    return programOf(made);
}

} // namespace

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
    const std::string folder = texts.fromFiles ? shaderDirectory() : "";
    const std::string vertex = folder + texts.vertex, fragment = folder + texts.fragment;
    const ProgramKey key = keyOf(vertex, fragment, texts.fromFiles);
    if ((program_ = sharedProgram(key))) {
        buildFailed_ = false;
        return;
    }
    bool found = false;
    auto program = std::make_unique<ShaderProgram>(vertex, fragment, texts.fromFiles, &found);
    std::string log = program->infoLog();
    if (!found) {
        log = std::string(texts.className) + ":  could not find shader files! :(";
    } else if (program->isValid() && log.empty()) {
        program_ = shared(std::move(program), key);
        buildFailed_ = false;
        return;
    } else {
        // Nothing was built, and so nothing logged, where the driver lacks what it takes.
        if (std::string reason; log.empty() && !glAvailable(&reason)) log = reason;
        log = std::string(texts.className) + ":  " + texts.what + " did not compile! :(  \n\nErrorReport:\n" + log;
    }
    program.reset();
    // The log is the message's format: a doubled per cent sign in a driver's log becomes one.
    reportPlacedError({log.c_str(), where});
}

void SkyProgram::release() {
    program_.reset();
    buildFailed_ = false;
}

} // namespace orvo
