/// Which keys the tap must be able to swallow: each binding's own key, with the modifiers with which the
/// matcher would answer `consume` to its press. All other keys go their way without us.
///
///     tappedKeys(configuration)  // {{96, {0x100000}}}: F5 with command, and with nothing else
///
/// The modifiers of an entry are those held when the key is pressed. A bound modifier key is there with
/// every combination, since its press is always swallowed. The answer comes from the matcher's own rules.
///
/// A pure function, in ascending order of key codes and flags. It tries 512 sets of held keys a binding: for
/// changes of the configuration, not for the path of a keystroke.
#pragma once

#include "platform/EventTap.h"
#include "shortcuts/ShortcutConfiguration.h"

#include <vector>

namespace velorin {

[[nodiscard]] std::vector<TappedKey> tappedKeys(const ShortcutConfiguration& configuration);

} // namespace velorin
