/// The keys of this keyboard in the numbers of the shortcuts, with the key that stands in for Fn.
#pragma once

#include "platform/linux/KeyCodes.h"
#include "platform/linux/x11/KeyboardMap.h"

#include <array>
#include <string_view>

namespace velorin {

class TapKeys final {
public:
    /// Virtual: both keys of Command, Shift, Option and Control, and Fn.
    static constexpr std::array<std::uint16_t, 9> modifierCodes{54, 55, 56, 58, 59, 60, 61, 62, 63};

    /// The name of a stand-in as KeyCodes knows it.
    explicit TapKeys(std::string_view standIn) : standIn_(KeyCodes::standInForFunction(standIn)) {}

    /// The virtual key code of an X key code; the stand-in is Fn and no longer itself.
    [[nodiscard]] std::optional<std::uint16_t> virtualOf(unsigned key) const {
        if (key < offset)
            return std::nullopt;
        const auto evdev = static_cast<std::uint16_t>(key - offset);
        return evdev == standIn_ ? std::optional(KeyCodes::function) : KeyCodes::fromEvdev(evdev);
    }

    [[nodiscard]] std::optional<xcb_keycode_t> keyOf(std::uint16_t virtualCode) const {
        const auto evdev = virtualCode == KeyCodes::function ? standIn_ : KeyCodes::toEvdev(virtualCode);
        const bool isTaken = virtualCode != KeyCodes::function && evdev == standIn_;
        if (!evdev || isTaken || *evdev > largestEvdev)
            return std::nullopt;
        return static_cast<xcb_keycode_t>(*evdev + offset);
    }

    [[nodiscard]] KeySet modifiers() const {
        KeySet keys;
        for (const auto code : modifierCodes)
            if (const auto key = keyOf(code))
                keys.set(*key);
        return keys;
    }

    bool operator==(const TapKeys&) const = default;

private:
    static constexpr unsigned offset = 8; // X leaves the first codes free
    static constexpr unsigned largestEvdev = 255 - offset;

    std::optional<std::uint16_t> standIn_;
};

} // namespace velorin
