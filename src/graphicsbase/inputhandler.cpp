#include <graphicsbase/inputhandler.h>

#include <algorithm>

namespace GraphicsBase {

InputHandler::~InputHandler() {
    // Taken out first: a registry's callback may remove other observers of this handler.
    auto observers = std::move(removalObservers_);
    removalObservers_.clear();
    for (auto& [owner, forget] : observers)
        if (forget)
            forget(this);
}

void InputHandler::AddRemovalObserver(const void* owner, std::function<void(InputHandler*)> forget) {
    RemoveRemovalObserver(owner);
    removalObservers_.emplace_back(owner, std::move(forget));
}

void InputHandler::RemoveRemovalObserver(const void* owner) {
    removalObservers_.erase(std::remove_if(removalObservers_.begin(), removalObservers_.end(),
                                           [owner](const auto& entry) { return entry.first == owner; }),
                            removalObservers_.end());
}

} // namespace GraphicsBase
