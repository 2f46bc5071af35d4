#include "shortcuts/ShortcutMatcher.h"

#include "shortcuts/DictationShortcutSessionController.h"
#include "shortcuts/ModifierKeyEventState.h"

#include <gmock/gmock.h>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using enum ShortcutEvent;

constexpr auto consume = ShortcutMatcher::ConsumeDecision::consume;
constexpr auto passthrough = ShortcutMatcher::ConsumeDecision::passthrough;

constexpr quint64 command = 0x100000;
constexpr quint64 shift = 0x20000;
constexpr quint64 control = 0x40000;
constexpr quint64 fn = 0x800000;
constexpr quint16 leftCommand = 55;
constexpr quint16 rightCommand = 54;
constexpr quint16 leftShift = 56;
constexpr quint16 leftControl = 59;
constexpr quint16 capsLock = 57;
constexpr quint16 fnKey = 63;
constexpr quint16 f5 = 96;

ShortcutBinding keyBinding(quint16 keyCode, ShortcutModifiers modifiers,
                           std::optional<KeyCodeSet> exact = {}) {
    return {.keyCode = keyCode,
            .modifiers = modifiers,
            .kind = ShortcutBindingKind::key,
            .exactModifierKeyCodes = std::move(exact)};
}

/// A matcher, the session behind it, and a keyboard of few words.
class ShortcutMatcherTest : public testing::Test {
protected:
    ShortcutMatcher::ConsumeDecision down(quint16 keyCode) { return apply(KeyEvent::keyDown, keyCode, 0); }
    ShortcutMatcher::ConsumeDecision up(quint16 keyCode) { return apply(KeyEvent::keyUp, keyCode, 0); }
    ShortcutMatcher::ConsumeDecision flags(quint16 keyCode, quint64 value) {
        return apply(KeyEvent::flagsChanged, keyCode, value);
    }
    ShortcutMatcher::ConsumeDecision apply(quint32 type, quint16 keyCode, quint64 value) {
        const auto decision = matcher_.apply({.type = type, .keyCode = keyCode, .flags = value});
        edges_ = matcher_.takePendingEvents();
        actions_.clear();
        for (const auto edge : edges_) {
            for (const auto& action : session_.handle(edge))
                actions_ += action.description();
        }
        return decision;
    }
    void use(const ShortcutConfiguration& configuration) { matcher_.update(configuration); }
    void expectNothingHeld() const {
        EXPECT_EQ(matcher_.state, ShortcutInputState());
        EXPECT_TRUE(matcher_.consumedKeyCodes.isEmpty());
        EXPECT_TRUE(matcher_.consumedModifierKeyCodes.isEmpty());
        EXPECT_FALSE(matcher_.holdIsActive || matcher_.toggleIsActive || matcher_.copyAgainIsActive);
        EXPECT_THAT(matcher_.pendingEvents, IsEmpty());
    }

    ShortcutMatcher matcher_{.configuration = ShortcutConfiguration::defaultConfiguration()};
    DictationShortcutSessionController session_{};
    std::vector<ShortcutEvent> edges_;
    QStringList actions_;
};

TEST_F(ShortcutMatcherTest, SwallowsTheHoldKeyBothWays) {
    EXPECT_EQ(flags(fnKey, fn), consume);
    EXPECT_THAT(edges_, ElementsAre(holdActivated));
    EXPECT_EQ(flags(fnKey, 0), consume);
    EXPECT_THAT(edges_, ElementsAre(holdDeactivated));
    expectNothingHeld();
}

TEST_F(ShortcutMatcherTest, LatchesAHoldWhenCommandFollows) {
    flags(fnKey, fn);
    EXPECT_EQ(flags(leftCommand, fn | command), consume);
    EXPECT_THAT(edges_, ElementsAre(toggleActivated));
    EXPECT_EQ(actions_, QStringList{u"switchedToToggle"_s});
    EXPECT_EQ(flags(leftCommand, fn), consume);
    EXPECT_THAT(edges_, ElementsAre(toggleDeactivated));
    EXPECT_EQ(actions_, QStringList());
    EXPECT_EQ(flags(fnKey, 0), consume);
    EXPECT_THAT(edges_, ElementsAre(holdDeactivated));
    EXPECT_EQ(actions_, QStringList());
    EXPECT_EQ(session_.activeMode, RecordingTriggerMode::toggle);
}

TEST_F(ShortcutMatcherTest, TogglesWhenCommandIsDownBefore) {
    EXPECT_EQ(flags(leftCommand, command), passthrough);
    EXPECT_THAT(edges_, IsEmpty());
    EXPECT_EQ(flags(fnKey, command | fn), consume);
    EXPECT_THAT(edges_, ElementsAre(holdActivated, toggleActivated));
    EXPECT_EQ(actions_, (QStringList{u"start(hold)"_s, u"switchedToToggle"_s}));
    EXPECT_EQ(flags(leftCommand, fn), passthrough);
    EXPECT_EQ(flags(fnKey, 0), consume);
    EXPECT_EQ(session_.activeMode, RecordingTriggerMode::toggle);

    flags(leftCommand, command);
    flags(fnKey, command | fn);
    EXPECT_THAT(edges_, ElementsAre(holdActivated, toggleActivated));
    EXPECT_EQ(actions_, QStringList{u"stop"_s});
}

TEST_F(ShortcutMatcherTest, SwallowsEachFurtherModifierWhileActive) {
    flags(fnKey, fn);
    EXPECT_EQ(flags(leftShift, fn | shift), consume);
    EXPECT_EQ(flags(fnKey, shift), consume);
    // Its press was swallowed, so its release is, long after the shortcut ended.
    EXPECT_EQ(flags(leftShift, 0), consume);
    expectNothingHeld();
}

TEST_F(ShortcutMatcherTest, SwallowsABoundModifierThatDoesNotFire) {
    auto configuration = ShortcutConfiguration::defaultConfiguration();
    configuration.hold = ShortcutBinding::disabled();
    use(configuration);
    EXPECT_EQ(flags(fnKey, fn), consume);
    EXPECT_THAT(edges_, IsEmpty());
    EXPECT_EQ(flags(fnKey, 0), consume);
    EXPECT_EQ(flags(leftCommand, command), passthrough);
}

TEST_F(ShortcutMatcherTest, KeepsAStaleTwinUntilItsNextEvent) {
    flags(leftCommand, command);
    flags(rightCommand, command);
    flags(rightCommand, command); // The release: the flag is still that of the left key.
    EXPECT_TRUE(matcher_.state.pressedModifierKeyCodes.contains(rightCommand));
    flags(leftCommand, 0);
    EXPECT_EQ(matcher_.state.pressedModifierKeyCodes, (KeyCodeSet{rightCommand}));
    flags(rightCommand, 0);
    expectNothingHeld();
}

TEST_F(ShortcutMatcherTest, ResynchronizesBothKeysOfAPair) {
    EXPECT_EQ(flags(0, command), passthrough);
    EXPECT_EQ(matcher_.state.pressedModifierKeyCodes, (KeyCodeSet{leftCommand, rightCommand}));
    EXPECT_EQ(flags(0, fn), passthrough);
    EXPECT_EQ(matcher_.state.pressedModifierKeyCodes, (KeyCodeSet{fnKey}));
    EXPECT_THAT(edges_, ElementsAre(holdActivated));
    EXPECT_EQ(flags(0, 0x10000), passthrough);
    EXPECT_THAT(edges_, ElementsAre(holdDeactivated));
    expectNothingHeld();
}

TEST_F(ShortcutMatcherTest, LeavesTheConsumedKeysAloneWhenResynchronizing) {
    flags(fnKey, fn);
    flags(0, 0);
    EXPECT_THAT(edges_, ElementsAre(holdDeactivated));
    EXPECT_EQ(flags(fnKey, 0), consume);
}

TEST_F(ShortcutMatcherTest, TakesKeyZeroForTheLetterInKeyEvents) {
    use({.hold = keyBinding(0, {})});
    EXPECT_EQ(down(0), consume);
    EXPECT_THAT(edges_, ElementsAre(holdActivated));
    EXPECT_EQ(up(0), consume);
    EXPECT_THAT(edges_, ElementsAre(holdDeactivated));
}

TEST_F(ShortcutMatcherTest, NeverTakesCapsLockForAModifier) {
    flags(capsLock, 0x10000);
    expectNothingHeld();
    use({.hold = {.keyCode = capsLock, .kind = ShortcutBindingKind::modifierKey}});
    EXPECT_EQ(flags(capsLock, 0x10000), passthrough);
    expectNothingHeld();
    EXPECT_EQ(ModifierKeyEventState::mappedFlag(capsLock), std::nullopt);
    EXPECT_FALSE(ModifierKeyEventState::isModifierKeyCode(capsLock));
}

TEST_F(ShortcutMatcherTest, IgnoresModifierKeysInKeyEvents) {
    EXPECT_EQ(down(fnKey), passthrough);
    expectNothingHeld();
    flags(fnKey, fn);
    EXPECT_EQ(up(fnKey), passthrough);
    EXPECT_TRUE(matcher_.holdIsActive);
}

TEST_F(ShortcutMatcherTest, FiresWhenTheModifiersComeAfterTheKey) {
    use({.hold = keyBinding(f5, ShortcutModifiers::command)});
    EXPECT_EQ(down(f5), passthrough);
    EXPECT_EQ(flags(leftCommand, command), consume);
    EXPECT_THAT(edges_, ElementsAre(holdActivated));
    EXPECT_EQ(up(f5), passthrough);
    EXPECT_THAT(edges_, ElementsAre(holdDeactivated));
    EXPECT_EQ(flags(leftCommand, 0), consume);
    expectNothingHeld();
}

TEST_F(ShortcutMatcherTest, EndsWhenTheModifiersAreReleasedFirst) {
    use({.hold = keyBinding(f5, ShortcutModifiers::command)});
    EXPECT_EQ(flags(leftCommand, command), passthrough);
    EXPECT_EQ(down(f5), consume);
    EXPECT_EQ(flags(leftCommand, 0), passthrough);
    EXPECT_THAT(edges_, ElementsAre(holdDeactivated));
    EXPECT_EQ(up(f5), consume);
    EXPECT_THAT(edges_, IsEmpty());
}

TEST_F(ShortcutMatcherTest, SwallowsABoundKeyAgainWhileItIsActive) {
    use({.hold = keyBinding(f5, {})});
    EXPECT_EQ(down(f5), consume);
    EXPECT_EQ(down(f5), consume);
    EXPECT_THAT(edges_, IsEmpty());
    EXPECT_EQ(down(49), passthrough);
}

TEST_F(ShortcutMatcherTest, PassesABoundKeyWithoutItsModifiers) {
    use({.hold = keyBinding(f5, ShortcutModifiers::command, KeyCodeSet{leftCommand})});
    EXPECT_EQ(down(f5), passthrough);
    EXPECT_EQ(up(f5), passthrough);
    flags(rightCommand, command);
    EXPECT_EQ(down(f5), passthrough);
    EXPECT_EQ(up(f5), passthrough);
    flags(rightCommand, 0);
    flags(leftCommand, command);
    EXPECT_EQ(down(f5), consume);
    EXPECT_EQ(flags(rightCommand, command), passthrough);
    EXPECT_THAT(edges_, ElementsAre(holdDeactivated)) << "the other side ends an exact match";
}

TEST_F(ShortcutMatcherTest, LetsPermittedModifiersPassAnExactMatch) {
    use({.hold = keyBinding(f5, {}, KeyCodeSet{}),
         .permittedAdditionalExactMatchModifiers = ShortcutModifiers::shift});
    flags(leftShift, shift);
    EXPECT_EQ(down(f5), consume);
    EXPECT_EQ(up(f5), consume);
    flags(leftControl, shift | control);
    EXPECT_EQ(down(f5), passthrough);
}

TEST_F(ShortcutMatcherTest, NeverFiresFnThatWasRecordedWithoutItself) {
    use({.hold = {.keyCode = fnKey,
                  .kind = ShortcutBindingKind::modifierKey,
                  .exactModifierKeyCodes = KeyCodeSet{}}});
    EXPECT_EQ(flags(fnKey, fn), consume);
    EXPECT_THAT(edges_, IsEmpty());
}

TEST_F(ShortcutMatcherTest, CopiesAgainOnTheRisingEdgeOnly) {
    use({.copyAgain = keyBinding(8, ShortcutModifiers::control)});
    flags(leftControl, control);
    EXPECT_EQ(down(8), consume);
    EXPECT_THAT(edges_, ElementsAre(copyAgainTriggered));
    EXPECT_EQ(up(8), consume);
    EXPECT_THAT(edges_, IsEmpty());
    EXPECT_FALSE(matcher_.copyAgainIsActive);
}

TEST_F(ShortcutMatcherTest, GivesAllEdgesOfOneEventInTheirOrder) {
    const auto same = keyBinding(f5, {});
    use({.hold = same, .toggle = same, .copyAgain = same});
    down(f5);
    EXPECT_THAT(edges_, ElementsAre(holdActivated, toggleActivated, copyAgainTriggered));
    up(f5);
    EXPECT_THAT(edges_, ElementsAre(holdDeactivated, toggleDeactivated));
}

TEST_F(ShortcutMatcherTest, DoesNothingWhenAllIsDisabled) {
    use(ShortcutConfiguration::disabled());
    EXPECT_EQ(flags(fnKey, fn), passthrough);
    EXPECT_EQ(flags(fnKey, 0), passthrough);
    EXPECT_EQ(down(0), passthrough);
    EXPECT_EQ(up(0), passthrough);
    EXPECT_THAT(edges_, IsEmpty());
}

TEST_F(ShortcutMatcherTest, PassesUnknownEventsAndReleasesOfKeysThatWereNotHeld) {
    EXPECT_EQ(apply(14, fnKey, fn), passthrough);
    EXPECT_EQ(up(f5), passthrough);
    EXPECT_EQ(flags(leftShift, 0), passthrough);
    expectNothingHeld();
}

TEST_F(ShortcutMatcherTest, LeavesARunningHoldAloneOnAnEqualConfiguration) {
    flags(fnKey, fn);
    use(ShortcutConfiguration::defaultConfiguration());
    EXPECT_TRUE(matcher_.holdIsActive);
    EXPECT_EQ(flags(fnKey, 0), consume);
    EXPECT_THAT(edges_, ElementsAre(holdDeactivated));
}

TEST_F(ShortcutMatcherTest, ForgetsARunningHoldWithoutAnEdgeOnAnother) {
    flags(fnKey, fn);
    auto configuration = ShortcutConfiguration::defaultConfiguration();
    configuration.hold.keyDisplay = u"fn"_s;
    matcher_.pendingEvents = {copyAgainTriggered};
    use(configuration);
    expectNothingHeld();
    EXPECT_EQ(flags(fnKey, 0), passthrough);
    EXPECT_THAT(edges_, IsEmpty());
    EXPECT_EQ(session_.activeMode, RecordingTriggerMode::hold);
}

TEST(KeyCodeSet, IsASetInAscendingOrder) {
    KeyCodeSet codes{9, 3, 9, 65535, 0};
    EXPECT_THAT(codes, ElementsAre(0, 3, 9, 65535));
    codes.remove(3);
    codes.remove(4);
    EXPECT_EQ(codes, (KeyCodeSet{65535, 9, 0}));
    EXPECT_FALSE(codes.contains(3));
    for (quint16 code = 100; code > 0; --code)
        codes.insert(code);
    EXPECT_EQ(codes.size(), 102);
    EXPECT_TRUE(codes.contains(77));
    codes.clear();
    EXPECT_TRUE(codes.isEmpty());
}

} // namespace
} // namespace velorin
