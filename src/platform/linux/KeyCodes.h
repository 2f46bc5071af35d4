/// The keyboard's keys in two numberings: evdev codes, which an X key code is less 8, and the virtual key
/// codes of the shortcuts. Keys correspond by their place on the keyboard, whatever is printed on them.
///
///     KeyCodes::fromEvdev(30)    // 0: the key that has an A on an American keyboard
///     KeyCodes::toEvdev(63)      // nothing: there is no Fn key but by its stand-in
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace velorin::KeyCodes {

/// The virtual key code of the Fn key, and the flag that it sets.
inline constexpr std::uint16_t function = 63;

/// Nothing for a key that has no number on the other side. The stand-in for Fn is not considered.
[[nodiscard]] std::optional<std::uint16_t> fromEvdev(std::uint16_t evdevCode);
[[nodiscard]] std::optional<std::uint16_t> toEvdev(std::uint16_t keyCode);

/// The flag that a modifier key (54 to 63 without 57) sets in an event's flags; 0 for all other keys.
[[nodiscard]] std::uint64_t flagOf(std::uint16_t keyCode);

/// The evdev code of the key that stands in for Fn under this name: "fn", "menu", "rightControl",
/// "rightAlt", "capsLock", "scrollLock", "pause". Any other name is "rightControl".
[[nodiscard]] std::uint16_t standInForFunction(std::string_view name);

} // namespace velorin::KeyCodes
