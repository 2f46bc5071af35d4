#include "platform/linux/x11/KeyWriter.h"

#include <xcb/xtest.h>

namespace velorin {

bool KeyWriter::clearModifiers(Deadline deadline) {
    const auto down = keysDown(connection_, deadline);
    if (!down)
        return false;
    const auto inTheWay = *down & map_.modifierKeys();
    for (unsigned code = 0; code < 256; ++code) {
        const auto key = static_cast<xcb_keycode_t>(code);
        if (inTheWay[key] || state_->keys[key] != 0)
            release(key);
    }
    cleared_ |= inTheWay;
    return true;
}

void KeyWriter::release(xcb_keycode_t key) {
    touched_.set(key);
    xcb_test_fake_input(connection_.get(), XCB_KEY_RELEASE, key, XCB_CURRENT_TIME, XCB_WINDOW_NONE, 0, 0, 0);
}

void KeyWriter::post(xcb_keycode_t key, std::uint8_t why) {
    touched_.set(key);
    state_->keys[key] = why;
    xcb_test_fake_input(connection_.get(), XCB_KEY_PRESS, key, XCB_CURRENT_TIME, XCB_WINDOW_NONE, 0, 0, 0);
}

bool KeyWriter::finish(Deadline deadline) {
    if (cleared_.any() && state_->isWatched != 0)
        giveBack(deadline);
    if (connection_.sync(deadline)) // the releases are in the server: there is nothing to undo
        for (unsigned key = 0; key < 256; ++key)
            if (touched_[key] && !givenBack_[key])
                state_->keys[key] = 0;
    return !connection_.isBroken();
}

void KeyWriter::giveBack(Deadline deadline) {
    const auto held = keysHeldByUser(connection_, deadline);
    if (!held)
        return;
    givenBack_ = cleared_ & *held;
    for (unsigned key = 0; key < 256; ++key)
        if (givenBack_[key])
            post(static_cast<xcb_keycode_t>(key), KeyState::givenBack);
    if (givenBack_.none())
        return;
    // What the user let go of while this went out will not be seen to come up any more.
    const auto stillHeld = keysHeldByUser(connection_, deadline);
    for (unsigned key = 0; key < 256; ++key) {
        if (!stillHeld || !givenBack_[key] || (*stillHeld)[key])
            continue;
        release(static_cast<xcb_keycode_t>(key));
        givenBack_.reset(key);
    }
}

} // namespace velorin
