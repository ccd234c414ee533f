#pragma once
// The host input event records handed to input handlers.

#include <cstdint>

namespace GraphicsBase {

namespace VX_UI {

enum EventType {
    EVENT_NONE = 0,
    EVENT_KEY = 1,
    EVENT_MOUSE = 2,
    EVENT_WHEEL = 3,
    EVENT_TOUCH = 4,
    EVENT_TABLET = 5
};

/// Mouse buttons in the button mask; bit 0 is the primary (left) button.
enum MouseButton { BUTTON_LEFT = 1, BUTTON_RIGHT = 2, BUTTON_MIDDLE = 4 };

/// Pointer event. Positions are host pixels with y growing downward. `pid`/`sid` are written by
/// receivers that hit-test. The input manager copies its second coordinate pair into prevX/prevY.
struct MouseEvent {
    int type = EVENT_MOUSE;
    int accepted = 0;
    uint32_t pid = 0;
    uint32_t sid = 0;
    int x = 0;
    int y = 0;
    int prevX = 0;
    int prevY = 0;
    int buttons = 0;
    int modifiers = 0;
};

struct MouseWheelEvent {
    int type = EVENT_WHEEL;
    int accepted = 0;
    int delta = 0;
};

struct KeyEvent {
    int type = 0;
    int accepted = 0;
    int reserved = 0;
    unsigned int key = 0;
    unsigned int modifiers = 0;
};

struct TouchPoint {
    int id = 0;
    float x = 0.f;
    float y = 0.f;
    int state = 0;
};

struct TouchEvent {
    int type = EVENT_TOUCH;
    int accepted = 0;
    int pointCount = 0;
    TouchPoint points[10];
};

struct TabletEvent {
    int type = EVENT_TABLET;
    int accepted = 0;
    float x = 0.f;
    float y = 0.f;
    float pressure = 0.f;
    int buttons = 0;
};

} // namespace VX_UI

} // namespace GraphicsBase
