#include <trelvogui/gui/eventsbase.h>

namespace GUI::Events {

Base::~Base() {
    callback.reset();
}

} // namespace GUI::Events
