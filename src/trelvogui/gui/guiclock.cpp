#include <trelvogui/gui/guiclock.h>

#include <chrono>

namespace GUI {
namespace {
std::function<uint64_t()>& source() {
    static std::function<uint64_t()> s;
    return s;
}
} // namespace

uint64_t Clock::Ticks() {
    if (source())
        return source()();
    using namespace std::chrono;
    return static_cast<uint64_t>(duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count());
}

void Clock::SetSource(std::function<uint64_t()> s) {
    source() = std::move(s);
}

} // namespace GUI
