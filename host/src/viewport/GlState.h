#pragma once

#include <maya/MMatrix.h>

#include <array>
#include <string>

namespace host::viewport {

/// A place in the port, in pixels from the bottom left.
struct PortRect {
    int x = 0, y = 0, width = 0, height = 0;
};

/// Sets the GL state that draws may count on: no program, buffer, texture or array bound, depth test less-or-equal
/// with writes, filled faces, and lighting, blending, culling, fog, scissor, stencil and alpha test off. Matrices,
/// the viewport and the framebuffer are left alone.
void setDefaultState();

/// Loads GL's projection and modelview matrices; the modelview stack is the current one then.
void loadMatrices(const MMatrix& projection, const MMatrix& modelView);

/// Takes the errors that GL has noted so far, as "GL_INVALID_VALUE, ..."; empty when there were none.
std::string takeGlErrors();

/// What GL's matrices are now, to be put back later however the stacks were used meanwhile.
class MatrixKeeper {
public:
    MatrixKeeper();
    /// Brings the stacks to the depths and the top matrices that they had, and the matrix mode too.
    void restore() const;

private:
    struct Stack {
        int depth = 1;
        std::array<double, 16> top{};
    };
    int mode_ = 0;
    Stack modelView_, projection_, texture_;
};

/// Keeps what somebody else's draw does to GL from those that follow: at its end, state, matrices and framebuffer are
/// as they were, whatever was left open, bound or pushed. The state that it finds is to be the default one.
class StateGuard {
public:
    StateGuard();
    ~StateGuard();
    StateGuard(const StateGuard&) = delete;
    StateGuard& operator=(const StateGuard&) = delete;

    /// Ends what the draw left open (a glBegin, a display list) and answers the errors that it caused.
    std::string finish();

private:
    int attribDepth_ = 0, clientDepth_ = 0, drawFramebuffer_ = 0, readFramebuffer_ = 0;
    MatrixKeeper matrices_;
    bool finished_ = false;
};

} // namespace host::viewport
