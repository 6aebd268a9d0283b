#include "Common/TextureCache.h"
#include "SkyTool/SkyProgram.h"
#include "UtilityTest.h"
#include "kit/TemporaryFolder.h"

#include <fstream>
#include <map>

using namespace orvo;

namespace {

int loads = 0;

/// Contexts that know their shaders' texts, programs that build unless `valid` is false, and an image file.
class SharedGlObjects : public UtilityTest {
protected:
    SharedGlObjects() { loads = 0; }

    GlFunctions driver() {
        GlFunctions table;
        table.createShader = [this](GLenum) { return ++names_; };
        table.shaderSource = [this](GLuint shader, GLsizei, const GLchar* const* texts, const GLint*) {
            shaders_[context_][shader] = texts[0];
        };
        table.isShader = [this](GLuint shader) { return GLboolean(shaders_[context_].count(shader)); };
        table.deleteShader = [this](GLuint shader) { shaders_[context_].erase(shader); };
        table.getShaderiv = [this](GLuint shader, GLenum, GLint* value) {
            *value = static_cast<GLint>(shaders_[context_][shader].size()) + 1;
        };
        table.getShaderSource = [this](GLuint shader, GLsizei size, GLsizei*, GLchar* text) {
            text[shaders_[context_][shader].copy(text, static_cast<std::size_t>(size) - 1)] = '\0';
        };
        table.createProgram = [this] { return ++built_, ++names_; };
        table.deleteProgram = [this](GLuint) { --built_; };
        table.getProgramiv = [this](GLuint, GLenum name, GLint* value) {
            *value = name == GL_VALIDATE_STATUS && valid;
        };
        return table;
    }
    static bool load(TextureHandle&, const std::string& path) { return ++loads, !path.ends_with("none"); }

    const SkyShaderTexts texts{"SomeSky", "V", "F"}, otherTexts{"SomeSky", "V", "G"};
    bool valid = true;
    int context_ = 1, built_ = 0;
    const orvo::test::TemporaryFolder folder_;
    const std::string file_ = folder_.write("image", "image").string();

private:
    GLuint names_ = 0;
    std::map<int, std::map<GLuint, std::string>> shaders_; ///< by context
    GlFunctionsScope scope_{driver()};
};

} // namespace

// Catches programs that are built for every node, one that goes while a node still draws with it, one of other sources
// or of another context, a failure that spreads to other nodes, and one that stays when nobody is left.
TEST_F(SharedGlObjects, EqualProgramsAreOne) {
    SkyProgram a, b, c;
    ShaderProgram* program = a.get(texts);
    EXPECT_EQ(b.get(texts), program);
    EXPECT_EQ(built_, 1);
    EXPECT_NE(c.get(otherTexts), program);
    a.release();
    EXPECT_EQ(b.get(texts), program);
    EXPECT_EQ(a.get(texts), program);
    valid = false;
    SkyProgram d;
    EXPECT_EQ(d.get({"SomeSky", "bad", "F"}), nullptr);
    EXPECT_TRUE(d.buildFailed());
    EXPECT_FALSE(a.buildFailed());
    valid = true;
    context_ = 2;
    SkyProgram elsewhere, beside;
    EXPECT_NE(elsewhere.get(texts), program) << "its name means nothing there";
    EXPECT_EQ(beside.get(texts), elsewhere.get(texts));
    elsewhere.release();
    beside.release();
    context_ = 1;
    for (SkyProgram* holder : {&a, &b, &c}) holder->release();
    EXPECT_EQ(built_, 0);
    EXPECT_NE(a.get(texts), nullptr);
    EXPECT_EQ(built_, 1);
}

// Catches an image that is loaded for every node, or not when it was changed, forgotten, or needed in another context.
TEST_F(SharedGlObjects, ATextureIsLoadedOnceForAFile) {
    auto first = sharedTexture(&load, file_);
    const auto other = sharedTexture(&load, file_);
    EXPECT_NE(first, nullptr);
    EXPECT_EQ(other, first);
    EXPECT_EQ(loads, 1);
    std::ofstream(file_) << "another image";
    const auto changed = sharedTexture(&load, file_);
    EXPECT_NE(changed, first);
    first.reset();
    EXPECT_EQ(sharedTexture(&load, file_), changed) << "the old one's end must not hide the new one";
    forgetSharedTexture(&load, file_);
    const auto forced = sharedTexture(&load, file_);
    EXPECT_NE(forced, changed);
    EXPECT_EQ(sharedTexture(&load, file_), forced);
    EXPECT_EQ(loads, 3);
    EXPECT_EQ(sharedTexture(&load, "none"), nullptr);
    context_ = 2;
    EXPECT_NE(sharedTexture(&load, file_), forced);
}
