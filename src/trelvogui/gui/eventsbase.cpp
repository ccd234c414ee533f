#include <trelvogui/gui/eventsbase.h>

using namespace GraphicsBase;

namespace GUI::Events {

Base::~Base() {
    callback.reset();
}

} // namespace GUI::Events
