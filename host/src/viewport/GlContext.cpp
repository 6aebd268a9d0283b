#include "viewport/GlContext.h"

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GL/gl.h>

#include <array>
#include <cstdlib>
#include <fmt/format.h>
#include <string_view>
#include <vector>

namespace host::viewport {
namespace {

bool isListed(const char* extensions, std::string_view name) {
    const std::string padded = fmt::format(" {} ", extensions ? extensions : "");
    return padded.find(fmt::format(" {} ", name)) != std::string::npos;
}

std::string eglErrorText(const char* step) {
    return fmt::format("{} failed (EGL error 0x{:04X})", step, static_cast<unsigned>(eglGetError()));
}

bool switchedOff() {
    const char* value = std::getenv("ORVOSKY_NO_GL");
    return value && *value && std::string_view(value) != "0";
}

struct Platform {
    const char* name;
    EGLDisplay handle;
};

/// The displays to try, best first.
std::vector<Platform> platforms() {
    std::vector<Platform> found;
    const char* extensions = eglQueryString(EGL_NO_DISPLAY, EGL_EXTENSIONS);
    const auto getPlatformDisplay =
        reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(eglGetProcAddress("eglGetPlatformDisplayEXT"));
    const auto add = [&found](const char* name, EGLDisplay handle) {
        if (handle != EGL_NO_DISPLAY) found.push_back({name, handle});
    };
    if (getPlatformDisplay && isListed(extensions, "EGL_MESA_platform_surfaceless"))
        add("surfaceless", getPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr));
    const auto queryDevices = reinterpret_cast<PFNEGLQUERYDEVICESEXTPROC>(eglGetProcAddress("eglQueryDevicesEXT"));
    if (getPlatformDisplay && queryDevices && isListed(extensions, "EGL_EXT_platform_device")) {
        std::array<EGLDeviceEXT, 16> devices{};
        EGLint count = 0;
        if (queryDevices(static_cast<EGLint>(devices.size()), devices.data(), &count))
            for (EGLint i = 0; i < count; ++i)
                add("device",
                    getPlatformDisplay(EGL_PLATFORM_DEVICE_EXT, devices[static_cast<std::size_t>(i)], nullptr));
    }
    add("default", eglGetDisplay(EGL_DEFAULT_DISPLAY));
    return found;
}

EGLContext createBestContext(EGLDisplay display, EGLConfig config, const char* extensions) {
    if (isListed(extensions, "EGL_KHR_create_context")) {
        constexpr std::array<std::array<EGLint, 2>, 4> versions{{{4, 6}, {4, 5}, {4, 3}, {3, 3}}};
        for (const auto& [major, minor] : versions) {
            const EGLint attributes[] = {EGL_CONTEXT_MAJOR_VERSION_KHR,
                                         major,
                                         EGL_CONTEXT_MINOR_VERSION_KHR,
                                         minor,
                                         EGL_CONTEXT_OPENGL_PROFILE_MASK_KHR,
                                         EGL_CONTEXT_OPENGL_COMPATIBILITY_PROFILE_BIT_KHR,
                                         EGL_NONE};
            if (EGLContext context = eglCreateContext(display, config, EGL_NO_CONTEXT, attributes)) return context;
        }
    }
    const EGLint plain[] = {EGL_NONE};
    return eglCreateContext(display, config, EGL_NO_CONTEXT, plain);
}

} // namespace

std::unique_ptr<GlContext> GlContext::create(std::string* error) {
    std::string reasons;
    const auto fail = [&](std::string_view reason) {
        if (error) *error = fmt::format("No OpenGL context: {}", reason);
        return nullptr;
    };
    if (switchedOff()) return fail("switched off by ORVOSKY_NO_GL");

    for (const Platform& platform : platforms()) {
        std::string reason;
        const auto attempt = [&]() -> std::unique_ptr<GlContext> {
            std::unique_ptr<GlContext> made(new GlContext);
            EGLDisplay display = made->display_ = platform.handle;
            if (!eglInitialize(display, nullptr, nullptr)) {
                reason = eglErrorText("eglInitialize");
                return nullptr;
            }
            const char* extensions = eglQueryString(display, EGL_EXTENSIONS);
            if (!eglBindAPI(EGL_OPENGL_API)) {
                reason = eglErrorText("eglBindAPI");
                return nullptr;
            }
            const EGLint wanted[] = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT, EGL_NONE};
            EGLConfig config = nullptr;
            EGLint count = 0;
            if (!eglChooseConfig(display, wanted, &config, 1, &count) || count < 1) {
                reason = "no configuration that draws with OpenGL";
                return nullptr;
            }
            if (!isListed(extensions, "EGL_KHR_surfaceless_context")) {
                const EGLint size[] = {EGL_WIDTH, 16, EGL_HEIGHT, 16, EGL_NONE};
                made->surface_ = eglCreatePbufferSurface(display, config, size);
                if (!made->surface_) {
                    reason = eglErrorText("eglCreatePbufferSurface");
                    return nullptr;
                }
            }
            made->context_ = createBestContext(display, config, extensions);
            if (!made->context_) {
                reason = eglErrorText("eglCreateContext");
                return nullptr;
            }
            if (!made->makeCurrent()) {
                reason = eglErrorText("eglMakeCurrent");
                return nullptr;
            }
            const auto text = [](GLenum name) {
                const auto* value = reinterpret_cast<const char*>(glGetString(name));
                return value ? value : "unknown";
            };
            made->description_ = fmt::format("{} / {} / {}", text(GL_VENDOR), text(GL_RENDERER), text(GL_VERSION));
            return made;
        };
        if (auto made = attempt()) return made;
        reasons += fmt::format("{}{} display: {}", reasons.empty() ? "" : "; ", platform.name, reason);
    }
    return fail(reasons.empty() ? "EGL offers no display" : reasons);
}

GlContext::~GlContext() {
    // The display stays initialised: EGL gives every user in the process the same one, and eglTerminate would end the
    // contexts of them all.
    GlContext::release();
    if (context_) eglDestroyContext(display_, context_);
    if (surface_) eglDestroySurface(display_, surface_);
}

bool GlContext::makeCurrent() {
    // The client API that EGL binds to is a setting of the thread, and a fresh thread's is not OpenGL.
    return eglBindAPI(EGL_OPENGL_API) && eglMakeCurrent(display_, surface_, surface_, context_);
}

void GlContext::release() {
    if (GlContext::isCurrent()) eglMakeCurrent(display_, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
}

bool GlContext::isCurrent() const {
    // eglGetCurrentContext answers for the thread's bound client API.
    return context_ && eglBindAPI(EGL_OPENGL_API) && eglGetCurrentContext() == context_;
}

} // namespace host::viewport
