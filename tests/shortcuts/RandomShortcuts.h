/// Shortcuts and keystrokes by chance, dense around what shortcuts care about. A seed gives the same ones
/// on every machine.
#pragma once

#include "platform/EventTap.h"
#include "shortcuts/ShortcutConfiguration.h"

#include <random>
#include <set>
#include <span>

namespace velorin {

class RandomShortcuts final {
public:
    explicit RandomShortcuts(unsigned seed) : generator_(seed) {}

    /// A number from 0 on, less than `count`.
    [[nodiscard]] unsigned below(unsigned count) { return static_cast<unsigned>(generator_() % count); }
    [[nodiscard]] bool oneIn(unsigned count) { return below(count) == 0; }

    [[nodiscard]] ShortcutConfiguration configuration();
    /// Mostly what a keyboard sends of which some key goes down or up, sometimes anything.
    [[nodiscard]] KeyEvent event();

private:
    [[nodiscard]] quint16 oneOf(std::span<const quint16> codes);
    [[nodiscard]] ShortcutModifiers modifiers();
    [[nodiscard]] ShortcutBinding binding();
    [[nodiscard]] KeyEvent keystroke();
    [[nodiscard]] KeyEvent nonsense();

    std::set<quint16> down_;
    std::mt19937 generator_;
};

} // namespace velorin
