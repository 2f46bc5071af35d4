/// Which flag of the flags word belongs to which modifier key.
///
/// The two keys of a pair share one flag, so the flag alone does not tell which of them is down. Caps Lock
/// has none here: it is no modifier of a shortcut.
#pragma once

#include <QtGlobal>

#include <optional>

namespace velorin::ModifierKeyEventState {

/// The key's flag; none for Caps Lock (57) and any key that is no modifier.
[[nodiscard]] std::optional<quint64> mappedFlag(quint16 keyCode);

[[nodiscard]] bool isModifierKeyCode(quint16 keyCode);

} // namespace velorin::ModifierKeyEventState
