#include "platform/linux/x11/XTestSyntheticKeyboard.h"

#include "platform/linux/x11/PasteKeys.h"

#include <algorithm>
#include <linux/input-event-codes.h>
#include <xcb/xtest.h>

namespace velorin {

namespace {

/// X key codes are those of the kernel and 8.
constexpr xcb_keycode_t keyAt(int evdevCode) { return static_cast<xcb_keycode_t>(evdevCode + 8); }

/// The keys of a chord, in the order in which they go down. A symbol that the layout lacks, like the v on
/// a Greek keyboard, is at its usual place, where applications look for it then.
std::vector<xcb_keycode_t> keysOf(Chord chord, const PasteKeys& keys, const KeyboardMap& map) {
    const auto control = map.keyFor(KeySymbol::leftControl, keyAt(KEY_LEFTCTRL));
    const auto shift = map.keyFor(KeySymbol::leftShift, keyAt(KEY_LEFTSHIFT));
    const auto insert = map.keyFor(KeySymbol::insert, keyAt(KEY_INSERT));
    const auto v = map.keyFor(KeySymbol::v, keyAt(KEY_V));
    if (chord == Chord::copy)
        return keys.canCopy ? std::vector{control, insert} : std::vector<xcb_keycode_t>{};
    switch (keys.paste) {
    case PasteKeys::Paste::controlV:
        return {control, v};
    case PasteKeys::Paste::controlShiftV:
        return {control, shift, v};
    case PasteKeys::Paste::shiftInsert:
        return {shift, insert};
    }
    return {};
}

} // namespace

XTestSyntheticKeyboard::XTestSyntheticKeyboard(SharedKeyState& state) : state_(state) {}

PasteboardSelection
XTestSyntheticKeyboard::pasteSource(const std::optional<RunningApplication>& application) const {
    return pasteKeysOf(application).source;
}

bool XTestSyntheticKeyboard::chord(Chord chord, const std::optional<RunningApplication>& application) {
    const std::scoped_lock lock(mutex_);
    const Deadline deadline(serverDeadline);
    if (!ensureConnection())
        return false;
    const auto map = KeyboardMap::read(*connection_, deadline);
    if (!map)
        return false;
    const auto keys = keysOf(chord, pasteKeysOf(application), *map);
    return !keys.empty() && post(keys, *map, deadline);
}

bool XTestSyntheticKeyboard::ensureConnection() {
    if (connection_ && !connection_->isBroken())
        return true;
    connection_ = XConnection::open();
    if (connection_ && !connection_->extension(xcb_test_id))
        connection_.reset();
    return connection_ != nullptr;
}

bool XTestSyntheticKeyboard::post(const std::vector<xcb_keycode_t>& keys, const KeyboardMap& map,
                                  Deadline deadline) {
    const auto down = keysDown(*connection_, deadline);
    const auto held = keysHeldByUser(*connection_, deadline);
    if (!down || !held)
        return false;
    const auto inTheWay = *down & map.modifierKeys();
    const auto canWatch = state_->isWatched != 0;
    std::vector<xcb_keycode_t> givenBack;
    for (unsigned code = 0; code < 256; ++code) {
        const auto key = static_cast<xcb_keycode_t>(code);
        if (inTheWay[key] || state_->keys[key] != 0)
            release(key);
        if (inTheWay[key] && (*held)[key] && canWatch)
            givenBack.push_back(key);
    }
    for (const auto key : keys)
        press(key, KeyState::posted);
    for (auto key = keys.rbegin(); key != keys.rend(); ++key)
        release(*key);
    for (const auto key : givenBack)
        press(key, KeyState::givenBack);
    // What the user let go of while this went out will not be seen to come up any more.
    if (!givenBack.empty())
        if (const auto stillHeld = keysHeldByUser(*connection_, deadline))
            std::erase_if(givenBack, [&](xcb_keycode_t key) {
                if (!(*stillHeld)[key])
                    release(key);
                return !(*stillHeld)[key];
            });
    if (connection_->sync(deadline)) // the releases are in the server: there is nothing to undo
        for (unsigned key = 0; key < 256; ++key)
            if (std::ranges::find(givenBack, key) == givenBack.end())
                state_->keys[key] = 0;
    return !connection_->isBroken();
}

void XTestSyntheticKeyboard::press(xcb_keycode_t key, std::uint8_t why) {
    state_->keys[key] = why;
    xcb_test_fake_input(connection_->get(), XCB_KEY_PRESS, key, XCB_CURRENT_TIME, XCB_WINDOW_NONE, 0, 0, 0);
}

void XTestSyntheticKeyboard::release(xcb_keycode_t key) {
    xcb_test_fake_input(connection_->get(), XCB_KEY_RELEASE, key, XCB_CURRENT_TIME, XCB_WINDOW_NONE, 0, 0, 0);
}

} // namespace velorin
