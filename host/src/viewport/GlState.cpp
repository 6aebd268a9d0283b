#define GL_GLEXT_PROTOTYPES
#include "viewport/GlState.h"

#include <GL/gl.h>
#include <GL/glext.h>

#include <fmt/format.h>

namespace host::viewport {
namespace {

GLint integer(GLenum name) {
    GLint value = 0;
    glGetIntegerv(name, &value);
    return value;
}

std::string errorName(GLenum error) {
    switch (error) {
    case GL_INVALID_ENUM: return "GL_INVALID_ENUM";
    case GL_INVALID_VALUE: return "GL_INVALID_VALUE";
    case GL_INVALID_OPERATION: return "GL_INVALID_OPERATION";
    case GL_INVALID_FRAMEBUFFER_OPERATION: return "GL_INVALID_FRAMEBUFFER_OPERATION";
    case GL_STACK_OVERFLOW: return "GL_STACK_OVERFLOW";
    case GL_STACK_UNDERFLOW: return "GL_STACK_UNDERFLOW";
    case GL_OUT_OF_MEMORY: return "GL_OUT_OF_MEMORY";
    default: return fmt::format("GL error 0x{:04X}", error);
    }
}

/// Within glBegin and glEnd GL answers no question: the place for the answer stays as it was.
bool isInsideBegin() {
    GLint mode = -1;
    glGetIntegerv(GL_MATRIX_MODE, &mode);
    return mode == -1;
}

void restoreStack(GLenum mode, GLenum depthName, int depth, const std::array<double, 16>& top) {
    glMatrixMode(mode);
    for (int d = integer(depthName); d > depth; --d) glPopMatrix();
    for (int d = integer(depthName); d < depth; ++d) glPushMatrix();
    glLoadMatrixd(top.data());
}

} // namespace

void setDefaultState() {
    glUseProgram(0);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
    glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
    glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
    const GLint units = integer(GL_MAX_TEXTURE_UNITS);
    for (GLint unit = units - 1; unit >= 0; --unit) {
        glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(unit));
        for (const GLenum target : {GL_TEXTURE_1D, GL_TEXTURE_2D, GL_TEXTURE_3D, GL_TEXTURE_CUBE_MAP}) {
            glDisable(target);
            glBindTexture(target, 0);
        }
        glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
        glClientActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(unit));
        glDisableClientState(GL_TEXTURE_COORD_ARRAY);
    }
    for (const GLenum array : {GL_VERTEX_ARRAY, GL_NORMAL_ARRAY, GL_COLOR_ARRAY, GL_INDEX_ARRAY, GL_EDGE_FLAG_ARRAY,
                               GL_FOG_COORDINATE_ARRAY, GL_SECONDARY_COLOR_ARRAY})
        glDisableClientState(array);
    for (GLint i = integer(GL_MAX_VERTEX_ATTRIBS) - 1; i >= 0; --i) glDisableVertexAttribArray(static_cast<GLuint>(i));
    for (const GLenum capability : {GL_LIGHTING,
                                    GL_BLEND,
                                    GL_CULL_FACE,
                                    GL_FOG,
                                    GL_SCISSOR_TEST,
                                    GL_STENCIL_TEST,
                                    GL_ALPHA_TEST,
                                    GL_COLOR_LOGIC_OP,
                                    GL_COLOR_MATERIAL,
                                    GL_LINE_STIPPLE,
                                    GL_LINE_SMOOTH,
                                    GL_POINT_SMOOTH,
                                    GL_POLYGON_SMOOTH,
                                    GL_POLYGON_STIPPLE,
                                    GL_POLYGON_OFFSET_FILL,
                                    GL_POLYGON_OFFSET_LINE,
                                    GL_POLYGON_OFFSET_POINT,
                                    GL_RESCALE_NORMAL,
                                    GL_NORMALIZE,
                                    GL_COLOR_SUM,
                                    GL_VERTEX_PROGRAM_POINT_SIZE,
                                    GL_POINT_SPRITE})
        glDisable(capability);
    for (GLint i = integer(GL_MAX_CLIP_PLANES) - 1; i >= 0; --i) glDisable(GL_CLIP_PLANE0 + static_cast<GLenum>(i));
    glEnable(GL_DEPTH_TEST);
    glEnable(GL_DITHER);
    glDepthFunc(GL_LEQUAL);
    glDepthMask(GL_TRUE);
    glDepthRange(0, 1);
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    glBlendFunc(GL_ONE, GL_ZERO);
    glBlendEquation(GL_FUNC_ADD);
    glFrontFace(GL_CCW);
    glCullFace(GL_BACK);
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    glShadeModel(GL_SMOOTH);
    glLineWidth(1);
    glPointSize(1);
    glColor4f(1, 1, 1, 1);
    for (const GLenum direction : {GL_UNPACK_ALIGNMENT, GL_PACK_ALIGNMENT}) glPixelStorei(direction, 4);
    for (const GLenum name :
         {GL_UNPACK_ROW_LENGTH, GL_UNPACK_SKIP_ROWS, GL_UNPACK_SKIP_PIXELS, GL_UNPACK_SWAP_BYTES, GL_UNPACK_LSB_FIRST,
          GL_PACK_ROW_LENGTH, GL_PACK_SKIP_ROWS, GL_PACK_SKIP_PIXELS, GL_PACK_SWAP_BYTES, GL_PACK_LSB_FIRST})
        glPixelStorei(name, 0);
    glMatrixMode(GL_TEXTURE);
    glLoadIdentity();
    glMatrixMode(GL_MODELVIEW);
}

void loadMatrices(const MMatrix& projection, const MMatrix& modelView) {
    // Row vectors row by row are column vectors column by column, which is how GL takes a matrix.
    glMatrixMode(GL_PROJECTION);
    glLoadMatrixd(&projection.matrix[0][0]);
    glMatrixMode(GL_MODELVIEW);
    glLoadMatrixd(&modelView.matrix[0][0]);
}

std::string takeGlErrors() {
    std::string text;
    // A lost context answers the same error for ever.
    for (int i = 0; i < 8; ++i) {
        const GLenum error = glGetError();
        if (error == GL_NO_ERROR) break;
        text += (text.empty() ? "" : ", ") + errorName(error);
    }
    return text;
}

MatrixKeeper::MatrixKeeper() : mode_(integer(GL_MATRIX_MODE)) {
    modelView_.depth = integer(GL_MODELVIEW_STACK_DEPTH);
    projection_.depth = integer(GL_PROJECTION_STACK_DEPTH);
    texture_.depth = integer(GL_TEXTURE_STACK_DEPTH);
    glGetDoublev(GL_MODELVIEW_MATRIX, modelView_.top.data());
    glGetDoublev(GL_PROJECTION_MATRIX, projection_.top.data());
    glGetDoublev(GL_TEXTURE_MATRIX, texture_.top.data());
}

void MatrixKeeper::restore() const {
    restoreStack(GL_TEXTURE, GL_TEXTURE_STACK_DEPTH, texture_.depth, texture_.top);
    restoreStack(GL_PROJECTION, GL_PROJECTION_STACK_DEPTH, projection_.depth, projection_.top);
    restoreStack(GL_MODELVIEW, GL_MODELVIEW_STACK_DEPTH, modelView_.depth, modelView_.top);
    glMatrixMode(static_cast<GLenum>(mode_));
}

StateGuard::StateGuard()
    : attribDepth_(integer(GL_ATTRIB_STACK_DEPTH)), clientDepth_(integer(GL_CLIENT_ATTRIB_STACK_DEPTH)),
      drawFramebuffer_(integer(GL_DRAW_FRAMEBUFFER_BINDING)), readFramebuffer_(integer(GL_READ_FRAMEBUFFER_BINDING)) {
    takeGlErrors();
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glPushClientAttrib(GL_CLIENT_ALL_ATTRIB_BITS);
}

std::string StateGuard::finish() {
    finished_ = true;
    const bool open = isInsideBegin();
    if (open) {
        glEnd();
        takeGlErrors(); // of the question
    }
    std::string errors = takeGlErrors();
    if (open) errors += errors.empty() ? "glBegin without glEnd" : ", glBegin without glEnd";
    if (integer(GL_LIST_INDEX) != 0) glEndList();
    return errors;
}

StateGuard::~StateGuard() {
    if (!finished_) finish();
    glUseProgram(0);
    glBindVertexArray(0);
    const int clientDepth = integer(GL_CLIENT_ATTRIB_STACK_DEPTH), attribDepth = integer(GL_ATTRIB_STACK_DEPTH);
    for (int d = clientDepth; d > clientDepth_; --d) glPopClientAttrib();
    for (int d = attribDepth; d > attribDepth_; --d) glPopAttrib();
    // A draw that popped more than it pushed took what was kept, and may have changed the state after that.
    if (clientDepth <= clientDepth_ || attribDepth <= attribDepth_) setDefaultState();
    matrices_.restore();
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, static_cast<GLuint>(drawFramebuffer_));
    glBindFramebuffer(GL_READ_FRAMEBUFFER, static_cast<GLuint>(readFramebuffer_));
    takeGlErrors();
}

} // namespace host::viewport
