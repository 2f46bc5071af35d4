/// The logical modifiers of a shortcut, as a set of bits: the number under which they are stored.
///
///     const auto both = ShortcutModifiers::command | ShortcutModifiers::shift;  // rawValue 9
///
/// Bits that no modifier has are kept; no combination of keys supplies them.
#pragma once

#include <QtGlobal>

namespace velorin {

struct ShortcutModifiers {
    qint64 rawValue = 0;

    static const ShortcutModifiers command;
    static const ShortcutModifiers control;
    static const ShortcutModifiers option;
    static const ShortcutModifiers shift;
    static const ShortcutModifiers function;

    /// Whether all bits of `other` are set here.
    [[nodiscard]] constexpr bool contains(ShortcutModifiers other) const {
        return (other.rawValue & ~rawValue) == 0;
    }
    constexpr ShortcutModifiers& operator|=(ShortcutModifiers other) {
        rawValue |= other.rawValue;
        return *this;
    }
    friend constexpr ShortcutModifiers operator|(ShortcutModifiers a, ShortcutModifiers b) { return a |= b; }
    constexpr bool operator==(const ShortcutModifiers&) const = default;
};

inline constexpr ShortcutModifiers ShortcutModifiers::command{1};
inline constexpr ShortcutModifiers ShortcutModifiers::control{2};
inline constexpr ShortcutModifiers ShortcutModifiers::option{4};
inline constexpr ShortcutModifiers ShortcutModifiers::shift{8};
inline constexpr ShortcutModifiers ShortcutModifiers::function{16};

} // namespace velorin
