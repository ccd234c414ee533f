#pragma once
// Interface of everything that receives the host's input (screen handlers).

#include <graphicsbase/drawflags.h>
#include <graphicsbase/graphicsbase_export.h>
#include <graphicsbase/uievents.h>

#include <functional>
#include <utility>
#include <vector>

namespace GraphicsBase {

/// Every entry point returns what must be redrawn; the defaults ignore the event and return 0.
class GRAPHICSBASE_EXPORT InputHandler {
public:
    InputHandler() = default;
    /// A copy is registered nowhere: registrations belong to the object that was registered.
    InputHandler(const InputHandler& other) : id_(other.id_) {}
    InputHandler& operator=(const InputHandler& other) {
        id_ = other.id_;
        return *this;
    }
    /// Tells every registry that holds this handler to forget it.
    virtual ~InputHandler();

    virtual DrawFlags mousePressEvent(VX_UI::MouseEvent*) { return DRAW_NOTHING; }
    virtual DrawFlags mouseMoveEvent(VX_UI::MouseEvent*) { return DRAW_NOTHING; }
    virtual DrawFlags mouseReleaseEvent(VX_UI::MouseEvent*) { return DRAW_NOTHING; }
    virtual DrawFlags mouseEnter(VX_UI::MouseEvent*) { return DRAW_NOTHING; }
    virtual DrawFlags mouseLeave(VX_UI::MouseEvent*) { return DRAW_NOTHING; }
    virtual DrawFlags mouseWheel(VX_UI::MouseWheelEvent*) { return DRAW_NOTHING; }
    virtual DrawFlags keyPress(VX_UI::KeyEvent*) { return DRAW_NOTHING; }
    virtual DrawFlags keyRelease(VX_UI::KeyEvent*) { return DRAW_NOTHING; }
    virtual DrawFlags touchEvent(VX_UI::TouchEvent*) { return DRAW_NOTHING; }
    virtual DrawFlags tabletEvent(VX_UI::TabletEvent*) { return DRAW_NOTHING; }
    virtual DrawFlags tabletPressEvent(VX_UI::TabletEvent*) { return DRAW_NOTHING; }
    virtual DrawFlags tabletMoveEvent(VX_UI::TabletEvent*) { return DRAW_NOTHING; }
    virtual DrawFlags tabletReleaseEvent(VX_UI::TabletEvent*) { return DRAW_NOTHING; }
    virtual DrawFlags tabletPress(float, float) { return DRAW_NOTHING; }
    virtual DrawFlags tabletMove(float, float) { return DRAW_NOTHING; }
    virtual DrawFlags tabletRelease(float, float) { return DRAW_NOTHING; }
    virtual DrawFlags leapEnter(float, float, float) { return DRAW_NOTHING; }
    virtual DrawFlags leapMove(float, float, float) { return DRAW_NOTHING; }
    virtual DrawFlags leapLeave(float, float, float) { return DRAW_NOTHING; }
    /// Asks the handler to draw itself (for handlers that also draw).
    virtual void draw() {}

    void setID(int id) { id_ = id; }
    int getID() const { return id_; }

    /// For registries of handlers: `forget` runs when this handler is destroyed, so a registry never
    /// keeps a dangling pointer. One entry per owner; adding again replaces it.
    void AddRemovalObserver(const void* owner, std::function<void(InputHandler*)> forget);
    void RemoveRemovalObserver(const void* owner);

private:
    int id_ = 0;
    std::vector<std::pair<const void*, std::function<void(InputHandler*)>>> removalObservers_;
};

} // namespace GraphicsBase
