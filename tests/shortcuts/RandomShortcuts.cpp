#include "RandomShortcuts.h"

#include "shortcuts/ModifierKeyEventState.h"

namespace velorin {
namespace {

constexpr quint16 modifierKeys[] = {54, 55, 56, 58, 59, 60, 61, 62, 63};
constexpr quint16 ordinaryKeys[] = {0, 1, 49, 57, 96, 65535};
constexpr quint64 flags[] = {0x100000, 0x20000, 0x80000, 0x40000, 0x800000};

} // namespace

quint16 RandomShortcuts::oneOf(std::span<const quint16> codes) {
    return codes[below(static_cast<unsigned>(codes.size()))];
}

ShortcutModifiers RandomShortcuts::modifiers() {
    if (oneIn(2))
        return {};
    return oneIn(20) ? ShortcutModifiers{32}
                     : ShortcutModifiers{1LL << below(5) | (oneIn(3) ? 1LL << below(5) : 0)};
}

ShortcutBinding RandomShortcuts::binding() {
    if (oneIn(5))
        return ShortcutBinding::disabled();
    const bool isKey = oneIn(2);
    // Sometimes a kind that does not suit the key: a stored configuration may hold anything.
    const bool isOrdinary = isKey != oneIn(12);
    ShortcutBinding binding{.keyCode =
                                oneOf(isOrdinary ? std::span<const quint16>(ordinaryKeys) : modifierKeys),
                            .modifiers = modifiers(),
                            .kind = isKey ? ShortcutBindingKind::key : ShortcutBindingKind::modifierKey};
    if (oneIn(2))
        return binding;
    KeyCodeSet exact;
    for (unsigned count = below(4); count > 0; --count)
        exact.insert(oneOf(modifierKeys));
    if (!isOrdinary && !oneIn(4))
        exact.insert(binding.keyCode);
    if (oneIn(6))
        exact.insert(oneOf(ordinaryKeys));
    binding.exactModifierKeyCodes = exact;
    return binding;
}

ShortcutConfiguration RandomShortcuts::configuration() {
    return {.hold = binding(),
            .toggle = binding(),
            .copyAgain = binding(),
            .permittedAdditionalExactMatchModifiers = modifiers()};
}

KeyEvent RandomShortcuts::keystroke() {
    const bool isModifier = oneIn(2);
    const auto keyCode = oneOf(isModifier ? std::span<const quint16>(modifierKeys) : ordinaryKeys);
    const bool goesDown = down_.insert(keyCode).second;
    if (!goesDown)
        down_.erase(keyCode);
    KeyEvent event{.type = goesDown ? KeyEvent::keyDown : KeyEvent::keyUp, .keyCode = keyCode};
    if (isModifier)
        event.type = KeyEvent::flagsChanged;
    for (const auto held : down_)
        event.flags |= ModifierKeyEventState::mappedFlag(held).value_or(0);
    return event;
}

KeyEvent RandomShortcuts::nonsense() {
    KeyEvent event{.type = 10 + below(5)};
    event.keyCode = oneOf(oneIn(2) ? std::span<const quint16>(modifierKeys) : ordinaryKeys);
    for (const auto flag : flags)
        event.flags |= oneIn(2) ? flag : 0;
    if (oneIn(2))
        event.flags |= 0x8000000000010100;
    return event;
}

KeyEvent RandomShortcuts::event() { return oneIn(12) ? nonsense() : keystroke(); }

} // namespace velorin
