#include <trelvogui/backends/glfw/glfwbackend.h>

#include <trelvogui/backends/detail/displayscale.h>
#include <trelvogui/backends/detail/followedcameras.h>
#include <trelvogui/backends/detail/frametrace.h>

#include <trelvogui/gui/guimanager.h>

#include <graphicsbase/camera.h>
#include <graphicsbase/logfile.h>

#include <GLFW/glfw3.h>

#include <cmath>
#include <cstdio>
#include <map>

using namespace GraphicsBase;

namespace GUI {
namespace {
// GLFW keeps one user pointer per window, which belongs to the host; backends are found here.
std::map<GLFWwindow*, GLFWBackend*>& backends() {
    static std::map<GLFWwindow*, GLFWBackend*> map;
    return map;
}

GLFWBackend* backendOf(GLFWwindow* window) {
    auto it = backends().find(window);
    return it == backends().end() ? nullptr : it->second;
}

// glfwTerminate destroys every window, after which there are no callbacks to put back. GLFW says
// whether it is running only through the error it reports, which the host's error callback must not see.
bool glfwRunning() {
    GLFWerrorfun hostCallback = glfwSetErrorCallback(nullptr);
    glfwGetError(nullptr);
    glfwGetTime();
    const bool running = glfwGetError(nullptr) != GLFW_NOT_INITIALIZED;
    glfwSetErrorCallback(hostCallback);
    return running;
}

int buttonBit(int button) {
    switch (button) {
    case GLFW_MOUSE_BUTTON_LEFT:
        return VX_UI::BUTTON_LEFT;
    case GLFW_MOUSE_BUTTON_RIGHT:
        return VX_UI::BUTTON_RIGHT;
    case GLFW_MOUSE_BUTTON_MIDDLE:
        return VX_UI::BUTTON_MIDDLE;
    default:
        return 0;
    }
}
} // namespace

struct GLFWBackend::Previous {
    GLFWcursorposfun cursor = nullptr;
    GLFWmousebuttonfun button = nullptr;
    GLFWscrollfun scroll = nullptr;
    GLFWkeyfun key = nullptr;
    GLFWframebuffersizefun framebufferSize = nullptr;
    GLFWwindowrefreshfun refresh = nullptr;
    GLFWwindowcontentscalefun contentScale = nullptr;
};

GLFWBackend::GLFWBackend(GLFWwindow* window, GUIManager& manager)
    : window_(window), manager_(&manager), input_(std::make_unique<GUIInputManager>(*this)),
      previous_(std::make_unique<Previous>()), cameras_(std::make_unique<detail::FollowedCameras>()),
      traceFrames_(detail::TraceFramesRequested()) {
    if (!window_) {
        LogFile::Instance().AddLine(LogLevel::Warning, "GLFWBackend: the window is null.\n");
        return;
    }
    if (backendOf(window_)) {
        LogFile::Instance().AddLine(LogLevel::Warning, "GLFWBackend: the window already has a backend.\n");
        return;
    }
    // Events would be hit-tested against layers that do not exist yet.
    if (!manager_->GetRenderer()) {
        LogFile::Instance().AddLine(LogLevel::Warning,
                                    "GLFWBackend: the manager is not initialised; nothing is installed.\n");
        return;
    }
    input_->addScreenHandler(manager_);
    backends()[window_] = this;
    previous_->cursor = glfwSetCursorPosCallback(window_, onCursor);
    previous_->button = glfwSetMouseButtonCallback(window_, onButton);
    previous_->scroll = glfwSetScrollCallback(window_, onScroll);
    previous_->key = glfwSetKeyCallback(window_, onKey);
    previous_->framebufferSize = glfwSetFramebufferSizeCallback(window_, onFramebufferSize);
    previous_->refresh = glfwSetWindowRefreshCallback(window_, onRefresh);
    previous_->contentScale = glfwSetWindowContentScaleCallback(window_, onContentScale);
    applyDisplayScale();
    // Start from where the pointer is, so that the first move is not a jump from the corner.
    double x = 0, y = 0;
    glfwGetCursorPos(window_, &x, &y);
    toPixels(x, y, &lastX_, &lastY_);
    installed_ = true;
}

GLFWBackend::~GLFWBackend() {
    if (!installed_)
        return;
    backends().erase(window_);
    if (!glfwRunning()) {
        LogFile::Instance().AddLine(LogLevel::Warning,
                                    "GLFWBackend: GLFW was terminated before the backend was destroyed.\n");
        return;
    }
    glfwSetCursorPosCallback(window_, previous_->cursor);
    glfwSetMouseButtonCallback(window_, previous_->button);
    glfwSetScrollCallback(window_, previous_->scroll);
    glfwSetKeyCallback(window_, previous_->key);
    glfwSetFramebufferSizeCallback(window_, previous_->framebufferSize);
    glfwSetWindowRefreshCallback(window_, previous_->refresh);
    glfwSetWindowContentScaleCallback(window_, previous_->contentScale);
}

template <class Work> void GLFWBackend::withContext(Work work) {
    // A host with several windows may have another one's context current while events arrive.
    GLFWwindow* current = glfwGetCurrentContext();
    if (current != window_)
        glfwMakeContextCurrent(window_);
    work();
    if (current != window_)
        glfwMakeContextCurrent(current);
}

bool GLFWBackend::pending() const {
    return requested_ || manager_->NeedsRedraw();
}

bool GLFWBackend::WaitForFrame() {
    if (!installed_) {
        std::printf("GLFWBackend::WaitForFrame(): the backend is not installed.\n");
        return false;
    }
    // Back for the next frame: the last one is drawn and swapped.
    if (frameOpen_)
        detail::TraceFrame(traceFrames_, frames_);
    frameOpen_ = false;
    if (pending())
        glfwPollEvents();
    else
        while (!pending() && !glfwWindowShouldClose(window_))
            glfwWaitEvents();
    if (glfwWindowShouldClose(window_))
        return false;
    requested_ = false;
    ++frames_;
    frameOpen_ = true;
    return true;
}

void GLFWBackend::RequestFrame() {
    requested_ = true;
    glfwPostEmptyEvent();
}

void GLFWBackend::SetDrawFlags(DrawFlags flags) {
    GraphicsScene::SetDrawFlags(flags);
    if (flags == DRAW_NOTHING)
        return;
    requested_ = true;
    DrawFlagsSignal(flags);
}

void GLFWBackend::onRefresh(GLFWwindow* window) {
    GLFWBackend* self = backendOf(window);
    if (!self)
        return;
    if (self->previous_->refresh)
        self->previous_->refresh(window);
    self->requested_ = true;
}

void GLFWBackend::RequestOpenGL33() {
    glfwWindowHint(GLFW_CONTEXT_VERSION_MAJOR, 3);
    glfwWindowHint(GLFW_CONTEXT_VERSION_MINOR, 3);
    glfwWindowHint(GLFW_OPENGL_PROFILE, GLFW_OPENGL_CORE_PROFILE);
    glfwWindowHint(GLFW_OPENGL_FORWARD_COMPAT, GLFW_TRUE);
}

void GLFWBackend::PixelScale(float* x, float* y) const {
    int ww = 0, wh = 0, fw = 0, fh = 0;
    glfwGetWindowSize(window_, &ww, &wh);
    glfwGetFramebufferSize(window_, &fw, &fh);
    *x = ww > 0 ? static_cast<float>(fw) / static_cast<float>(ww) : 1.f;
    *y = wh > 0 ? static_cast<float>(fh) / static_cast<float>(wh) : 1.f;
}

void GLFWBackend::toPixels(double x, double y, int* px, int* py) const {
    float sx = 1.f, sy = 1.f;
    PixelScale(&sx, &sy);
    *px = static_cast<int>(std::floor(x * sx));
    *py = static_cast<int>(std::floor(y * sy));
}

bool GLFWBackend::Touch(const VX_UI::TouchEvent& event) {
    VX_UI::TouchEvent converted = event;
    float sx = 1.f, sy = 1.f;
    PixelScale(&sx, &sy);
    for (int i = 0; i < converted.pointCount && i < 10; ++i) {
        converted.points[i].x *= sx;
        converted.points[i].y *= sy;
    }
    return input_->touchDispatchToHandlers(&converted);
}

void GLFWBackend::onCursor(GLFWwindow* window, double x, double y) {
    GLFWBackend* self = backendOf(window);
    if (!self)
        return;
    if (self->previous_->cursor)
        self->previous_->cursor(window, x, y);
    int px = 0, py = 0;
    self->toPixels(x, y, &px, &py);
    self->withContext([&] {
        self->input_->mouseMoveEvent(px, py, self->lastX_, self->lastY_, self->buttons_, self->modifiers_);
    });
    self->lastX_ = px;
    self->lastY_ = py;
}

void GLFWBackend::onButton(GLFWwindow* window, int button, int action, int mods) {
    GLFWBackend* self = backendOf(window);
    if (!self)
        return;
    if (self->previous_->button)
        self->previous_->button(window, button, action, mods);
    int bit = buttonBit(button);
    if (bit == 0)
        return;
    self->modifiers_ = mods;
    // GLFW reports every motion (and the position on entering the window) before a button event, so
    // the last cursor position is where the button went down.
    const int x = self->lastX_, y = self->lastY_;
    self->withContext([&] {
        if (action == GLFW_PRESS) {
            self->buttons_ |= bit;
            self->input_->mousePressEvent(x, y, x, y, self->buttons_, mods);
        } else {
            self->buttons_ &= ~bit;
            self->input_->mouseReleaseEvent(x, y, x, y, self->buttons_, mods);
        }
    });
}

void GLFWBackend::onScroll(GLFWwindow* window, double dx, double dy) {
    GLFWBackend* self = backendOf(window);
    if (!self)
        return;
    if (self->previous_->scroll)
        self->previous_->scroll(window, dx, dy);
    // Touchpads scroll in fractions of a notch: hand on whole units and keep the rest, until the
    // direction changes.
    if (dy * self->wheel_ < 0)
        self->wheel_ = 0;
    self->wheel_ += dy * kWheelNotch;
    int delta = static_cast<int>(self->wheel_);
    if (delta != 0) {
        self->wheel_ -= delta;
        self->input_->mouseWheelEvent(delta);
    }
}

void GLFWBackend::onKey(GLFWwindow* window, int key, int scancode, int action, int mods) {
    GLFWBackend* self = backendOf(window);
    if (!self)
        return;
    if (self->previous_->key)
        self->previous_->key(window, key, scancode, action, mods);
    self->modifiers_ = mods;
    if (key == GLFW_KEY_UNKNOWN)
        return;
    if (action == GLFW_RELEASE)
        self->input_->keyReleaseEvent(static_cast<unsigned>(key), static_cast<unsigned>(mods));
    else
        self->input_->keyPressEvent(static_cast<unsigned>(key), static_cast<unsigned>(mods));
}

void GLFWBackend::onFramebufferSize(GLFWwindow* window, int width, int height) {
    GLFWBackend* self = backendOf(window);
    if (!self)
        return;
    if (self->previous_->framebufferSize)
        self->previous_->framebufferSize(window, width, height);
    // A minimised window reports 0 x 0; the overlay keeps its layers until it comes back.
    if (width > 0 && height > 0) {
        self->withContext([&] { self->manager_->Resize(width, height); });
        // A window moved to another screen may change its framebuffer ratio with its size.
        self->applyDisplayScale();
        self->cameras_->Resize(width, height);
    }
    self->requested_ = true;
}

void GLFWBackend::onContentScale(GLFWwindow* window, float x, float y) {
    GLFWBackend* self = backendOf(window);
    if (!self)
        return;
    if (self->previous_->contentScale)
        self->previous_->contentScale(window, x, y);
    self->applyDisplayScale();
    self->requested_ = true;
}

void GLFWBackend::SetFollowDisplayScale(bool on) {
    followDisplayScale_ = on;
    applyDisplayScale();
}

void GLFWBackend::applyDisplayScale() {
    if (!followDisplayScale_ || backendOf(window_) != this)
        return;
    float content = 0.f, unused = 0.f;
    glfwGetWindowContentScale(window_, &content, &unused);
    if (!(content > 0.f)) // no content scale reported: what the framebuffer says
        PixelScale(&content, &unused);
    // Controls lay out again at the new scale, which may upload geometry: with this window's context.
    withContext([&] { detail::FollowDisplayScale(*manager_, content); });
    requested_ = true;
}

void GLFWBackend::FollowViewport(std::shared_ptr<Camera> camera) {
    cameras_->Add(std::move(camera));
}

} // namespace GUI
