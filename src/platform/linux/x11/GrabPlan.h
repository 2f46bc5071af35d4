/// Which combinations of key and modifiers have to be grabbed, so that exactly those presses pass through the
/// tap that may be swallowed.
///
/// Grabbing more would do harm even though it is passed on: a key that is replayed from a grab on the root
/// window skips everybody else's grabs there, so the window manager's own shortcut on it would be dead.
#pragma once

#include "platform/EventTap.h"
#include "platform/linux/x11/KeyboardMap.h"
#include "platform/linux/x11/TapKeys.h"

#include <map>
#include <set>

namespace velorin {

/// The exact modifier states in which each key is grabbed, those of Caps Lock and Num Lock included.
using GrabPlan = std::map<xcb_keycode_t, std::set<std::uint32_t>>;

/// A pure function. Keys that this keyboard lacks are left out.
///
/// What the X server counts as held differs from what the user holds: a bound modifier key is swallowed, so
/// its bit is never set; a left and a right key may set the same bit, or different ones. `unseen`: other
/// modifiers that count as held for the shortcuts, and not for the server.
[[nodiscard]] GrabPlan planGrabs(const std::vector<TappedKey>& tappedKeys, const TapKeys& keys,
                                 const KeyboardMap& map, const KeySet& unseen = {});

} // namespace velorin
