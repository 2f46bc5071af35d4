/// The edges of the three shortcuts: what the matcher makes of raw key events, and all that a dictation
/// ever hears of the keyboard.
#pragma once

#include <QString>

#include <array>

namespace velorin {

enum class ShortcutEvent {
    holdActivated,
    holdDeactivated,
    toggleActivated,
    toggleDeactivated,
    copyAgainTriggered, ///< Copying again has a rising edge only.
};

inline constexpr std::array allShortcutEvents{
    ShortcutEvent::holdActivated, ShortcutEvent::holdDeactivated, ShortcutEvent::toggleActivated,
    ShortcutEvent::toggleDeactivated, ShortcutEvent::copyAgainTriggered};

/// The event's own name, as the log shows it: "holdActivated".
[[nodiscard]] QString name(ShortcutEvent event);

} // namespace velorin
