/// Another application: a window that has the keyboard and writes down which keys it gets.
#pragma once

#include "platform/linux/x11/XConnection.h"

#include <functional>

namespace velorin {

class TestWindow final {
public:
    struct Key {
        bool isPress = false;
        int key = 0;
        int modifiers = 0; ///< As the core protocol counts them, before the event.
        xcb_timestamp_t time = 0;

        bool operator==(const Key& other) const {
            return isPress == other.isPress && key == other.key && modifiers == other.modifiers;
        }
    };

    explicit TestWindow(const char* name = "target", const char* windowClass = "Target");

    [[nodiscard]] xcb_window_t id() const { return window_; }
    [[nodiscard]] XConnection& connection() { return *connection_; }
    void setProperty(const char* name, const char* type, const std::string& value);
    void setNumber(const char* name, std::uint32_t value);
    /// Takes the keyboard without asking a window manager.
    void focus();

    /// What came since the last call. Waits until there is at least as much, or until the patience ends.
    [[nodiscard]] std::vector<Key> keys(std::size_t atLeast = 0);
    /// What came since the last call, up to the release of this key, which it waits for.
    [[nodiscard]] std::vector<Key> keysThrough(int key);
    /// Waits for the event that satisfies the predicate.
    bool waitFor(const std::function<bool(const xcb_generic_event_t&)>& predicate);

private:
    std::unique_ptr<XConnection> connection_;
    xcb_window_t window_;
};

/// "37+ 55+/4 55-/4 37-/4": key, press or release, and the modifiers if there are any.
[[nodiscard]] std::string toString(const std::vector<TestWindow::Key>& keys);

} // namespace velorin
