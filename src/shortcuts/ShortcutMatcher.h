/// The state machine between raw key events and the shortcuts: one event at a time it says which edges the
/// event caused and whether the event must be kept from every other application.
///
///     ShortcutMatcher matcher{.configuration = ShortcutConfiguration::defaultConfiguration()};
///     matcher.apply({.type = KeyEvent::flagsChanged, .keyCode = 63, .flags = 0x800000});  // consume
///     matcher.takePendingEvents();                                                        // {holdActivated}
///
/// What is down it believes from the events alone, and whether a release is swallowed follows from its press:
/// so an up event is kept back if and only if its down event was. Both keys of a pair share one flag, and
/// only that flag is looked at; a release of one while the other is down therefore reads as a press.
///
/// A plain value without locking. It runs in the path of every keystroke: a few look-ups in small sets, and
/// memory is asked for only when there is an edge.
#pragma once

#include "platform/EventTap.h"
#include "shortcuts/ShortcutConfiguration.h"
#include "shortcuts/ShortcutEvent.h"

#include <vector>

namespace velorin {

/// What is believed to be down.
struct ShortcutInputState {
    KeyCodeSet pressedKeyCodes; ///< Without the modifier keys.
    KeyCodeSet pressedModifierKeyCodes;

    bool operator==(const ShortcutInputState&) const = default;
};

struct ShortcutMatcher {
    enum class ConsumeDecision { consume, passthrough };

    ShortcutConfiguration configuration;
    ShortcutInputState state{};
    /// The level of each shortcut at the last `refreshEdges`.
    bool holdIsActive = false;
    bool toggleIsActive = false;
    bool copyAgainIsActive = false;
    /// The edges that nobody took yet, in their order.
    std::vector<ShortcutEvent> pendingEvents{};
    /// Keys whose press was swallowed and whose release is still to come.
    KeyCodeSet consumedModifierKeyCodes{};
    KeyCodeSet consumedKeyCodes{};

    /// One raw event. Autorepeats are not for it. Modifier state comes from `flagsChanged` alone; such an
    /// event with key code 0 names no key and sets all modifiers to what the flags say.
    ConsumeDecision apply(const KeyEvent& event);

    /// The pending edges; none are pending afterwards.
    [[nodiscard]] std::vector<ShortcutEvent> takePendingEvents();

    /// Installs a configuration. An equal one changes nothing; any other resets all state, without an edge
    /// for what was active.
    void update(const ShortcutConfiguration& newConfiguration);

    /// Forgets all but the configuration, without an edge for what was active.
    void reset();

    /// Recomputes the levels and appends their edges: hold before toggle before copying again.
    void refreshEdges();

    /// For a modifier key that went down, asked after `refreshEdges`.
    [[nodiscard]] ConsumeDecision modifierDownDecision(quint16 keyCode) const;

    /// For any other key that went down, asked after `refreshEdges`.
    [[nodiscard]] ConsumeDecision keyConsumeDecision(quint16 keyCode) const;

    [[nodiscard]] bool isActive(const ShortcutBinding& binding) const;

private:
    [[nodiscard]] bool modifiersMatch(const ShortcutBinding& binding) const;
    ConsumeDecision keyDown(quint16 keyCode);
    ConsumeDecision keyUp(quint16 keyCode);
    ConsumeDecision modifierChanged(quint16 keyCode, quint64 flags);
    void resynchronize(quint64 flags);
};

/// "consume", "passthrough".
[[nodiscard]] QString name(ShortcutMatcher::ConsumeDecision decision);

} // namespace velorin
