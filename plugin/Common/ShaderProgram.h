#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "GlFunctions.h"

namespace orvo {

/// The whole of a shader file; empty when it cannot be read.
std::string shaderFileText(const std::string& path);

/// One GL shader object. A type other than GL_VERTEX_SHADER and GL_FRAGMENT_SHADER makes no object: the handle then
/// is the type's value.
struct ShaderStage {
    bool compiled = false; ///< the compile status after `compile`
    std::uint32_t handle = 0;

    explicit ShaderStage(GLenum type);

    void setSource(const std::string& text) const;
    void compile();
    std::string infoLog() const;
    std::string source() const;
};

/// A GLSL program of a vertex and a fragment stage, with its uniforms set by name.
///
/// It is built, used and destroyed with the viewport's context current. Compile and link failures show in `isValid`
/// and `infoLog`: a program is good when the first is true and the second empty. Calls go to the table of
/// GlFunctions.h only; stages made from text are left to its link to compile.
class ShaderProgram {
public:
    /// Makes and links a program of two texts or, with `fromFiles`, of the texts in two files. `found`, when given,
    /// tells whether the sources were there: false only when a file cannot be opened; the program then has no
    /// stages.
    ShaderProgram(const std::string& vertex, const std::string& fragment, bool fromFiles, bool* found = nullptr);
    /// The same with one stage, of type GL_VERTEX_SHADER or GL_FRAGMENT_SHADER; a stage of any other type is kept as
    /// the fragment stage (see ShaderStage).
    ShaderProgram(const std::string& source, GLenum type, bool fromFile, bool* found = nullptr);
    ~ShaderProgram();
    ShaderProgram(const ShaderProgram&) = delete;
    ShaderProgram& operator=(const ShaderProgram&) = delete;

    std::uint32_t handle() const { return handle_; }
    const ShaderStage* vertexStage() const { return vertex_.get(); }
    const ShaderStage* fragmentStage() const { return fragment_.get(); }

    std::string infoLog() const;
    /// The validate status that the link left.
    bool isValid() const;
    void validate() const;

    void bind() const;
    static void unbind();

    void attach(const ShaderStage& stage) const;
    void detach(const ShaderStage& stage) const;
    std::vector<std::uint32_t> attachedShaders() const;

    /// -1 when the linked program has no such attribute.
    std::int32_t attributeLocation(const char* name) const;
    void bindAttributeLocation(std::uint32_t index, const char* name) const;

    /// -1 when the linked program has no such uniform. Found locations are remembered; a missing one is asked for
    /// again at each call.
    std::int32_t uniformLocation(const char* name);

    // Uniforms of the bound program, by name or location; one that the program does not have (location -1) is
    // ignored. Suffix F: floats, I: integers.
    void setUniformF(const char* name, float x) { setUniformF(uniformLocation(name), x); }
    void setUniformF(const char* name, float x, float y) { setUniformF(uniformLocation(name), x, y); }
    void setUniformF(const char* name, float x, float y, float z) { setUniformF(uniformLocation(name), x, y, z); }
    void setUniformF(const char* name, float x, float y, float z, float w) {
        setUniformF(uniformLocation(name), x, y, z, w);
    }
    void setUniformI(const char* name, int x) { setUniformI(uniformLocation(name), x); }
    void setUniformI(const char* name, int x, int y) { setUniformI(uniformLocation(name), x, y); }
    void setUniformI(const char* name, int x, int y, int z) { setUniformI(uniformLocation(name), x, y, z); }
    void setUniformI(const char* name, int x, int y, int z, int w) { setUniformI(uniformLocation(name), x, y, z, w); }
    void setUniformF(std::int32_t location, float x) const;
    void setUniformF(std::int32_t location, float x, float y) const;
    void setUniformF(std::int32_t location, float x, float y, float z) const;
    void setUniformF(std::int32_t location, float x, float y, float z, float w) const;
    void setUniformI(std::int32_t location, int x) const;
    void setUniformI(std::int32_t location, int x, int y) const;
    void setUniformI(std::int32_t location, int x, int y, int z) const;
    void setUniformI(std::int32_t location, int x, int y, int z, int w) const;

    /// A square matrix of `size` 2, 3 or 4 (any other does nothing): size x size floats, column by column, or row
    /// by row with `transpose`.
    void setUniformMatrix(const char* name, int size, bool transpose, const float* values) {
        setUniformMatrix(uniformLocation(name), size, transpose, values);
    }
    void setUniformMatrix(std::int32_t location, int size, bool transpose, const float* values) const;

    /// The active attribute (uniform) of an index below GL_ACTIVE_ATTRIBUTES (GL_ACTIVE_UNIFORMS): its name, its
    /// array size (1 for no array) and GL type. An index without one leaves `name` untouched.
    void activeAttribute(std::uint32_t index, std::string& name, int& size, GLenum& type) const;
    void activeUniform(std::uint32_t index, std::string& name, int& size, GLenum& type) const;

private:
    explicit ShaderProgram(bool* found);
    void build(std::unique_ptr<ShaderStage>& stage, GLenum type, const std::string& source, bool fromFile);
    void linkStages();

    std::unique_ptr<ShaderStage> vertex_;
    std::unique_ptr<ShaderStage> fragment_;
    std::uint32_t handle_;
    std::map<std::string, std::int32_t, std::less<>> uniformLocations_;
};

} // namespace orvo
