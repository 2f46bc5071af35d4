/// What the server's key codes mean at this moment, and which of them are down. A snapshot.
#pragma once

#include "platform/linux/x11/XConnection.h"

#include <array>
#include <bitset>
#include <optional>

namespace velorin {

using KeySet = std::bitset<256>;

namespace KeySymbol {
inline constexpr xcb_keysym_t v = 0x76;
inline constexpr xcb_keysym_t insert = 0xff63;
inline constexpr xcb_keysym_t leftShift = 0xffe1;
inline constexpr xcb_keysym_t leftControl = 0xffe3;
inline constexpr xcb_keysym_t capsLock = 0xffe5;
inline constexpr xcb_keysym_t numLock = 0xff7f;
inline constexpr xcb_keysym_t scrollLock = 0xff14;
} // namespace KeySymbol

class KeyboardMap final {
public:
    /// Asks the server; nothing when it does not answer.
    [[nodiscard]] static std::optional<KeyboardMap> read(const XConnection& connection, Deadline deadline);

    /// The key that gives this symbol without Shift, in either of the first two layouts.
    [[nodiscard]] std::optional<xcb_keycode_t> keyFor(xcb_keysym_t symbol) const;
    /// The same, or the key at this place of an ordinary keyboard.
    [[nodiscard]] xcb_keycode_t keyFor(xcb_keysym_t symbol, xcb_keycode_t otherwise) const;

    /// The keys that act as modifiers while they are held: not the locks.
    [[nodiscard]] const KeySet& modifierKeys() const { return modifierKeys_; }
    /// The modifier bits of Caps Lock and Num Lock, as far as the keyboard has them.
    [[nodiscard]] const std::vector<std::uint32_t>& locks() const { return locks_; }
    /// The key codes that mean nothing in any layout, the lowest first.
    [[nodiscard]] std::vector<xcb_keycode_t> freeKeys() const;
    /// The highest key code up to `last` that means nothing in any layout; nothing where all are taken.
    [[nodiscard]] std::optional<xcb_keycode_t> neutralKey(unsigned last = 255) const;
    /// The modifier bits (of eight) that each key sets.
    [[nodiscard]] std::uint8_t modifiersOf(xcb_keycode_t key) const { return modifiersOf_[key]; }
    /// 0 where there is none.
    [[nodiscard]] xcb_keysym_t symbol(xcb_keycode_t key, std::size_t column) const;

private:
    KeyboardMap() = default;

    xcb_keycode_t first_ = 8;
    std::size_t columns_ = 0;
    std::vector<xcb_keysym_t> symbols_;
    KeySet modifierKeys_;
    std::vector<std::uint32_t> locks_;
    std::array<std::uint8_t, 256> modifiersOf_{};
};

/// The keys that are down for applications, whoever pressed them.
[[nodiscard]] std::optional<KeySet> keysDown(const XConnection& connection, Deadline deadline);

/// The keys that are down on keyboards that people press: not on the device of synthetic events.
[[nodiscard]] std::optional<KeySet> keysHeldByUser(const XConnection& connection, Deadline deadline);

} // namespace velorin
