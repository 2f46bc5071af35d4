#include "Expectation.h"

#include <algorithm>

namespace velorin::tap {

using Decision = ShortcutMatcher::ConsumeDecision;

Expectation::Expectation(const ShortcutConfiguration& configuration, const KeyboardMap& map)
    : tapped_(tappedKeys(configuration)), map_(map), matcher_{.configuration = configuration} {}

void Expectation::press(int key) {
    const auto code = tapKeys_.virtualOf(static_cast<unsigned>(key));
    auto decision = Decision::passthrough;
    if (code && isTold(key, *code)) {
        told_.insert(key);
        down_.insert(key);
        decision = tell(*code, true);
    }
    down_.insert(key);
    if (decision == Decision::consume) {
        ++swallowed_;
        return;
    }
    keys_.push_back({true, key, shownModifiers()});
    shown_.insert(key);
}

void Expectation::release(int key) {
    down_.erase(key);
    if (told_.erase(key) != 0)
        (void)tell(tapKeys_.virtualOf(static_cast<unsigned>(key)).value(), false);
    if (!shown_.contains(key))
        return;
    keys_.push_back({false, key, shownModifiers()});
    shown_.erase(key);
}

std::vector<std::string> Expectation::takeEdges() {
    std::vector<std::string> names;
    for (const auto edge : matcher_.takePendingEvents())
        names.push_back(name(edge).toStdString());
    return names;
}

bool Expectation::isTold(int key, std::uint16_t code) const {
    if (KeyCodes::flagOf(code) != 0)
        return true;
    // Of other keys the tap is told where one could be swallowed, by what is held or by what seems held.
    const auto& believed = matcher_.state.pressedModifierKeyCodes;
    KeySet unseen;
    for (const auto modifier : ShortcutBinding::modifierKeyCodes)
        if (const auto other = tapKeys_.keyOf(modifier))
            unseen[*other] =
                (believed.contains(modifier) || down_.contains(*other)) && !shown_.contains(*other);
    const auto plan = planGrabs(tapped_, tapKeys_, map_, unseen);
    const auto states = plan.find(static_cast<xcb_keycode_t>(key));
    if (states != plan.end() && states->second.contains(static_cast<std::uint32_t>(shownModifiers())))
        return true;
    quint64 flags = 0;
    for (const auto modifier : believed)
        flags |= KeyCodes::flagOf(modifier);
    return std::ranges::any_of(tapped_, [&](const TappedKey& tapped) {
        return tapped.keyCode == code &&
               std::ranges::find(tapped.modifierFlags, flags) != tapped.modifierFlags.end();
    });
}

quint64 Expectation::flags() const {
    quint64 flags = 0;
    for (const auto key : down_)
        if (const auto code = tapKeys_.virtualOf(static_cast<unsigned>(key)))
            flags |= KeyCodes::flagOf(*code);
    return flags;
}

int Expectation::shownModifiers() const {
    int state = 0;
    for (const auto key : shown_)
        state |= map_.modifiersOf(static_cast<xcb_keycode_t>(key));
    return state;
}

Decision Expectation::tell(std::uint16_t code, bool isPress) {
    if (KeyCodes::flagOf(code) != 0)
        return matcher_.apply({KeyEvent::flagsChanged, code, flags()});
    return matcher_.apply({isPress ? KeyEvent::keyDown : KeyEvent::keyUp, code, flags()});
}

} // namespace velorin::tap
