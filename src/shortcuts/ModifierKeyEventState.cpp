#include "shortcuts/ModifierKeyEventState.h"

#include "shortcuts/ShortcutBinding.h"

#include <algorithm>

namespace velorin::ModifierKeyEventState {

std::optional<quint64> mappedFlag(quint16 keyCode) {
    switch (keyCode) {
    case 54:
    case 55:
        return 0x100000;
    case 56:
    case 60:
        return 0x20000;
    case 58:
    case 61:
        return 0x80000;
    case 59:
    case 62:
        return 0x40000;
    case 63:
        return 0x800000;
    default:
        return {};
    }
}

bool isModifierKeyCode(quint16 keyCode) {
    return std::ranges::binary_search(ShortcutBinding::modifierKeyCodes, keyCode);
}

} // namespace velorin::ModifierKeyEventState
