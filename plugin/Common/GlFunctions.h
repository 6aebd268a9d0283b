#pragma once

#include <functional>
#include <string>
#include <type_traits>
#include <utility>

// gl.h and glext.h rather than GLEW's header: GLEW's refuses to come after gl.h, which host headers may bring in. It
// may come before this one.
#ifdef _WIN32
#include <windows.h>
#endif
#include <GL/gl.h>
#include <GL/glext.h>

namespace orvo {

template <class Signature>
class GlEntry;

/// One entry point. A fresh one does nothing and answers zero, so that a call without OpenGL is harmless.
template <class Result, class... Arguments>
class GlEntry<Result(Arguments...)> : public std::function<Result(Arguments...)> {
    using Base = std::function<Result(Arguments...)>;

public:
    GlEntry()
        : Base([](Arguments...) -> Result {
              if constexpr (!std::is_void_v<Result>) return Result();
          }) {}
    template <class Callable>
    requires(!std::is_same_v<Callable, GlEntry>) GlEntry(Callable callable) : Base(std::move(callable)) {}
};

/// The OpenGL entry points beyond version 1.1 that the plug-in calls, under their GL names without the "gl". Arguments
/// and answers are those of the OpenGL 2.0 reference, but for the few entries that `permissive` describes.
struct GlFunctions {
    GlEntry<GLuint(GLenum type)> createShader;
    GlEntry<void(GLuint shader, GLsizei count, const GLchar* const* texts, const GLint* lengths)> shaderSource;
    GlEntry<void(GLuint shader)> compileShader;
    GlEntry<void(GLuint shader)> deleteShader;
    GlEntry<GLboolean(GLuint name)> isShader;
    GlEntry<void(GLuint shader, GLenum name, GLint* value)> getShaderiv;
    GlEntry<void(GLuint shader, GLsizei size, GLsizei* length, GLchar* text)> getShaderInfoLog;
    GlEntry<void(GLuint shader, GLsizei size, GLsizei* length, GLchar* text)> getShaderSource;

    GlEntry<GLuint()> createProgram;
    GlEntry<void(GLuint program, GLuint shader)> attachShader;
    GlEntry<void(GLuint program, GLuint shader)> detachShader;
    GlEntry<void(GLuint program)> linkProgram;
    GlEntry<void(GLuint program)> validateProgram;
    GlEntry<void(GLuint program)> useProgram;
    GlEntry<void(GLuint program)> deleteProgram;
    GlEntry<void(GLuint program, GLenum name, GLint* value)> getProgramiv;
    GlEntry<void(GLuint program, GLsizei size, GLsizei* length, GLchar* text)> getProgramInfoLog;
    GlEntry<void(GLuint program, GLsizei size, GLsizei* count, GLuint* shaders)> getAttachedShaders;

    GlEntry<GLint(GLuint program, const GLchar* name)> getAttribLocation{[](GLuint, const GLchar*) { return -1; }};
    GlEntry<void(GLuint program, GLuint index, const GLchar* name)> bindAttribLocation;
    GlEntry<void(GLuint program, GLuint index, GLsizei size, GLsizei*length, GLint*count, GLenum*type, GLchar*name)>
        getActiveAttrib, getActiveUniform;
    GlEntry<void(GLuint index)> enableVertexAttribArray, disableVertexAttribArray;
    GlEntry<void(GLuint index, GLint size, GLenum type, GLboolean normalized, GLsizei stride, const void* data)>
        vertexAttribPointer;

    GlEntry<GLint(GLuint program, const GLchar* name)> getUniformLocation{[](GLuint, const GLchar*) { return -1; }};
    GlEntry<void(GLuint program, GLint location, GLint* values)> getUniformiv;
    GlEntry<void(GLint location, GLfloat x)> uniform1f;
    GlEntry<void(GLint location, GLfloat x, GLfloat y)> uniform2f;
    GlEntry<void(GLint location, GLfloat x, GLfloat y, GLfloat z)> uniform3f;
    GlEntry<void(GLint location, GLfloat x, GLfloat y, GLfloat z, GLfloat w)> uniform4f;
    GlEntry<void(GLint location, GLint x)> uniform1i;
    GlEntry<void(GLint location, GLint x, GLint y)> uniform2i;
    GlEntry<void(GLint location, GLint x, GLint y, GLint z)> uniform3i;
    GlEntry<void(GLint location, GLint x, GLint y, GLint z, GLint w)> uniform4i;
    GlEntry<void(GLint location, GLsizei count, GLboolean transpose, const GLfloat*values)> uniformMatrix2fv,
        uniformMatrix3fv, uniformMatrix4fv;

    /// @name Buffer objects, of version 1.5; a driver may lack them. genBuffers then makes no names.
    /// @{
    GlEntry<void(GLsizei count, GLuint* names)> genBuffers;
    GlEntry<void(GLsizei count, const GLuint* names)> deleteBuffers;
    GlEntry<void(GLenum target, GLuint name)> bindBuffer;
    GlEntry<void(GLenum target, GLsizeiptr bytes, const void* data, GLenum usage)> bufferData;
    GlEntry<void(GLenum target, GLintptr offset, GLsizeiptr bytes, const void* data)> bufferSubData;
    /// @}

    GlEntry<void(GLenum unit)> activeTexture;
    GlEntry<void(GLenum target, GLint level, GLenum format, GLsizei width, GLsizei height, GLint border, GLsizei bytes,
                 const void* data)>
        compressedTexImage2D;

    GlEntry<void(GLenum name, GLint* values)>
        getIntegerv; ///< version 1.1; here for what `permissive` keeps and restores
};

/// The table in force: the driver's entry points, made permissive; resolved once, at the first call with a context of
/// OpenGL 2.0 or later current. Before that every entry does nothing and answers zero (locations: -1).
const GlFunctions& gl();

/// Whether the calling thread has a context with all the entry points, but for those that a driver may lack. When not,
/// `reason`, when given, tells why.
bool glAvailable(std::string* reason = nullptr);

/// Takes the errors that others left behind, which say nothing about what comes next.
void forgetGlErrors();

/// `driver` with a link that behaves alike on every driver. Some link stages that were not compiled, and leave the
/// validate status true and the info log empty when all is well; others refuse such stages, validate only when asked
/// to, take samplers of two types at their initial unit for an error, or write chatter into the log. Here linkProgram
/// compiles the attached stages that are not compiled yet, links, and validates with each sampler type at a unit
/// of its own (uniforms and the program in use are as before afterwards). From then on getProgramInfoLog and
/// GL_INFO_LOG_LENGTH answer with the log of the link, without a driver's chatter about success; when the link failed,
/// the compile logs of the stages that did not compile follow, and when only the validation failed, its log.
/// validateProgram brings the driver's own log back.
GlFunctions permissive(GlFunctions driver);

/// Puts another table in force while it lives, for tests. Scopes end in the reverse order of their beginning.
class GlFunctionsScope {
public:
    explicit GlFunctionsScope(GlFunctions table);
    ~GlFunctionsScope();
    GlFunctionsScope(const GlFunctionsScope&) = delete;
    GlFunctionsScope& operator=(const GlFunctionsScope&) = delete;

private:
    const GlFunctions table_;
    const GlFunctions* previous_;
};

} // namespace orvo
