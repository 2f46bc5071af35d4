/// What keys are called: "Space", "A", "F5", "Right Option ⌥", and "Key 99" for one that has no name.
#pragma once

#include <QString>

namespace velorin::ShortcutKeyNames {

[[nodiscard]] QString name(quint16 keyCode);

} // namespace velorin::ShortcutKeyNames
