#include "shortcuts/ShortcutMatcher.h"

#include "shortcuts/ModifierKeyEventState.h"

#include <algorithm>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

using Decision = ShortcutMatcher::ConsumeDecision;

/// In the order of the roles.
auto bindings(const ShortcutConfiguration& configuration) {
    return std::array{&configuration.hold, &configuration.toggle, &configuration.copyAgain};
}

Decision consumeIf(bool consumes) { return consumes ? Decision::consume : Decision::passthrough; }

} // namespace

QString name(ShortcutMatcher::ConsumeDecision decision) {
    return decision == Decision::consume ? u"consume"_s : u"passthrough"_s;
}

Decision ShortcutMatcher::apply(const KeyEvent& event) {
    const bool isModifier = ModifierKeyEventState::isModifierKeyCode(event.keyCode);
    switch (event.type) {
    case KeyEvent::keyDown:
        return isModifier ? Decision::passthrough : keyDown(event.keyCode);
    case KeyEvent::keyUp:
        return isModifier ? Decision::passthrough : keyUp(event.keyCode);
    case KeyEvent::flagsChanged:
        if (event.keyCode == 0)
            resynchronize(event.flags);
        return isModifier ? modifierChanged(event.keyCode, event.flags) : Decision::passthrough;
    default:
        return Decision::passthrough;
    }
}

std::vector<ShortcutEvent> ShortcutMatcher::takePendingEvents() { return std::exchange(pendingEvents, {}); }

void ShortcutMatcher::update(const ShortcutConfiguration& newConfiguration) {
    if (newConfiguration == configuration)
        return;
    configuration = newConfiguration;
    reset();
}

void ShortcutMatcher::reset() { *this = ShortcutMatcher{.configuration = std::move(configuration)}; }

void ShortcutMatcher::refreshEdges() {
    const bool hold = isActive(configuration.hold);
    const bool toggle = isActive(configuration.toggle);
    const bool copyAgain = isActive(configuration.copyAgain);
    if (std::exchange(holdIsActive, hold) != hold)
        pendingEvents.push_back(hold ? ShortcutEvent::holdActivated : ShortcutEvent::holdDeactivated);
    if (std::exchange(toggleIsActive, toggle) != toggle)
        pendingEvents.push_back(toggle ? ShortcutEvent::toggleActivated : ShortcutEvent::toggleDeactivated);
    if (std::exchange(copyAgainIsActive, copyAgain) != copyAgain && copyAgain)
        pendingEvents.push_back(ShortcutEvent::copyAgainTriggered);
}

Decision ShortcutMatcher::modifierDownDecision(quint16 keyCode) const {
    // A bound modifier key is swallowed even where its binding did not go active.
    return consumeIf(holdIsActive || toggleIsActive || copyAgainIsActive ||
                     std::ranges::any_of(bindings(configuration), [&](const ShortcutBinding* binding) {
                         return binding->kind == ShortcutBindingKind::modifierKey &&
                                binding->keyCode == keyCode;
                     }));
}

Decision ShortcutMatcher::keyConsumeDecision(quint16 keyCode) const {
    return consumeIf(std::ranges::any_of(bindings(configuration), [&](const ShortcutBinding* binding) {
        return binding->kind == ShortcutBindingKind::key && binding->keyCode == keyCode && isActive(*binding);
    }));
}

bool ShortcutMatcher::isActive(const ShortcutBinding& binding) const {
    switch (binding.kind) {
    case ShortcutBindingKind::disabled:
        return false;
    case ShortcutBindingKind::key:
        return state.pressedKeyCodes.contains(binding.keyCode) && modifiersMatch(binding);
    case ShortcutBindingKind::modifierKey:
        return state.pressedModifierKeyCodes.contains(binding.keyCode) && modifiersMatch(binding);
    }
    Q_UNREACHABLE();
}

bool ShortcutMatcher::modifiersMatch(const ShortcutBinding& binding) const {
    const auto& pressed = state.pressedModifierKeyCodes;
    return ShortcutBinding::modifiersFor(pressed).contains(binding.modifiers) &&
           (!binding.exactModifierKeyCodes || ShortcutBinding::exactModifierKeyCodesMatch(
                                                  pressed, *binding.exactModifierKeyCodes,
                                                  configuration.permittedAdditionalExactMatchModifiers));
}

Decision ShortcutMatcher::keyDown(quint16 keyCode) {
    state.pressedKeyCodes.insert(keyCode);
    refreshEdges();
    const auto decision = keyConsumeDecision(keyCode);
    if (decision == Decision::consume)
        consumedKeyCodes.insert(keyCode);
    return decision;
}

Decision ShortcutMatcher::keyUp(quint16 keyCode) {
    const auto decision = consumeIf(consumedKeyCodes.contains(keyCode));
    state.pressedKeyCodes.remove(keyCode);
    refreshEdges();
    consumedKeyCodes.remove(keyCode);
    return decision;
}

Decision ShortcutMatcher::modifierChanged(quint16 keyCode, quint64 flags) {
    if ((flags & ModifierKeyEventState::mappedFlag(keyCode).value_or(0)) != 0) {
        state.pressedModifierKeyCodes.insert(keyCode);
        refreshEdges();
        const auto decision = modifierDownDecision(keyCode);
        if (decision == Decision::consume)
            consumedModifierKeyCodes.insert(keyCode);
        return decision;
    }
    const auto decision = consumeIf(consumedModifierKeyCodes.contains(keyCode));
    state.pressedModifierKeyCodes.remove(keyCode);
    refreshEdges();
    consumedModifierKeyCodes.remove(keyCode);
    return decision;
}

void ShortcutMatcher::resynchronize(quint64 flags) {
    state.pressedModifierKeyCodes.clear();
    for (const auto keyCode : ShortcutBinding::modifierKeyCodes) {
        if ((flags & ModifierKeyEventState::mappedFlag(keyCode).value_or(0)) != 0)
            state.pressedModifierKeyCodes.insert(keyCode);
    }
    refreshEdges();
}

} // namespace velorin
