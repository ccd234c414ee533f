#include <trelvogui/gui/guiinputmanager.h>

#include <graphicsbase/logfile.h>

#include <cstdio>

using namespace GraphicsBase;

namespace GUI {

GUIInputManager::GUIInputManager(GraphicsScene& scene) : scene_(scene) {
    Reset();
}

GUIInputManager::~GUIInputManager() {
    ClearInputHandlers();
    brackets_.clear();
}

unsigned int GUIInputManager::allocateId() {
    auto* tail = brackets_.tail();
    if (!brackets_.head() || !tail) {
        std::printf("No brackets left\n");
        return static_cast<unsigned int>(-1);
    }
    unsigned int id = static_cast<unsigned int>(tail->value.first);
    if (tail->value.first == tail->value.last)
        brackets_.removeTail();
    else
        ++tail->value.first;
    return id;
}

void GUIInputManager::Reset() {
    brackets_.clear();
    brackets_.append(IntegerBracket{0, -1});
    brackets_.resetCursors();
    // Id 0 is withheld on purpose: the first handler gets 1.
    allocateId();
}

void GUIInputManager::warnIfShared(int id) {
    if (handlers_.count(id) > 1)
        LogFile::Instance().AddLine(LogLevel::Warning, "More than one screen handler sharing ID: %d\n", id);
}

void GUIInputManager::ClearInputHandlers() {
    for (auto& entry : handlers_)
        entry.second->RemoveRemovalObserver(this);
    handlers_.clear();
}

void GUIInputManager::forget(InputHandler* handler) {
    for (auto it = handlers_.begin(); it != handlers_.end();)
        it = it->second == handler ? handlers_.erase(it) : std::next(it);
}

unsigned int GUIInputManager::addScreenHandler(InputHandler* handler) {
    if (!handler) {
        LogFile::Instance().AddLine(LogLevel::Warning,
                                    "GUIInputManager::addScreenHandler(): The handler is null.\n");
        return 0;
    }
    for (auto& entry : handlers_)
        if (entry.second == handler) {
            LogFile::Instance().AddLine(
                LogLevel::Warning,
                "GUIInputManager::addScreenHandler(): The handler is already registered "
                "as %d.\n",
                entry.first);
            return static_cast<unsigned int>(entry.first);
        }
    unsigned int id = allocateId();
    // Handlers are known only by their key here; their own id record stays 0 on purpose.
    handler->setID(0);
    handlers_.emplace(static_cast<int>(id), handler);
    // A handler destroyed while registered takes itself out, so no event reaches freed memory.
    handler->AddRemovalObserver(this, [this](InputHandler* gone) { forget(gone); });
    warnIfShared(static_cast<int>(id));
    return id;
}

InputHandler* GUIInputManager::removeScreenHandler(int id) {
    warnIfShared(id);
    auto it = handlers_.find(id);
    if (it == handlers_.end())
        return nullptr;
    LogFile::Instance().AddLine(LogLevel::Info, "Removing screen handler %d\n", id);
    InputHandler* handler = it->second;
    handlers_.erase(it);
    handler->RemoveRemovalObserver(this);
    return handler;
}

namespace {
VX_UI::MouseEvent mouseEvent(int x, int y, int x2, int y2, int buttons, int modifiers) {
    VX_UI::MouseEvent e;
    e.x = x;
    e.y = y;
    e.prevX = x2;
    e.prevY = y2;
    e.buttons = buttons;
    e.modifiers = modifiers;
    return e;
}
} // namespace

template <class Call> DrawFlags GUIInputManager::offer(Call call) {
    // Handlers may remove or destroy handlers (themselves too) while an event is offered: walk a copy
    // of the registrations and skip those that are gone by the time their turn comes. The copy's
    // storage is reused, except by an event offered from inside a handler.
    std::vector<std::pair<int, InputHandler*>> nested;
    std::vector<std::pair<int, InputHandler*>>& order = offering_ ? nested : snapshot_;
    order.assign(handlers_.begin(), handlers_.end());
    const bool outer = !offering_;
    offering_ = true;
    DrawFlags result = DRAW_NOTHING;
    for (const auto& [id, handler] : order) {
        if (result != DRAW_NOTHING)
            break;
        auto it = handlers_.find(id);
        if (it == handlers_.end() || it->second != handler)
            continue;
        result = call(handler);
    }
    if (outer)
        offering_ = false;
    return result;
}

template <class Call> bool GUIInputManager::dispatch(Call call) {
    DrawFlags result = offer(call);
    if (result != DRAW_NOTHING)
        scene_.SetDrawFlags(result);
    return result != DRAW_NOTHING;
}

bool GUIInputManager::mousePressEvent(int x, int y, int x2, int y2, int buttons, int modifiers) {
    if (blocked)
        return false;
    pressRefused = false;
    VX_UI::MouseEvent e = mouseEvent(x, y, x2, y2, buttons, modifiers);
    return dispatch([&](InputHandler* h) { return h->mousePressEvent(&e); });
}

bool GUIInputManager::mouseReleaseEvent(int x, int y, int x2, int y2, int buttons, int modifiers) {
    if (blocked || pressRefused)
        return false;
    VX_UI::MouseEvent e = mouseEvent(x, y, x2, y2, buttons, modifiers);
    return dispatch([&](InputHandler* h) { return h->mouseReleaseEvent(&e); });
}

bool GUIInputManager::mouseMoveEvent(int x, int y, int x2, int y2, int buttons, int modifiers) {
    if (blocked || pressRefused)
        return false;
    VX_UI::MouseEvent e = mouseEvent(x, y, x2, y2, buttons, modifiers);
    return dispatch([&](InputHandler* h) { return h->mouseMoveEvent(&e); });
}

bool GUIInputManager::mouseWheelEvent(int delta) {
    VX_UI::MouseWheelEvent e;
    e.delta = delta;
    return dispatch([&](InputHandler* h) { return h->mouseWheel(&e); });
}

bool GUIInputManager::keyPressEvent(unsigned int key, unsigned int modifiers) {
    VX_UI::KeyEvent e;
    e.key = key;
    e.modifiers = modifiers;
    return dispatch([&](InputHandler* h) { return h->keyPress(&e); });
}

bool GUIInputManager::keyReleaseEvent(unsigned int key, unsigned int modifiers) {
    VX_UI::KeyEvent e;
    e.key = key;
    e.modifiers = modifiers;
    return dispatch([&](InputHandler* h) { return h->keyRelease(&e); });
}

bool GUIInputManager::touchDispatchToHandlers(VX_UI::TouchEvent* event) {
    scene_.SetDrawFlags(offer([&](InputHandler* h) { return h->touchEvent(event); }));
    return true;
}

} // namespace GUI
