#pragma once
// Wires a GLFW window's pointer, button, wheel, key and size events to an overlay in one call.

#include <trelvogui/backends/glfw/trelvogui_glfw_export.h>
#include <trelvogui/gui/guiinputmanager.h>

#include <graphicsbase/graphicsscene.h>
#include <graphicsbase/uievents.h>

#include <boost/signals2/signal.hpp>

#include <atomic>
#include <memory>

namespace GraphicsBase {
class Camera;
}

struct GLFWwindow;

namespace GUI {

class GUIManager;
namespace detail {
class FollowedCameras;
}

/// Installs callbacks on a GLFW window and forwards its events to a GUIInputManager whose first
/// screen handler is the overlay's manager. Callbacks the host installed before are kept and called
/// first (chained); the destructor puts them back. Positions are converted from window coordinates
/// to framebuffer pixels (they differ on HiDPI screens), keep y growing downward, and carry the
/// previous position from which drags are measured; the button mask is tracked from the button
/// events. Framebuffer size changes resize the manager. Keys arrive as GLFW key codes (printable
/// keys are their upper-case ASCII) with GLFW's modifier bits; wheel deltas are kWheelNotch per
/// notch, positive away from the user. One backend per window.
///
/// Usage, with the window's context current and the manager initialised:
///
///     GUI::GLFWBackend input(window, *manager);
///     while (input.WaitForFrame()) { /* draw the scene, UpdateLayers, Draw, swap */ }
///
/// The host's own handlers go after the manager: `input.Input().addScreenHandler(&myHandler)`.
/// Overlay work done from a callback (hit detection, resizing the layers) runs with the window's
/// context made current for it; the host's current context is put back afterwards.
class TRELVOGUI_GLFW_EXPORT GLFWBackend : public GraphicsBase::GraphicsScene {
public:
    /// Every non-zero input result, for hosts that act on more than the overlay's redraw (a camera
    /// moved by the view cube, the scene changed by the gizmo).
    boost::signals2::signal<void(GraphicsBase::DrawFlags)> DrawFlagsSignal;

    /// Installs the callbacks. The manager must outlive the backend; destroy the backend before the
    /// window.
    GLFWBackend(GLFWwindow* window, GUIManager& manager);
    ~GLFWBackend() override;

    GLFWBackend(const GLFWBackend&) = delete;
    GLFWBackend& operator=(const GLFWBackend&) = delete;

    /// Asks GLFW for an OpenGL 3.3 core-profile context in the windows created next; call between
    /// glfwInit and glfwCreateWindow.
    static void RequestOpenGL33();

    /// Returns when a frame must be drawn: at once while something is pending (the first frame, an
    /// input result with non-zero DrawFlags, an overlay change or running animation, a resize or
    /// expose, RequestFrame), otherwise after sleeping in glfwWaitEvents until that is so. Events are
    /// processed either way. False when the window should close (or the backend is not installed).
    bool WaitForFrame();
    /// Asks for one more frame, for the host's own animations or changes; safe from any thread.
    void RequestFrame();
    /// Frames WaitForFrame has let the host draw.
    int Frames() const { return frames_; }

    /// False when the window was null or already had a backend; nothing was installed then.
    bool Installed() const { return installed_; }
    GLFWwindow* Window() const { return window_; }
    GUIInputManager& Input() { return *input_; }
    GUIManager& Manager() { return *manager_; }

    /// Framebuffer pixels per window unit along x and y (1 except on HiDPI screens).
    void PixelScale(float* x, float* y) const;
    /// While on (the default), the manager's display scale follows the window's content scale (the
    /// framebuffer-to-window ratio where GLFW reports none), at installation and whenever it changes.
    /// Off leaves the scale to the host; turning it on again applies the window's scale at once.
    void SetFollowDisplayScale(bool on);
    bool GetFollowDisplayScale() const { return followDisplayScale_; }
    /// Touch points in window coordinates, converted to framebuffer pixels and offered to the
    /// handlers. GLFW itself reports no touch events; hosts with a touch source of their own feed
    /// them here.
    bool Touch(const GraphicsBase::VX_UI::TouchEvent& event);

    /// Keeps the camera's viewport at the framebuffer size on resizes (and rebuilds its matrices), so
    /// widgets are drawn and picked where the host's scene is. Null, or a camera already followed, is
    /// ignored.
    void FollowViewport(std::shared_ptr<GraphicsBase::Camera> camera);

    /// The wheel delta for one notch of a mouse wheel; finer touchpad scrolling is accumulated.
    static constexpr int kWheelNotch = 120;

    /// Input results arrive here: anything non-zero asks for a frame.
    void SetDrawFlags(GraphicsBase::DrawFlags flags) override;

private:
    struct Previous;
    static void onCursor(GLFWwindow* window, double x, double y);
    static void onButton(GLFWwindow* window, int button, int action, int mods);
    static void onScroll(GLFWwindow* window, double dx, double dy);
    static void onKey(GLFWwindow* window, int key, int scancode, int action, int mods);
    static void onFramebufferSize(GLFWwindow* window, int width, int height);
    static void onRefresh(GLFWwindow* window);
    static void onContentScale(GLFWwindow* window, float x, float y);
    void applyDisplayScale();
    template <class Work> void withContext(Work work);
    bool pending() const;
    void toPixels(double x, double y, int* px, int* py) const;

    GLFWwindow* window_;
    GUIManager* manager_;
    std::unique_ptr<GUIInputManager> input_;
    std::unique_ptr<Previous> previous_;
    bool installed_ = false;
    bool followDisplayScale_ = true;
    int lastX_ = 0;
    int lastY_ = 0;
    int buttons_ = 0;
    int modifiers_ = 0;
    double wheel_ = 0.0;
    std::unique_ptr<detail::FollowedCameras> cameras_;
    std::atomic<bool> requested_{true};
    int frames_ = 0;
    bool traceFrames_ = false;
    bool frameOpen_ = false;
};

} // namespace GUI
