#pragma once
// Wires a GLFW window's pointer, button, wheel, key and size events to an overlay in one call.

#include <trelvogui/backends/glfw/trelvogui_glfw_export.h>
#include <trelvogui/gui/guiinputmanager.h>

#include <graphicsbase/graphicsscene.h>
#include <graphicsbase/uievents.h>

#include <functional>
#include <memory>
#include <vector>

class Camera;

struct GLFWwindow;

namespace GUI {

class GUIManager;

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
///
/// The host's own handlers go after the manager: `input.Input().addScreenHandler(&myHandler)`.
class TRELVOGUI_GLFW_EXPORT GLFWBackend : public GraphicsScene {
public:
    /// Installs the callbacks. The manager must outlive the backend; destroy the backend before the
    /// window.
    GLFWBackend(GLFWwindow* window, GUIManager& manager);
    ~GLFWBackend() override;

    GLFWBackend(const GLFWBackend&) = delete;
    GLFWBackend& operator=(const GLFWBackend&) = delete;

    /// Asks GLFW for an OpenGL 3.3 core-profile context in the windows created next; call between
    /// glfwInit and glfwCreateWindow.
    static void RequestOpenGL33();

    /// False when the window was null or already had a backend; nothing was installed then.
    bool Installed() const { return installed_; }
    GLFWwindow* Window() const { return window_; }
    GUIInputManager& Input() { return *input_; }
    GUIManager& Manager() { return *manager_; }

    /// Framebuffer pixels per window unit along x and y (1 except on HiDPI screens).
    void PixelScale(float* x, float* y) const;
    /// Touch points in window coordinates, converted to framebuffer pixels and offered to the
    /// handlers. GLFW itself reports no touch events; hosts with a touch source of their own feed
    /// them here.
    bool Touch(const VX_UI::TouchEvent& event);

    /// Called with each input result as it arrives (it is accumulated too, see GetDrawFlags): a host
    /// learns at once that a cube click moved the shared camera (bit 16) or the light turned (bit 32).
    std::function<void(DrawFlags)> DrawFlagsCallback;
    void SetDrawFlags(DrawFlags flags) override;
    /// Keeps the camera's viewport at the framebuffer size on resizes (and rebuilds its matrices), so
    /// widgets are drawn and picked where the host's scene is. Null is ignored.
    void FollowViewport(std::shared_ptr<Camera> camera);

    /// The wheel delta for one notch of a mouse wheel; finer touchpad scrolling is accumulated.
    static constexpr int kWheelNotch = 120;

private:
    struct Previous;
    static void onCursor(GLFWwindow* window, double x, double y);
    static void onButton(GLFWwindow* window, int button, int action, int mods);
    static void onScroll(GLFWwindow* window, double dx, double dy);
    static void onKey(GLFWwindow* window, int key, int scancode, int action, int mods);
    static void onFramebufferSize(GLFWwindow* window, int width, int height);
    void toPixels(double x, double y, int* px, int* py) const;

    GLFWwindow* window_;
    GUIManager* manager_;
    std::unique_ptr<GUIInputManager> input_;
    std::unique_ptr<Previous> previous_;
    bool installed_ = false;
    int lastX_ = 0;
    int lastY_ = 0;
    int buttons_ = 0;
    int modifiers_ = 0;
    double wheel_ = 0.0;
    std::vector<std::shared_ptr<Camera>> cameras_;
};

} // namespace GUI
