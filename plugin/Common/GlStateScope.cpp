#include "GlStateScope.h"

#include "GlFunctions.h"

#include <cstring>

namespace orvo {

GlStateScope::GlStateScope() {
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glPushMatrix();
}

GlStateScope::~GlStateScope() {
    glPopAttrib();
    glPopMatrix();
}

GlArrayScope::GlArrayScope() { glPushClientAttrib(GL_CLIENT_VERTEX_ARRAY_BIT); }
GlArrayScope::~GlArrayScope() { glPopClientAttrib(); }

GlMatrixScope::GlMatrixScope(const Matrix44& matrix) {
    glPushMatrix();
    glMultMatrixd(&matrix.m[0][0]);
}

GlMatrixScope::~GlMatrixScope() { glPopMatrix(); }

void enableDepthClamp() {
    const auto* extensions = reinterpret_cast<const char*>(glGetString(GL_EXTENSIONS));
    if (extensions && std::strstr(extensions, "_depth_clamp")) glEnable(GL_DEPTH_CLAMP);
}

void disableClientArrays() {
    for (const GLenum array :
         {GL_TEXTURE_COORD_ARRAY, GL_VERTEX_ARRAY, GL_NORMAL_ARRAY, GL_INDEX_ARRAY, GL_COLOR_ARRAY, GL_EDGE_FLAG_ARRAY})
        glDisableClientState(array);
}

} // namespace orvo
