#include "shortcuts/TappedKeys.h"

#include "RandomShortcuts.h"
#include "shortcuts/ModifierKeyEventState.h"
#include "shortcuts/ShortcutMatcher.h"

#include <gmock/gmock.h>

#include <map>
#include <set>

namespace velorin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr quint64 command = 0x100000;
constexpr quint64 shift = 0x20000;

ShortcutConfiguration holdOnly(quint16 keyCode, ShortcutBindingKind kind, std::optional<KeyCodeSet> exact,
                               ShortcutModifiers modifiers = {}, ShortcutModifiers permitted = {}) {
    return {.hold = {.keyCode = keyCode,
                     .modifiers = modifiers,
                     .kind = kind,
                     .exactModifierKeyCodes = std::move(exact)},
            .permittedAdditionalExactMatchModifiers = permitted};
}

TEST(TappedKeys, AreTheBoundKeysInTheModifiersThatFireThem) {
    using Kind = ShortcutBindingKind;
    EXPECT_THAT(tappedKeys(holdOnly(96, Kind::key, KeyCodeSet{})), ElementsAre(TappedKey{96, {0}}));
    EXPECT_THAT(tappedKeys(holdOnly(96, Kind::key, KeyCodeSet{55})), ElementsAre(TappedKey{96, {command}}));
    EXPECT_THAT(tappedKeys(holdOnly(96, Kind::key, KeyCodeSet{55}, {}, ShortcutModifiers::shift)),
                ElementsAre(TappedKey{96, {command, shift | command}}));
    const auto anyModifiers = tappedKeys(holdOnly(96, Kind::key, {}));
    ASSERT_THAT(anyModifiers, SizeIs(1));
    EXPECT_THAT(anyModifiers[0].modifierFlags, SizeIs(32));
}

TEST(TappedKeys, HoldAModifierKeyInEveryCombination) {
    const auto keys = tappedKeys(ShortcutConfiguration::defaultConfiguration());
    ASSERT_THAT(keys, SizeIs(1));
    EXPECT_EQ(keys[0].keyCode, 63);
    EXPECT_THAT(keys[0].modifierFlags, SizeIs(32));
}

TEST(TappedKeys, AreNoneWhereNothingCanBeSwallowed) {
    using Kind = ShortcutBindingKind;
    EXPECT_THAT(tappedKeys(ShortcutConfiguration::disabled()), IsEmpty());
    EXPECT_THAT(tappedKeys(holdOnly(63, Kind::key, {})), IsEmpty());
    EXPECT_THAT(tappedKeys(holdOnly(57, Kind::modifierKey, {})), IsEmpty());
    EXPECT_THAT(tappedKeys(holdOnly(96, Kind::modifierKey, {})), IsEmpty());
    EXPECT_THAT(tappedKeys(holdOnly(96, Kind::key, {}, {32})), IsEmpty());
}

/// Puts modifier keys down on a fresh matcher, as a keyboard would, and gives the flags that follow.
quint64 hold(ShortcutMatcher& matcher, unsigned mask) {
    quint64 flags = 0;
    for (std::size_t bit = 0; bit < ShortcutBinding::modifierKeyCodes.size(); ++bit) {
        if ((mask >> bit & 1U) == 0)
            continue;
        const auto keyCode = ShortcutBinding::modifierKeyCodes[bit];
        flags |= ModifierKeyEventState::mappedFlag(keyCode).value_or(0);
        matcher.apply({.type = KeyEvent::flagsChanged, .keyCode = keyCode, .flags = flags});
    }
    return flags;
}

/// The flags with which the real events make the matcher swallow the press of a key.
std::set<quint64> swallowingFlags(const ShortcutConfiguration& configuration, quint16 keyCode) {
    const auto own = ModifierKeyEventState::mappedFlag(keyCode);
    std::set<quint64> found;
    for (unsigned mask = 0; mask < 512; ++mask) {
        ShortcutMatcher matcher{.configuration = configuration};
        const auto flags = hold(matcher, mask);
        const auto press =
            own ? KeyEvent{.type = KeyEvent::flagsChanged, .keyCode = keyCode, .flags = flags | *own}
                : KeyEvent{.type = KeyEvent::keyDown, .keyCode = keyCode, .flags = flags};
        if (matcher.apply(press) == ShortcutMatcher::ConsumeDecision::consume)
            found.insert(flags);
    }
    return found;
}

TEST(TappedKeys, AreExactlyWhatTheMatcherSwallows) {
    int keysMet = 0;
    for (unsigned seed = 0; seed < 60; ++seed) {
        SCOPED_TRACE(seed);
        const auto configuration = RandomShortcuts(seed).configuration();
        std::map<quint16, std::set<quint64>> tapped;
        for (const auto& key : tappedKeys(configuration))
            tapped[key.keyCode] = {key.modifierFlags.begin(), key.modifierFlags.end()};
        keysMet += static_cast<int>(tapped.size());
        for (const auto role : allShortcutRoles) {
            const auto& binding = configuration.binding(role);
            // A modifier key that is no binding's own is swallowed only while a shortcut is active.
            const bool isForeign = binding.kind != ShortcutBindingKind::modifierKey &&
                                   ModifierKeyEventState::isModifierKeyCode(binding.keyCode);
            if (!isForeign) {
                EXPECT_EQ(tapped[binding.keyCode], swallowingFlags(configuration, binding.keyCode));
            }
        }
    }
    EXPECT_GT(keysMet, 60);
}

} // namespace
} // namespace velorin
