#pragma once
// Fans the host window's input out to registered screen handlers in ascending id order.

#include <trelvogui/gui/doublelinkedlist.h>
#include <trelvogui/gui/integerbracket.h>
#include <trelvogui/trelvogui_export.h>

#include <graphicsbase/graphicsscene.h>
#include <graphicsbase/inputhandler.h>

#include <map>
#include <utility>
#include <vector>

namespace GUI {

/// Offers each event to the handlers until one returns non-zero DrawFlags, then hands that value to
/// the scene. Handlers are not owned. Ids come from a free-range allocator and are never handed back.
class TRELVOGUI_EXPORT GUIInputManager {
public:
    explicit GUIInputManager(GraphicsBase::GraphicsScene& scene);
    ~GUIInputManager();

    GUIInputManager(const GUIInputManager&) = delete;
    GUIInputManager& operator=(const GUIInputManager&) = delete;

    /// Rebuilds the id allocator (ids start again at 1); registered handlers stay.
    void Reset();
    /// Registers the handler and returns its id; 0 for a null handler, the existing id for one already
    /// registered. A handler destroyed while registered removes itself.
    unsigned int addScreenHandler(GraphicsBase::InputHandler* handler);
    /// The removed handler, or null when no handler has that id.
    GraphicsBase::InputHandler* removeScreenHandler(int id);
    std::map<int, GraphicsBase::InputHandler*>& GetScreenHandlers() { return handlers_; }
    /// Forgets every handler without destroying them.
    void ClearInputHandlers();

    bool mousePressEvent(int x, int y, int x2, int y2, int buttons, int modifiers);
    bool mouseReleaseEvent(int x, int y, int x2, int y2, int buttons, int modifiers);
    bool mouseMoveEvent(int x, int y, int x2, int y2, int buttons, int modifiers);
    bool mouseWheelEvent(int delta);
    bool keyPressEvent(unsigned int key, unsigned int modifiers);
    bool keyReleaseEvent(unsigned int key, unsigned int modifiers);
    /// Always hands the result (even 0) to the scene and returns true.
    bool touchDispatchToHandlers(GraphicsBase::VX_UI::TouchEvent* event);

    /// When set, mouse press, release and move are refused.
    bool blocked = false;
    /// Cleared by every accepted press; while set, release and move are refused.
    bool pressRefused = false;

private:
    unsigned int allocateId();
    void warnIfShared(int id);
    void forget(GraphicsBase::InputHandler* handler);
    /// Offers an event to the handlers in ascending id order until one returns non-zero.
    template <class Call> GraphicsBase::DrawFlags offer(Call call);
    template <class Call> bool dispatch(Call call);

    GraphicsBase::GraphicsScene& scene_;
    DoubleLinkedList<IntegerBracket> brackets_;
    std::map<int, GraphicsBase::InputHandler*> handlers_;
    std::vector<std::pair<int, GraphicsBase::InputHandler*>> snapshot_;
    bool offering_ = false;
};

} // namespace GUI
