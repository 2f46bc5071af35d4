#include "shortcuts/TappedKeys.h"

#include "shortcuts/ModifierKeyEventState.h"
#include "shortcuts/ShortcutMatcher.h"

#include <map>
#include <set>

namespace velorin {
namespace {

using Decision = ShortcutMatcher::ConsumeDecision;

struct HeldModifiers {
    KeyCodeSet keyCodes;
    quint64 flags = 0;
};

HeldModifiers heldModifiers(unsigned mask) {
    HeldModifiers held;
    for (std::size_t bit = 0; bit < ShortcutBinding::modifierKeyCodes.size(); ++bit) {
        if ((mask >> bit & 1U) == 0)
            continue;
        const auto keyCode = ShortcutBinding::modifierKeyCodes[bit];
        held.keyCodes.insert(keyCode);
        held.flags |= ModifierKeyEventState::mappedFlag(keyCode).value_or(0);
    }
    return held;
}

/// Whether the press of the key is swallowed as that of a bound key, by what the matcher asks after it
/// took the press into its state.
bool consumesPress(ShortcutMatcher matcher, quint16 keyCode, const KeyCodeSet& heldModifiers) {
    matcher.state.pressedModifierKeyCodes = heldModifiers;
    if (ModifierKeyEventState::isModifierKeyCode(keyCode))
        return matcher.modifierDownDecision(keyCode) == Decision::consume;
    matcher.state.pressedKeyCodes.insert(keyCode);
    return matcher.keyConsumeDecision(keyCode) == Decision::consume;
}

} // namespace

std::vector<TappedKey> tappedKeys(const ShortcutConfiguration& configuration) {
    const ShortcutMatcher matcher{.configuration = configuration};
    std::map<quint16, std::set<quint64>> flagsOfKeys;
    for (const auto role : allShortcutRoles) {
        const auto keyCode = configuration.binding(role).keyCode;
        for (unsigned mask = 0; mask < 1U << ShortcutBinding::modifierKeyCodes.size(); ++mask) {
            const auto held = heldModifiers(mask);
            if (consumesPress(matcher, keyCode, held.keyCodes))
                flagsOfKeys[keyCode].insert(held.flags);
        }
    }
    std::vector<TappedKey> keys;
    for (const auto& [keyCode, flags] : flagsOfKeys)
        keys.push_back({keyCode, {flags.begin(), flags.end()}});
    return keys;
}

} // namespace velorin
