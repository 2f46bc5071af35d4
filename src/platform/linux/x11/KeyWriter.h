/// Presses and releases keys in the user's stead, and keeps the modifiers that the user holds out of it.
///
///     KeyWriter keys(connection, state, map);
///     if (!keys.clearModifiers(deadline)) …     // no answer: nothing was posted
///     keys.press(key);
///     keys.release(key);
///     keys.finish(deadline);                    // modifiers that are still held are given back
///
/// What is posted leaves in one write with `finish`, or when the caller flushes. Every key that is held down
/// by us stands in the shared state, so that it comes up whatever becomes of the process.
#pragma once

#include "platform/linux/x11/KeyboardMap.h"
#include "platform/linux/x11/SharedKeyState.h"

namespace velorin {

class KeyWriter final {
public:
    KeyWriter(const XConnection& connection, SharedKeyState& state, const KeyboardMap& map)
        : connection_(connection), state_(state), map_(map) {}

    /// Releases the modifiers that are down, and what we were left holding. May be called again as time
    /// passes.
    [[nodiscard]] bool clearModifiers(Deadline deadline);

    void press(xcb_keycode_t key) { post(key, KeyState::posted); }
    void release(xcb_keycode_t key);

    /// False when the server went away.
    bool finish(Deadline deadline);

private:
    void post(xcb_keycode_t key, std::uint8_t why);
    void giveBack(Deadline deadline);

    const XConnection& connection_;
    SharedKeyState& state_;
    const KeyboardMap& map_;
    KeySet touched_; ///< By us; the tap may hold others down meanwhile.
    KeySet cleared_;
    KeySet givenBack_;
};

} // namespace velorin
