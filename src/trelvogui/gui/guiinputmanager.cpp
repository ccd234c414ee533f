#include <trelvogui/gui/guiinputmanager.h>

#include <graphicsbase/logfile.h>

#include <cstdio>

namespace GUI {

GUIInputManager::GUIInputManager(GraphicsScene& scene) : scene_(scene) {
    Reset();
}

GUIInputManager::~GUIInputManager() {
    handlers_.clear();
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
        LogFile::Instance().AddLine(LOG_WARNING, "More than one screen handler sharing ID: %d\n", id);
}

unsigned int GUIInputManager::addScreenHandler(InputHandler* handler) {
    unsigned int id = allocateId();
    // Handlers are known only by their key here; their own id record stays 0 on purpose.
    handler->setID(0);
    handlers_.emplace(static_cast<int>(id), handler);
    warnIfShared(static_cast<int>(id));
    return id;
}

InputHandler* GUIInputManager::removeScreenHandler(int id) {
    warnIfShared(id);
    auto it = handlers_.find(id);
    if (it == handlers_.end())
        return nullptr;
    LogFile::Instance().AddLine(LOG_INFO, "Removing screen handler %d\n", id);
    InputHandler* handler = it->second;
    handlers_.erase(it);
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
    DrawFlags result = DRAW_NOTHING;
    for (auto& entry : handlers_) {
        if (result != DRAW_NOTHING)
            break;
        result = call(entry.second);
    }
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
