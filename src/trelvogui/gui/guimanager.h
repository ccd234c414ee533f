#pragma once
// One overlay: renderer, skin atlas, control registry, animations and the off-screen layers.

#include <trelvogui/gui/controlfactory.h>
#include <trelvogui/gui/guitypes.h>
#include <trelvogui/trelvogui_export.h>

#include <graphicsbase/glrendererbase.h>
#include <graphicsbase/inputhandler.h>

#include <boost/signals2/signal.hpp>

namespace GUI {

/// The manager of one overlay. The host holds it in a std::shared_ptr, which controls receive when
/// they register. It never deletes controls.
class TRELVOGUI_EXPORT GUIManager : public GLRendererBase, public InputHandler, public GUI::Controls::Factory {
public:
    /// Fired when the needs-redraw flag goes from false to true: the host's cue to schedule a frame.
    boost::signals2::signal<void()> RedrawRequestSignal;

    explicit GUIManager(GUI::Renderer::Type type = GUI::Renderer::OpenGL);
    ~GUIManager() override;

    virtual bool NeedsRedraw();
    /// Raises the flag (firing the signal on a false-to-true change); never clears it.
    void SetNeedsRedraw(bool v);

    GUI::Renderer::Type GetRendererType() const { return rendererType_; }
    int GetWidth() const { return width_; }
    int GetHeight() const { return height_; }

    /// Gives the control the redraw flag, marks it stale and registers it (assigning its id).
    bool AddControl(GUI::Controls::Base* control) override;
    /// Forgets the control: cancels its animations and drops it from the registry; it keeps its id.
    bool RemoveControl(GUI::Controls::Base* control) override;

private:
    GUI::Renderer::Type rendererType_;
    int width_ = 100;
    int height_ = 100;
    bool needsRedraw_ = false;
};

} // namespace GUI
