#include <trelvogui/backends/sdl/sdlbackend.h>

#include <trelvogui/backends/detail/displayscale.h>
#include <trelvogui/backends/detail/followedcameras.h>
#include <trelvogui/backends/detail/frametrace.h>
#include <trelvogui/gui/guimanager.h>

#include <graphicsbase/logfile.h>

#include <SDL.h>

#include <cmath>
#include <cstdio>
#include <map>

using namespace GraphicsBase;

namespace GUI {
namespace {
std::map<uint32_t, SDLBackend*>& backends() {
    static std::map<uint32_t, SDLBackend*> map;
    return map;
}

// Wakes a host sleeping in SDL_WaitEvent when RequestFrame comes from another thread.
uint32_t wakeEventType() {
    static const uint32_t type = SDL_RegisterEvents(1);
    return type;
}

int buttonBit(int button) {
    switch (button) {
    case SDL_BUTTON_LEFT:
        return VX_UI::BUTTON_LEFT;
    case SDL_BUTTON_RIGHT:
        return VX_UI::BUTTON_RIGHT;
    case SDL_BUTTON_MIDDLE:
        return VX_UI::BUTTON_MIDDLE;
    default:
        return 0;
    }
}

int buttonMask(uint32_t state) {
    return ((state & SDL_BUTTON_LMASK) ? VX_UI::BUTTON_LEFT : 0) |
           ((state & SDL_BUTTON_RMASK) ? VX_UI::BUTTON_RIGHT : 0) |
           ((state & SDL_BUTTON_MMASK) ? VX_UI::BUTTON_MIDDLE : 0);
}

// The window an event belongs to; 0 for events that belong to none (quit, devices).
uint32_t windowOf(const SDL_Event& e) {
    switch (e.type) {
    case SDL_WINDOWEVENT:
        return e.window.windowID;
    case SDL_MOUSEMOTION:
        return e.motion.windowID;
    case SDL_MOUSEBUTTONDOWN:
    case SDL_MOUSEBUTTONUP:
        return e.button.windowID;
    case SDL_MOUSEWHEEL:
        return e.wheel.windowID;
    case SDL_KEYDOWN:
    case SDL_KEYUP:
        return e.key.windowID;
    case SDL_FINGERDOWN:
    case SDL_FINGERUP:
    case SDL_FINGERMOTION:
        return e.tfinger.windowID;
    default:
        return 0;
    }
}

/// Makes the window's context current for overlay work and puts the host's back afterwards.
class ContextScope {
public:
    ContextScope(SDL_Window* window, void* context)
        : window_(SDL_GL_GetCurrentWindow()), context_(SDL_GL_GetCurrentContext()),
          switched_(context_ != context) {
        if (switched_)
            SDL_GL_MakeCurrent(window, context);
    }
    ~ContextScope() {
        if (switched_)
            SDL_GL_MakeCurrent(window_, context_);
    }
    ContextScope(const ContextScope&) = delete;
    ContextScope& operator=(const ContextScope&) = delete;

private:
    SDL_Window* window_;
    SDL_GLContext context_;
    bool switched_;
};
} // namespace

SDLBackend::SDLBackend(SDL_Window* window, void* context, GUIManager& manager)
    : context_(context), manager_(&manager), input_(std::make_unique<GUIInputManager>(*this)),
      cameras_(std::make_unique<detail::FollowedCameras>()), traceFrames_(detail::TraceFramesRequested()) {
    const char* refusal = nullptr;
    if (!window || !context)
        refusal = "SDLBackend: the window or its context is null.\n";
    else if (backends().count(SDL_GetWindowID(window)))
        refusal = "SDLBackend: the window already has a backend.\n";
    else if (!manager_->GetRenderer())
        refusal = "SDLBackend: the manager is not initialised; nothing is forwarded.\n";
    if (refusal) {
        LogFile::Instance().AddLine(LogLevel::Warning, refusal);
        return;
    }
    windowId_ = SDL_GetWindowID(window);
    input_->addScreenHandler(manager_);
    backends()[windowId_] = this;
    wakeEventType();
    // Start from where the pointer is, so that the first move is not a jump from the corner.
    int x = 0, y = 0;
    SDL_GetMouseState(&x, &y);
    toPixels(static_cast<float>(x), static_cast<float>(y), &lastX_, &lastY_);
    installed_ = true;
    applyDisplayScale();
}

SDLBackend::~SDLBackend() {
    if (installed_)
        backends().erase(windowId_);
}

void SDLBackend::RequestOpenGL33() {
    SDL_GL_SetAttribute(SDL_GL_CONTEXT_MAJOR_VERSION, 3);
    SDL_GL_SetAttribute(SDL_GL_CONTEXT_MINOR_VERSION, 3);
    SDL_GL_SetAttribute(SDL_GL_CONTEXT_PROFILE_MASK, SDL_GL_CONTEXT_PROFILE_CORE);
    SDL_GL_SetAttribute(SDL_GL_CONTEXT_FLAGS, SDL_GL_CONTEXT_FORWARD_COMPATIBLE_FLAG);
    SDL_GL_SetAttribute(SDL_GL_DOUBLEBUFFER, 1);
}

SDL_Window* SDLBackend::liveWindow() const {
    // A destroyed window's id no longer resolves, where a kept pointer would dangle.
    return installed_ ? SDL_GetWindowFromID(windowId_) : nullptr;
}

void SDLBackend::PixelScale(float* x, float* y) const {
    *x = *y = 1.f;
    SDL_Window* window = liveWindow();
    if (!window)
        return;
    int ww = 0, wh = 0, dw = 0, dh = 0;
    SDL_GetWindowSize(window, &ww, &wh);
    SDL_GL_GetDrawableSize(window, &dw, &dh);
    if (ww > 0 && wh > 0) {
        *x = static_cast<float>(dw) / static_cast<float>(ww);
        *y = static_cast<float>(dh) / static_cast<float>(wh);
    }
}

void SDLBackend::SetFollowDisplayScale(bool on) {
    followDisplayScale_ = on;
    applyDisplayScale();
}

void SDLBackend::applyDisplayScale() {
    if (!followDisplayScale_ || !liveWindow())
        return;
    float x = 1.f, y = 1.f;
    PixelScale(&x, &y);
    detail::FollowDisplayScale(*manager_, x);
    requested_ = true;
}

void SDLBackend::toPixels(float x, float y, int* px, int* py) const {
    float sx = 1.f, sy = 1.f;
    PixelScale(&sx, &sy);
    *px = static_cast<int>(std::floor(x * sx));
    *py = static_cast<int>(std::floor(y * sy));
}

bool SDLBackend::NextEvent(SDL_Event* event) {
    // Back for events: the last frame is drawn and swapped.
    if (frameOpen_)
        detail::TraceFrame(traceFrames_, frames_);
    frameOpen_ = false;
    for (;;) {
        const bool due = requested_ || (installed_ && manager_->NeedsRedraw());
        if (due ? !SDL_PollEvent(event) : !SDL_WaitEvent(event)) {
            if (!due) {
                std::printf("SDLBackend::NextEvent(): %s\n", SDL_GetError());
                return false;
            }
            requested_ = false;
            ++frames_;
            frameOpen_ = true;
            return false;
        }
        if (event->type != wakeEventType())
            return true;
    }
}

void SDLBackend::RequestFrame() {
    requested_ = true;
    SDL_Event wake{};
    wake.type = wakeEventType();
    SDL_PushEvent(&wake);
}

void SDLBackend::SetDrawFlags(DrawFlags flags) {
    GraphicsScene::SetDrawFlags(flags);
    if (flags == DRAW_NOTHING)
        return;
    requested_ = true;
    DrawFlagsSignal(flags);
}

bool SDLBackend::ProcessEvent(const SDL_Event& event) {
    if (!installed_ || windowOf(event) != windowId_)
        return false;
    SDL_Window* window = liveWindow();
    if (!window) {
        if (!warnedGone_)
            LogFile::Instance().AddLine(LogLevel::Warning,
                                        "SDLBackend: the window was destroyed; its events are ignored.\n");
        warnedGone_ = true;
        return false;
    }
    ContextScope current(window, context_);
    return dispatch(event) != DRAW_NOTHING;
}

DrawFlags SDLBackend::dispatch(const SDL_Event& e) {
    ClearDrawFlags();
    int x = 0, y = 0;
    switch (e.type) {
    case SDL_MOUSEMOTION:
        toPixels(static_cast<float>(e.motion.x), static_cast<float>(e.motion.y), &x, &y);
        buttons_ = buttonMask(e.motion.state);
        input_->mouseMoveEvent(x, y, lastX_, lastY_, buttons_, static_cast<int>(SDL_GetModState()));
        lastX_ = x;
        lastY_ = y;
        break;
    case SDL_MOUSEBUTTONDOWN:
    case SDL_MOUSEBUTTONUP: {
        const int bit = buttonBit(e.button.button);
        if (bit == 0)
            break;
        toPixels(static_cast<float>(e.button.x), static_cast<float>(e.button.y), &x, &y);
        const int mods = static_cast<int>(SDL_GetModState());
        if (e.type == SDL_MOUSEBUTTONDOWN) {
            buttons_ |= bit;
            input_->mousePressEvent(x, y, x, y, buttons_, mods);
        } else {
            buttons_ &= ~bit;
            input_->mouseReleaseEvent(x, y, x, y, buttons_, mods);
        }
        lastX_ = x;
        lastY_ = y;
        break;
    }
    case SDL_MOUSEWHEEL: {
        const int notches = e.wheel.direction == SDL_MOUSEWHEEL_FLIPPED ? -e.wheel.y : e.wheel.y;
        if (notches != 0)
            input_->mouseWheelEvent(notches * kWheelNotch);
        break;
    }
    case SDL_KEYDOWN:
        input_->keyPressEvent(static_cast<unsigned>(e.key.keysym.sym), e.key.keysym.mod);
        break;
    case SDL_KEYUP:
        input_->keyReleaseEvent(static_cast<unsigned>(e.key.keysym.sym), e.key.keysym.mod);
        break;
    case SDL_FINGERDOWN:
    case SDL_FINGERMOTION:
    case SDL_FINGERUP: {
        // SDL gives finger positions as fractions of the window.
        int dw = 0, dh = 0;
        SDL_GL_GetDrawableSize(liveWindow(), &dw, &dh);
        VX_UI::TouchEvent touch;
        touch.pointCount = 1;
        touch.points[0].id = static_cast<int>(e.tfinger.fingerId);
        touch.points[0].x = e.tfinger.x * static_cast<float>(dw);
        touch.points[0].y = e.tfinger.y * static_cast<float>(dh);
        touch.points[0].state = e.type == SDL_FINGERDOWN ? 0 : e.type == SDL_FINGERMOTION ? 1 : 2;
        input_->touchDispatchToHandlers(&touch);
        break;
    }
    case SDL_WINDOWEVENT:
        if (e.window.event == SDL_WINDOWEVENT_SIZE_CHANGED) {
            int dw = 0, dh = 0;
            SDL_GL_GetDrawableSize(liveWindow(), &dw, &dh);
            // A minimised window reports 0 x 0; the overlay keeps its layers until it comes back.
            if (dw > 0 && dh > 0)
                manager_->Resize(dw, dh);
            applyDisplayScale();
            cameras_->Resize(dw, dh);
            requested_ = true;
        } else if (e.window.event == SDL_WINDOWEVENT_DISPLAY_CHANGED) {
            applyDisplayScale();
        } else if (e.window.event == SDL_WINDOWEVENT_EXPOSED) {
            requested_ = true;
        }
        // Window events are the host's as well.
        return DRAW_NOTHING;
    default:
        break;
    }
    return GetDrawFlags();
}

void SDLBackend::FollowViewport(std::shared_ptr<Camera> camera) {
    cameras_->Add(std::move(camera));
}

} // namespace GUI
