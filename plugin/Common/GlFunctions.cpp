#include <GL/glew.h>

#include "GlFunctions.h"

#include "LetterCase.h"

#include <algorithm>
#include <array>
#include <map>
#include <memory>
#include <string_view>
#include <vector>

namespace orvo {
namespace {

const GlFunctions* substitute = nullptr;

/// Fills the table from GLEW; the answer is empty when nothing is missing, otherwise the reason.
std::string loadDriver(GlFunctions& table) {
    if (!glGetString(GL_VERSION)) return "No OpenGL context is current";
    glewExperimental = GL_TRUE;
    // A GLEW built for GLX loads the entry points first and then misses the X display of a context that has none.
    const GLenum status = glewInit();
    if (status != GLEW_OK && status != GLEW_ERROR_NO_GLX_DISPLAY)
        return std::string("OpenGL entry points: ") + reinterpret_cast<const char*>(glewGetErrorString(status));

    bool complete = true;
    const auto take = [&complete](auto& entry, auto function) {
        if (function)
            entry = function;
        else
            complete = false;
    };
    take(table.createShader, glCreateShader);
    take(table.shaderSource, glShaderSource);
    take(table.compileShader, glCompileShader);
    take(table.deleteShader, glDeleteShader);
    take(table.isShader, glIsShader);
    take(table.getShaderiv, glGetShaderiv);
    take(table.getShaderInfoLog, glGetShaderInfoLog);
    take(table.getShaderSource, glGetShaderSource);
    take(table.createProgram, glCreateProgram);
    take(table.attachShader, glAttachShader);
    take(table.detachShader, glDetachShader);
    take(table.linkProgram, glLinkProgram);
    take(table.validateProgram, glValidateProgram);
    take(table.useProgram, glUseProgram);
    take(table.deleteProgram, glDeleteProgram);
    take(table.getProgramiv, glGetProgramiv);
    take(table.getProgramInfoLog, glGetProgramInfoLog);
    take(table.getAttachedShaders, glGetAttachedShaders);
    take(table.getAttribLocation, glGetAttribLocation);
    take(table.bindAttribLocation, glBindAttribLocation);
    take(table.getActiveAttrib, glGetActiveAttrib);
    take(table.getActiveUniform, glGetActiveUniform);
    take(table.enableVertexAttribArray, glEnableVertexAttribArray);
    take(table.disableVertexAttribArray, glDisableVertexAttribArray);
    take(table.vertexAttribPointer, glVertexAttribPointer);
    take(table.getUniformLocation, glGetUniformLocation);
    take(table.getUniformiv, glGetUniformiv);
    take(table.uniform1f, glUniform1f);
    take(table.uniform2f, glUniform2f);
    take(table.uniform3f, glUniform3f);
    take(table.uniform4f, glUniform4f);
    take(table.uniform1i, glUniform1i);
    take(table.uniform2i, glUniform2i);
    take(table.uniform3i, glUniform3i);
    take(table.uniform4i, glUniform4i);
    take(table.uniformMatrix2fv, glUniformMatrix2fv);
    take(table.uniformMatrix3fv, glUniformMatrix3fv);
    take(table.uniformMatrix4fv, glUniformMatrix4fv);
    if (glGenBuffers && glDeleteBuffers && glBindBuffer && glBufferData && glBufferSubData) {
        take(table.genBuffers, glGenBuffers);
        take(table.deleteBuffers, glDeleteBuffers);
        take(table.bindBuffer, glBindBuffer);
        take(table.bufferData, glBufferData);
        take(table.bufferSubData, glBufferSubData);
    }
    take(table.activeTexture, glActiveTexture);
    take(table.compressedTexImage2D, glCompressedTexImage2D);
    table.getIntegerv = [](GLenum name, GLint* values) { glGetIntegerv(name, values); };
    return complete ? std::string() : "This OpenGL driver lacks entry points of version 2.0";
}

struct DriverTable {
    GlFunctions functions;
    bool resolved = false;
};

/// The driver's table; `reason` is set while it cannot be resolved.
const DriverTable& driverTable(std::string& reason) {
    static DriverTable table;
    if (!table.resolved) {
        GlFunctions driver;
        reason = loadDriver(driver);
        if (reason.empty()) {
            table.functions = permissive(std::move(driver));
            table.resolved = true;
        }
    }
    return table;
}

std::string trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(" \t\r\n");
    if (first == std::string_view::npos) return {};
    return std::string(text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1));
}

/// The log without the lines in which drivers tell of success; warnings stay as they are.
std::string withoutChatter(const std::string& log) {
    constexpr std::array<std::string_view, 6> chatter{"no errors",       "link was successful", "linking was succ",
                                                      "validation succ", "vertex shader(s)",    "fragment shader(s)"};
    std::string kept;
    for (std::size_t at = 0; at < log.size();) {
        const std::size_t end = std::min(log.find('\n', at), log.size() - 1) + 1;
        std::string line = trimmed(std::string_view(log).substr(at, end - at));
        std::transform(line.begin(), line.end(), line.begin(), lowered);
        const bool aboutSuccess =
            line.empty() || (line.find("warn") == std::string::npos &&
                             std::any_of(chatter.begin(), chatter.end(), [&](auto c) { return line.starts_with(c); }));
        if (!aboutSuccess) kept.append(log, at, end - at);
        at = end;
    }
    return kept;
}

/// The whole of a log: `size` asks the object for GL_INFO_LOG_LENGTH, `read` fills a buffer.
template <class Size, class Read>
std::string logOf(GLuint object, const Size& size, const Read& read) {
    GLint length = 0;
    size(object, GL_INFO_LOG_LENGTH, &length);
    if (length <= 1) return {};
    std::string text(static_cast<std::size_t>(length), '\0');
    read(object, length, nullptr, text.data());
    text.resize(std::min(text.find('\0'), text.size()));
    return text;
}

bool isSampler(GLenum type) {
    return (type >= GL_SAMPLER_1D && type <= GL_SAMPLER_2D_RECT_SHADOW_ARB) ||
           (type >= GL_SAMPLER_1D_ARRAY && type <= GL_SAMPLER_CUBE_SHADOW) ||
           (type >= GL_INT_SAMPLER_1D && type <= GL_UNSIGNED_INT_SAMPLER_BUFFER) ||
           (type >= GL_SAMPLER_CUBE_MAP_ARRAY && type <= GL_UNSIGNED_INT_SAMPLER_CUBE_MAP_ARRAY) ||
           (type >= GL_SAMPLER_2D_MULTISAMPLE && type <= GL_UNSIGNED_INT_SAMPLER_2D_MULTISAMPLE_ARRAY);
}

/// A driver, and the logs of the programs that were linked through it.
struct PermissiveLink {
    GlFunctions driver;
    std::map<GLuint, std::string> logs;

    std::vector<GLuint> attached(GLuint program) const {
        GLint count = 0;
        driver.getProgramiv(program, GL_ATTACHED_SHADERS, &count);
        std::vector<GLuint> shaders(static_cast<std::size_t>(std::max(count, 0)));
        GLsizei given = 0;
        if (count > 0) driver.getAttachedShaders(program, count, &given, shaders.data());
        shaders.resize(static_cast<std::size_t>(std::clamp(given, 0, std::max(count, 0))));
        return shaders;
    }

    bool isCompiled(GLuint shader) const {
        GLint compiled = GL_FALSE;
        driver.getShaderiv(shader, GL_COMPILE_STATUS, &compiled);
        return compiled != GL_FALSE;
    }

    std::string programLog(GLuint program) const {
        return logOf(program, driver.getProgramiv, driver.getProgramInfoLog);
    }

    /// The verdict must be about the program, not about units that its user has had no chance to set yet.
    void validateWithSamplersApart(GLuint program) const {
        struct Sampler {
            GLint location, unit;
            GLenum type;
        };
        std::vector<Sampler> samplers;
        std::vector<GLenum> types;
        GLint uniforms = 0, nameSize = 0;
        driver.getProgramiv(program, GL_ACTIVE_UNIFORMS, &uniforms);
        driver.getProgramiv(program, GL_ACTIVE_UNIFORM_MAX_LENGTH, &nameSize);
        for (GLint i = 0; i < uniforms; ++i) {
            std::vector<GLchar> buffer(static_cast<std::size_t>(std::max(nameSize, 1)) + 1);
            GLint count = 0;
            GLenum type = 0;
            driver.getActiveUniform(program, static_cast<GLuint>(i), nameSize, nullptr, &count, &type, buffer.data());
            if (!isSampler(type)) continue;
            std::string name = buffer.data();
            if (name.ends_with("[0]")) name.resize(name.size() - 3);
            if (std::find(types.begin(), types.end(), type) == types.end()) types.push_back(type);
            for (GLint element = 0; element < count; ++element) {
                const std::string full = count > 1 ? name + "[" + std::to_string(element) + "]" : name;
                Sampler sampler{driver.getUniformLocation(program, full.c_str()), 0, type};
                if (sampler.location < 0) continue;
                driver.getUniformiv(program, sampler.location, &sampler.unit);
                samplers.push_back(sampler);
            }
        }
        if (types.size() < 2) return driver.validateProgram(program);

        GLint inUse = 0;
        driver.getIntegerv(GL_CURRENT_PROGRAM, &inUse);
        driver.useProgram(program);
        for (const Sampler& s : samplers)
            driver.uniform1i(s.location,
                             static_cast<GLint>(std::find(types.begin(), types.end(), s.type) - types.begin()));
        driver.validateProgram(program);
        for (const Sampler& s : samplers) driver.uniform1i(s.location, s.unit);
        driver.useProgram(static_cast<GLuint>(inUse));
    }

    void link(GLuint program) {
        const std::vector<GLuint> shaders = attached(program);
        for (const GLuint shader : shaders)
            if (!isCompiled(shader)) driver.compileShader(shader);
        driver.linkProgram(program);
        GLint linked = GL_FALSE, valid = GL_FALSE;
        driver.getProgramiv(program, GL_LINK_STATUS, &linked);
        std::string log = programLog(program);
        if (linked) {
            log = withoutChatter(log);
            validateWithSamplersApart(program);
            driver.getProgramiv(program, GL_VALIDATE_STATUS, &valid);
            if (!valid) log += programLog(program);
        } else {
            // Takes back a status that an earlier, successful link of the same program may have left.
            driver.validateProgram(program);
            for (const GLuint shader : shaders) {
                if (isCompiled(shader)) continue;
                GLint type = 0;
                driver.getShaderiv(shader, GL_SHADER_TYPE, &type);
                if (!log.empty() && log.back() != '\n') log += '\n';
                log += type == GL_VERTEX_SHADER ? "vertex shader:\n" : "fragment shader:\n";
                log += logOf(shader, driver.getShaderiv, driver.getShaderInfoLog);
            }
        }
        logs[program] = std::move(log);
    }
};

} // namespace

GlFunctions permissive(GlFunctions driver) {
    const auto state = std::make_shared<PermissiveLink>();
    state->driver = driver;
    GlFunctions table = std::move(driver);
    table.linkProgram = [state](GLuint program) { state->link(program); };
    table.createProgram = [state] {
        const GLuint program = state->driver.createProgram();
        state->logs.erase(program);
        return program;
    };
    table.deleteProgram = [state](GLuint program) {
        state->logs.erase(program);
        state->driver.deleteProgram(program);
    };
    table.validateProgram = [state](GLuint program) {
        state->logs.erase(program);
        state->driver.validateProgram(program);
    };
    table.getProgramiv = [state](GLuint program, GLenum name, GLint* value) {
        const auto log = state->logs.find(program);
        if (name != GL_INFO_LOG_LENGTH || log == state->logs.end())
            return state->driver.getProgramiv(program, name, value);
        *value = log->second.empty() ? 0 : static_cast<GLint>(log->second.size() + 1);
    };
    table.getProgramInfoLog = [state](GLuint program, GLsizei size, GLsizei* length, GLchar* text) {
        const auto log = state->logs.find(program);
        if (log == state->logs.end()) return state->driver.getProgramInfoLog(program, size, length, text);
        if (length) *length = 0;
        if (size < 1) return;
        const std::size_t copied = log->second.copy(text, static_cast<std::size_t>(size) - 1);
        text[copied] = '\0';
        if (length) *length = static_cast<GLsizei>(copied);
    };
    return table;
}

const GlFunctions& gl() {
    if (substitute) return *substitute;
    std::string reason;
    return driverTable(reason).functions;
}

bool glAvailable(std::string* reason) {
    if (substitute) return true;
    std::string problem;
    if (driverTable(problem).resolved && !glGetString(GL_VERSION)) problem = "No OpenGL context is current";
    if (reason) *reason = problem;
    return problem.empty();
}

void forgetGlErrors() {
    // Bounded: a lost context may go on for ever.
    for (int i = 0; i < 64 && glGetError() != GL_NO_ERROR; ++i) {}
}

GlFunctionsScope::GlFunctionsScope(GlFunctions table) : table_(std::move(table)), previous_(substitute) {
    substitute = &table_;
}

GlFunctionsScope::~GlFunctionsScope() { substitute = previous_; }

} // namespace orvo
