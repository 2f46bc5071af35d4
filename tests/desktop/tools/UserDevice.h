#pragma once

#include "Handles.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace velorin::tools {

/// The keyboard and the mouse of the user in a private desktop.
///
/// Its events come from the devices "Xvfb keyboard" and "Xvfb mouse", as those of a person come
/// from real ones. A program that posts keys of its own through XTEST uses another device, so the
/// two can be told apart, as in life.
///
/// Each operation returns when the server has taken the event, and throws std::runtime_error with
/// a sentence when it does not (the program that uses this ends then).
class UserDevice final {
public:
    UserDevice();

    /// The name of a keysym that the layout has without modifiers ("a", "Control_R", "Return"), or
    /// "#" and an X key code ("#108").
    void key(std::string_view name, bool down);
    /// Pixels from the upper left corner of the screen.
    void move(int x, int y);
    /// 1 left, 2 middle, 3 right.
    void button(int number, bool down);

private:
    uint8_t keyCode(std::string_view name) const;
    uint8_t deviceNamed(std::string_view name) const;
    void post(uint8_t type, uint8_t detail, uint8_t device, int x = 0, int y = 0);

    Connection connection_;
    xcb_window_t root_ = 0;
    uint8_t firstInputEvent_ = 0;
    uint8_t keyboard_ = 0;
    uint8_t mouse_ = 0;
};

} // namespace velorin::tools
