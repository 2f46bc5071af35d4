#include "platform/linux/x11/HeldKeys.h"

namespace velorin {

void HeldKeys::press(xcb_keycode_t key, std::uint16_t virtualCode) {
    down_[key] = virtualCode;
    seemDown_.reset(key);
}

std::uint16_t HeldKeys::release(xcb_keycode_t key) {
    const auto code = down_.extract(key).mapped();
    hidden_.reset(key);
    seemDown_[key] = (flags() & KeyCodes::flagOf(code)) != 0;
    return code;
}

void HeldKeys::assumeTwins(const TapKeys& keys) {
    seemDown_.reset();
    for (const auto code : TapKeys::modifierCodes)
        if (const auto key = keys.keyOf(code); key && !isDown(*key))
            seemDown_[*key] = (flags() & KeyCodes::flagOf(code)) != 0;
}

KeySet HeldKeys::all() const {
    auto keys = seemDown_;
    for (const auto& [key, code] : down_)
        keys.set(key);
    return keys;
}

std::uint64_t HeldKeys::flags() const {
    std::uint64_t flags = 0;
    for (const auto& [key, code] : down_)
        flags |= KeyCodes::flagOf(code);
    return flags;
}

KeySet HeldKeys::twins() const {
    KeySet keys;
    for (const auto& [key, code] : down_)
        for (const auto& [twin, twinCode] : down_)
            if (key != twin && KeyCodes::flagOf(code) != 0 &&
                KeyCodes::flagOf(code) == KeyCodes::flagOf(twinCode))
                keys.set(key);
    return keys;
}

} // namespace velorin
