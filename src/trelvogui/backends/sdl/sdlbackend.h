#pragma once
// Feeds an SDL2 window's events to an overlay and lets the host's loop sleep until a frame is due.

#include <trelvogui/backends/sdl/trelvogui_sdl_export.h>
#include <trelvogui/gui/guiinputmanager.h>

#include <graphicsbase/graphicsscene.h>
#include <graphicsbase/uievents.h>

#include <boost/signals2/signal.hpp>

#include <atomic>
#include <cstdint>
#include <memory>

struct SDL_Window;
union SDL_Event;

namespace GraphicsBase {
class Camera;
}

namespace GUI {

class GUIManager;
namespace detail {
class FollowedCameras;
}

/// Forwards one SDL2 window's events to a GUIInputManager whose first screen handler is the
/// overlay's manager. Positions are converted from window coordinates to drawable (framebuffer)
/// pixels, y growing downward, with the previous position carried for drags; touch-finger positions
/// (normalised by SDL) become drawable pixels. Size changes resize the manager. Keys arrive as SDL
/// key codes with SDL's modifier bits; wheel deltas are kWheelNotch per notch. One backend per
/// window; events of other windows are left alone.
///
/// Usage, with the window's context current and the manager initialised:
///
///     GUI::SDLBackend input(window, context, *manager);
///     for (bool running = true; running;) {
///         SDL_Event event;
///         while (input.NextEvent(&event)) {   // sleeps in SDL_WaitEvent while nothing is due
///             if (!input.ProcessEvent(event)) { /* the host's own handling, SDL_QUIT included */ }
///         }
///         /* draw the scene, UpdateLayers, Draw, SDL_GL_SwapWindow */
///     }
class TRELVOGUI_SDL_EXPORT SDLBackend : public GraphicsBase::GraphicsScene {
public:
    /// Every non-zero input result, for hosts that act on more than the overlay's redraw (a camera
    /// moved by the view cube, the scene changed by the gizmo).
    boost::signals2::signal<void(GraphicsBase::DrawFlags)> DrawFlagsSignal;

    /// `context` is the window's OpenGL context; overlay work done for an event runs with it made
    /// current, and the host's current context is put back afterwards.
    SDLBackend(SDL_Window* window, void* context, GUIManager& manager);
    ~SDLBackend() override;

    SDLBackend(const SDLBackend&) = delete;
    SDLBackend& operator=(const SDLBackend&) = delete;

    /// Asks SDL for an OpenGL 3.3 core-profile context; call after SDL_Init and before creating the
    /// window.
    static void RequestOpenGL33();

    /// The next event into `event`, true; false when a frame is due and the queue is empty, the
    /// host's cue to draw. While nothing is due (no non-zero DrawFlags, overlay change, animation,
    /// resize, expose or RequestFrame since the last frame) it sleeps in SDL_WaitEvent.
    bool NextEvent(SDL_Event* event);
    /// Offers the event to the handlers; true when one consumed it (non-zero DrawFlags). Events the
    /// overlay leaves alone return false and are the host's.
    bool ProcessEvent(const SDL_Event& event);
    /// Asks for one more frame, for the host's own animations or changes; safe from any thread.
    void RequestFrame();
    /// Frames NextEvent has let the host draw.
    int Frames() const { return frames_; }

    /// False when the window or context was null, the window already had a backend or the manager
    /// was not initialised; nothing is forwarded then.
    bool Installed() const { return installed_; }
    GUIInputManager& Input() { return *input_; }
    GUIManager& Manager() { return *manager_; }
    /// Drawable pixels per window unit along x and y (1 except on HiDPI screens).
    void PixelScale(float* x, float* y) const;
    /// While on (the default), the manager's display scale follows the drawable-to-window ratio, at
    /// installation, on size changes and when the window moves to another display. Off leaves the
    /// scale to the host; turning it on again applies the window's ratio at once.
    void SetFollowDisplayScale(bool on);
    bool GetFollowDisplayScale() const { return followDisplayScale_; }

    /// Keeps the camera's viewport at the drawable size on resizes (and rebuilds its matrices), so
    /// widgets are drawn and picked where the host's scene is. Null, or a camera already followed, is
    /// ignored.
    void FollowViewport(std::shared_ptr<GraphicsBase::Camera> camera);

    static constexpr int kWheelNotch = 120;

    /// Input results arrive here: anything non-zero asks for a frame.
    void SetDrawFlags(GraphicsBase::DrawFlags flags) override;

private:
    SDL_Window* liveWindow() const;
    GraphicsBase::DrawFlags dispatch(const SDL_Event& event);
    void toPixels(float x, float y, int* px, int* py) const;
    void applyDisplayScale();

    uint32_t windowId_ = 0;
    void* context_;
    GUIManager* manager_;
    std::unique_ptr<GUIInputManager> input_;
    std::unique_ptr<detail::FollowedCameras> cameras_;
    bool installed_ = false;
    bool followDisplayScale_ = true;
    bool warnedGone_ = false;
    int lastX_ = 0;
    int lastY_ = 0;
    int buttons_ = 0;
    std::atomic<bool> requested_{true};
    int frames_ = 0;
    bool traceFrames_ = false;
    bool frameOpen_ = false;
};

} // namespace GUI
