#include "ShaderProgram.h"

#include <algorithm>
#include <cstdio>

#include "FileSystem.h"

namespace orvo {
namespace {

bool canOpen(const std::string& path) {
    std::FILE* file = openFile(path, "r");
    return file && std::fclose(file) == 0;
}

/// A text of a GL object: `size` tells its length with the terminating zero, under `name`.
template <class Size, class Read>
std::string textOf(std::uint32_t object, GLenum name, const Size& size, const Read& read) {
    GLint length = 0;
    size(object, name, &length);
    if (length < 1) return {};
    std::string text(static_cast<std::size_t>(length), '\0');
    read(object, length, nullptr, text.data());
    text.resize(std::min(text.find('\0'), text.size()));
    return text;
}

template <class Read>
void activeEntry(std::uint32_t program, GLenum lengthName, const Read& read, std::uint32_t index, std::string& name,
                 int& size, GLenum& type) {
    GLint longest = 0;
    gl().getProgramiv(program, lengthName, &longest);
    if (longest < 1) return;
    std::string text(static_cast<std::size_t>(longest), '\0');
    GLsizei length = 0;
    GLint count = 0;
    GLenum kind = 0;
    read(program, index, longest, &length, &count, &kind, text.data());
    if (length < 1) return;
    name.assign(text, 0, static_cast<std::size_t>(length));
    size = count;
    type = kind;
}

} // namespace

std::string shaderFileText(const std::string& path) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(openFile(path, "r"), &std::fclose);
    if (!file || std::fseek(file.get(), 0, SEEK_END) != 0) return {};
    const long length = std::ftell(file.get());
    if (length <= 0 || std::fseek(file.get(), 0, SEEK_SET) != 0) return {};
    std::string text(static_cast<std::size_t>(length), '\0');
    text.resize(std::fread(text.data(), 1, text.size(), file.get()));
    return text;
}

ShaderStage::ShaderStage(GLenum type)
    : handle(type == GL_VERTEX_SHADER || type == GL_FRAGMENT_SHADER ? gl().createShader(type) : type) {}

void ShaderStage::setSource(const std::string& text) const {
    const GLchar* const texts[] = {text.c_str()};
    gl().shaderSource(handle, 1, texts, nullptr);
}

void ShaderStage::compile() {
    gl().compileShader(handle);
    GLint status = GL_FALSE;
    gl().getShaderiv(handle, GL_COMPILE_STATUS, &status);
    compiled = status != GL_FALSE;
}

std::string ShaderStage::infoLog() const {
    return textOf(handle, GL_INFO_LOG_LENGTH, gl().getShaderiv, gl().getShaderInfoLog);
}

std::string ShaderStage::source() const {
    return textOf(handle, GL_SHADER_SOURCE_LENGTH, gl().getShaderiv, gl().getShaderSource);
}

// The other constructors delegate to this one, so that the destructor frees the GL objects when they throw.
ShaderProgram::ShaderProgram(bool* found) {
    if (found) *found = false;
    handle_ = gl().createProgram();
}

ShaderProgram::ShaderProgram(const std::string& vertex, const std::string& fragment, bool fromFiles, bool* found)
    : ShaderProgram(found) {
    if (fromFiles && !(canOpen(vertex) && canOpen(fragment))) return;
    build(vertex_, GL_VERTEX_SHADER, vertex, fromFiles);
    build(fragment_, GL_FRAGMENT_SHADER, fragment, fromFiles);
    linkStages();
    if (found) *found = true;
}

ShaderProgram::ShaderProgram(const std::string& source, GLenum type, bool fromFile, bool* found)
    : ShaderProgram(found) {
    if (fromFile && !canOpen(source)) return;
    build(type == GL_VERTEX_SHADER ? vertex_ : fragment_, type, source, fromFile);
    linkStages();
    if (found) *found = true;
}

ShaderProgram::~ShaderProgram() {
    for (auto* stage : {&vertex_, &fragment_}) {
        if (!*stage) continue;
        gl().deleteShader((*stage)->handle);
        stage->reset();
    }
    gl().deleteProgram(handle_);
    uniformLocations_.clear();
}

void ShaderProgram::build(std::unique_ptr<ShaderStage>& stage, GLenum type, const std::string& source, bool fromFile) {
    stage = std::make_unique<ShaderStage>(type);
    stage->setSource(fromFile ? shaderFileText(source) : source);
    // Stages from text are left to the link, which takes them as they are.
    if (fromFile) stage->compile();
}

void ShaderProgram::linkStages() {
    if (vertex_) attach(*vertex_);
    if (fragment_) attach(*fragment_);
    gl().linkProgram(handle_);
    uniformLocations_.clear();
}

std::string ShaderProgram::infoLog() const {
    return textOf(handle_, GL_INFO_LOG_LENGTH, gl().getProgramiv, gl().getProgramInfoLog);
}

bool ShaderProgram::isValid() const {
    GLint status = GL_FALSE;
    gl().getProgramiv(handle_, GL_VALIDATE_STATUS, &status);
    return status != GL_FALSE;
}

void ShaderProgram::validate() const { gl().validateProgram(handle_); }
void ShaderProgram::bind() const { gl().useProgram(handle_); }
void ShaderProgram::unbind() { gl().useProgram(0); }
void ShaderProgram::attach(const ShaderStage& stage) const { gl().attachShader(handle_, stage.handle); }
void ShaderProgram::detach(const ShaderStage& stage) const { gl().detachShader(handle_, stage.handle); }

std::vector<std::uint32_t> ShaderProgram::attachedShaders() const {
    GLint count = 0;
    gl().getProgramiv(handle_, GL_ATTACHED_SHADERS, &count);
    std::vector<std::uint32_t> shaders(static_cast<std::size_t>(std::max(count, 0)));
    GLsizei given = 0;
    if (count > 0) gl().getAttachedShaders(handle_, count, &given, shaders.data());
    shaders.resize(std::min(shaders.size(), static_cast<std::size_t>(std::max(given, 0))));
    return shaders;
}

std::int32_t ShaderProgram::attributeLocation(const char* name) const { return gl().getAttribLocation(handle_, name); }

void ShaderProgram::bindAttributeLocation(std::uint32_t index, const char* name) const {
    gl().bindAttribLocation(handle_, index, name);
}

std::int32_t ShaderProgram::uniformLocation(const char* name) {
    if (const auto known = uniformLocations_.find(name); known != uniformLocations_.end()) return known->second;
    const GLint location = gl().getUniformLocation(handle_, name);
    if (location != -1) uniformLocations_.emplace(name, location);
    return location;
}

void ShaderProgram::setUniformF(std::int32_t location, float x) const {
    if (location != -1) gl().uniform1f(location, x);
}
void ShaderProgram::setUniformF(std::int32_t location, float x, float y) const {
    if (location != -1) gl().uniform2f(location, x, y);
}
void ShaderProgram::setUniformF(std::int32_t location, float x, float y, float z) const {
    if (location != -1) gl().uniform3f(location, x, y, z);
}
void ShaderProgram::setUniformF(std::int32_t location, float x, float y, float z, float w) const {
    if (location != -1) gl().uniform4f(location, x, y, z, w);
}
void ShaderProgram::setUniformI(std::int32_t location, int x) const {
    if (location != -1) gl().uniform1i(location, x);
}
void ShaderProgram::setUniformI(std::int32_t location, int x, int y) const {
    if (location != -1) gl().uniform2i(location, x, y);
}
void ShaderProgram::setUniformI(std::int32_t location, int x, int y, int z) const {
    if (location != -1) gl().uniform3i(location, x, y, z);
}
void ShaderProgram::setUniformI(std::int32_t location, int x, int y, int z, int w) const {
    if (location != -1) gl().uniform4i(location, x, y, z, w);
}

void ShaderProgram::setUniformMatrix(std::int32_t location, int size, bool transpose, const float* values) const {
    if (location == -1) return;
    const GLboolean flip = transpose ? GL_TRUE : GL_FALSE;
    if (size == 2) gl().uniformMatrix2fv(location, 1, flip, values);
    if (size == 3) gl().uniformMatrix3fv(location, 1, flip, values);
    if (size == 4) gl().uniformMatrix4fv(location, 1, flip, values);
}

void ShaderProgram::activeAttribute(std::uint32_t index, std::string& name, int& size, GLenum& type) const {
    activeEntry(handle_, GL_ACTIVE_ATTRIBUTE_MAX_LENGTH, gl().getActiveAttrib, index, name, size, type);
}

void ShaderProgram::activeUniform(std::uint32_t index, std::string& name, int& size, GLenum& type) const {
    activeEntry(handle_, GL_ACTIVE_UNIFORM_MAX_LENGTH, gl().getActiveUniform, index, name, size, type);
}

} // namespace orvo
