#include "tests/platform/linux/x11/support/TapFixture.h"

using namespace std::chrono_literals;

namespace velorin {
namespace {

class X11EventTapModifiersTest : public X11EventTapTest {
protected:
    /// A grab ends a moment after the reason for it.
    bool arrivesInTheEnd(int key) {
        const Deadline deadline(10s);
        do {
            user.tap(key);
            user.tap(letterA);
        } while (window.keysThrough(letterA).front().key == letterA && !deadline.hasPassed());
        return !deadline.hasPassed();
    }
};

TEST_F(X11EventTapModifiersTest, GrabsExactCombinationsWithEitherLock) {
    start({{96, {command}}});
    awaitGrabs(f5);
    user.tap(f5);
    user.press(leftShift);
    user.tap(f5);
    user.press(leftSuper);
    user.tap(f5);
    user.release(leftSuper);
    user.release(leftShift);
    EXPECT_EQ(toString(window.keys(10)), "71+ 71- 50+ 71+/1 71-/1 133+/1 71+/65 71-/65 133-/65 50-/1");
    EXPECT_THAT(handled.text(4), testing::Not(testing::HasSubstr("96")));
    for (const auto& locks : {std::vector{capsLock}, {numLock}, {capsLock, numLock}}) {
        handled.clear();
        for (const int lock : locks)
            user.tap(lock);
        user.press(leftSuper);
        user.tap(f5);
        user.release(leftSuper);
        EXPECT_EQ(handled.text(4), "f55/100000 d96 u96 f55/0");
        for (const int lock : locks)
            user.tap(lock);
        for (const auto& key : window.keys(locks.size() * 4 + 2))
            EXPECT_NE(key.key, f5);
    }
}

TEST_F(X11EventTapModifiersTest, HidesOtherModifiersWhileABoundKeyIsDown) {
    start({fnAnyhow()});
    awaitGrabs(rightControl);
    user.press(rightControl);
    awaitGrabs(leftSuper);
    user.press(leftSuper);
    (void)handled.text(2);
    user.tap(letterA);
    user.release(leftSuper);
    user.release(rightControl);
    EXPECT_EQ(handled.text(4), "f63/800000 f55/900000 f55/800000 f63/0");
    EXPECT_EQ(toString(window.keys(2)), "38+ 38-");
    user.tap(leftSuper);
    EXPECT_EQ(toString(window.keys(2)), "133+ 133-/64") << "no longer hidden";
}

TEST_F(X11EventTapModifiersTest, HidesModifiersWhileABoundKeyIsDownThatItPassed) {
    start({{96, {0}}});
    awaitGrabs(f5);
    handled.answer = [](const KeyEvent& event) {
        return event.keyCode == 96 ? TapAnswer::pass : TapAnswer::swallow;
    };
    user.press(f5);
    EXPECT_EQ(toString(window.keys(1)), "71+");
    user.tap(leftShift);
    user.release(f5);
    EXPECT_EQ(toString(window.keys(1)), "71-");
    user.tap(letterA);
    EXPECT_EQ(toString(window.keys(2)), "38+ 38-");
}

TEST_F(X11EventTapModifiersTest, HidesModifiersWhileTheHandlerTakesABoundKeyForDownBecauseOfItsTwin) {
    // Of a pair only the common flag is told: the release of the right one reads as another press of it.
    start({{61, {0, 0x80000}}});
    awaitGrabs(rightAlt);
    handled.answer = [](const KeyEvent& event) {
        return event.keyCode == 58 ? TapAnswer::pass : TapAnswer::swallow;
    };
    user.press(rightAlt);
    (void)handled.text(1);
    user.press(leftAlt);
    user.release(rightAlt);
    user.release(leftAlt);
    EXPECT_EQ(handled.text(4), "f61/80000 f58/80000 f61/80000 f58/0");
    EXPECT_EQ(toString(window.keys(2)), "64+ 64-/8");
    user.tap(leftShift);
    user.tap(letterA);
    EXPECT_EQ(toString(window.keys(2)), "38+ 38-") << "the shortcut still seems active";
    user.tap(rightAlt);
    EXPECT_THAT(handled.text(8), testing::EndsWith("f56/20000 f56/0 f61/80000 f61/0"));
    EXPECT_TRUE(arrivesInTheEnd(leftShift));
}

TEST_F(X11EventTapModifiersTest, SeesABoundKeyWhoseModifierItHides) {
    start({fnAnyhow(), {96, {command}}});
    awaitGrabs(f5);
    user.press(rightControl);
    (void)handled.text(1);
    user.press(leftSuper);
    (void)handled.text(2);
    user.tap(f5);
    EXPECT_EQ(handled.text(4), "f63/800000 f55/900000 d96 u96");
    user.release(leftSuper);
    user.release(rightControl);
    (void)handled.text(6);
    EXPECT_TRUE(arrivesInTheEnd(f5)) << "without it, it is none of ours";
}

TEST_F(X11EventTapModifiersTest, HidesAModifierAgainThatItPassedBefore) {
    start({fnAnyhow()});
    awaitGrabs(rightControl);
    std::atomic<bool> passesShift = true;
    handled.answer = [&](const KeyEvent& event) {
        return event.keyCode == 56 && passesShift ? TapAnswer::pass : TapAnswer::swallow;
    };
    user.press(rightControl);
    awaitGrabs(leftShift);
    user.tap(leftShift);
    EXPECT_EQ(toString(window.keys(2)), "50+ 50-/1");
    (void)handled.text(3);
    passesShift = false;
    // It is grabbed anew a moment after it passed.
    const Deadline deadline(10s);
    do {
        user.tap(leftShift);
        user.tap(letterA);
    } while (window.keysThrough(letterA).front().key == leftShift && !deadline.hasPassed());
    EXPECT_FALSE(deadline.hasPassed());
    user.release(rightControl);
    user.sync();
    EXPECT_TRUE(down().none());
}

TEST_F(X11EventTapModifiersTest, ShowsTheDesktopAnotherKeyWhenSuperWasHeld) {
    start({fnAnyhow()});
    awaitGrabs(rightControl);
    user.press(leftSuper);
    user.press(rightControl);
    EXPECT_EQ(handled.text(2), "f55/100000 f63/900000");
    user.release(rightControl);
    // The other key comes while Super is down; no hand lets go of it before that.
    const auto keys = window.keys(3);
    ASSERT_EQ(keys.size(), 3u);
    EXPECT_EQ(keys[0].key, leftSuper);
    EXPECT_EQ(keys[1].key, keys[2].key);
    user.release(leftSuper);
    const auto last = window.keys(1);
    ASSERT_EQ(last.size(), 1u);
    EXPECT_EQ(last[0].key, leftSuper);
    const auto map = KeyboardMap::read(user.connection(), Deadline(5s));
    EXPECT_EQ(keys[1].key, map->neutralKey());
}

} // namespace
} // namespace velorin
