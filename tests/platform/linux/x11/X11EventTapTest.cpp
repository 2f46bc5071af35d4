#include "platform/linux/x11/X11EventTap.h"

#include "platform/linux/x11/XTestSyntheticKeyboard.h"
#include "tests/platform/linux/x11/support/TapFixture.h"

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>
#include <xcb/xinput.h>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace velorin {
namespace {

TEST_F(X11EventTapTest, SwallowsTheHoldKeyAndLetsOtherKeysThroughClean) {
    start({fnAnyhow()});
    awaitGrabs(rightControl);
    user.press(rightControl);
    (void)handled.text(1);
    user.tap(letterA);
    EXPECT_EQ(toString(window.keys(2)), "38+ 38-");
    user.release(rightControl);
    EXPECT_EQ(handled.text(2), "f63/800000 f63/0");
    user.tap(letterB);
    EXPECT_EQ(toString(window.keys(2)), "56+ 56-");
    EXPECT_TRUE(down().none());
}

TEST_F(X11EventTapTest, MissesNoPressOnceItHasStarted) {
    tap.setTappedKeys({fnAnyhow()});
    for (int start = 0; start < 20; ++start) {
        ASSERT_TRUE(tap.start(handled.handler(), {}));
        handled.clear();
        user.tap(rightControl);
        EXPECT_EQ(handled.text(2), "f63/800000 f63/0");
        tap.stop();
    }
}

TEST_F(X11EventTapTest, KeepsKeysThatAreTypedWhileItIsStillThinking) {
    start({fnAnyhow()});
    awaitGrabs(rightControl);
    handled.answer = [&](const KeyEvent& event) {
        if (event.keyCode != KeyCodes::function)
            return TapAnswer::pass;
        if (event.flags != 0) { // the press: the user goes on typing meanwhile
            user.press(leftShift);
            user.tap(letterA);
            user.release(leftShift);
            user.press(letterB);
            user.sync();
        }
        return TapAnswer::swallow;
    };
    user.press(rightControl);
    EXPECT_EQ(toString(window.keys(5)), "50+ 38+/1 38-/1 50-/1 56+");
    user.release(letterB);
    user.release(rightControl);
    EXPECT_EQ(toString(window.keys(1)), "56-");
    EXPECT_THAT(handled.text(4), testing::EndsWith("f63/0"));
    EXPECT_TRUE(down().none());
    user.tap(letterB);
    EXPECT_EQ(toString(window.keys(2)), "56+ 56-");
    const Deadline deadline(5s);
    while (state->keys[letterB] != 0 && !deadline.hasPassed())
        std::this_thread::yield();
    EXPECT_EQ(state->keys[letterB], 0) << "our device does not hold it";
}

TEST_F(X11EventTapTest, KeepsTheOrderOfWhatIsTypedAtFullSpeedAroundIt) {
    start({fnAnyhow()});
    awaitGrabs(rightControl);
    handled.answer = [](const KeyEvent& event) {
        return event.keyCode == KeyCodes::function ? TapAnswer::swallow : TapAnswer::pass;
    };
    constexpr int rounds = 20;
    std::string expected;
    for (int i = 0; i < rounds; ++i) {
        user.press(letterA);
        user.tap(rightControl);
        user.press(leftShift);
        user.release(letterA);
        user.tap(letterB);
        user.release(leftShift);
        expected += "38+ 50+ 38-/1 56+/1 56-/1 50-/1 ";
    }
    user.sync();
    EXPECT_EQ(toString(window.keys(rounds * 6)) + " ", expected);
    EXPECT_TRUE(down().none());
}

TEST_F(X11EventTapTest, SwallowsWithoutAChangeOfTheKeyboardsMap) {
    start({fnAnyhow()});
    awaitGrabs(rightControl);
    user.tap(letterA); // from now on the map is that of the user's keyboard
    EXPECT_THAT(window.keys(2), testing::SizeIs(2));
    const auto bystander = XConnection::open();
    ASSERT_TRUE(bystander);
    user.press(rightControl);
    const Deadline deadline(5s);
    while (handled.text(1).empty() || (down().any() && !deadline.hasPassed()))
        std::this_thread::yield();
    user.tap(letterA);
    user.release(rightControl);
    (void)handled.text(2);
    EXPECT_THAT(window.keys(2), testing::SizeIs(2));
    ASSERT_TRUE(bystander->sync(Deadline(5s)));
    while (const XcbPtr<xcb_generic_event_t> event{xcb_poll_for_event(bystander->get())})
        EXPECT_NE(event->response_type & 0x7f, XCB_MAPPING_NOTIFY)
            << "every program would read its keys anew";
}

TEST_F(X11EventTapTest, PassesWhatTheHandlerPasses) {
    start({{96, {command}}});
    awaitGrabs(f5);
    handled.answer = [](const KeyEvent&) { return TapAnswer::pass; };
    user.press(leftSuper);
    user.tap(f5);
    user.release(leftSuper);
    EXPECT_EQ(toString(window.keys(4)), "133+ 71+/64 71-/64 133-/64");
    EXPECT_EQ(handled.text(4), "f55/100000 d96 u96 f55/0");
}

TEST_F(X11EventTapTest, DoesNotCountAPressThatWentToSomebodyElsesGrab) {
    start({fnAnyhow()});
    awaitGrabs(rightControl);
    auto* c = window.connection().get();
    const auto grab = window.connection().reply<xcb_grab_keyboard_reply_t>(
        xcb_grab_keyboard(c, 0, window.id(), 0, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC), Deadline(5s));
    ASSERT_EQ(grab->status, XCB_GRAB_STATUS_SUCCESS);
    user.tap(rightControl);
    EXPECT_EQ(toString(window.keys(2)), "105+ 105-/4");
    xcb_ungrab_keyboard(c, 0);
    window.connection().sync(Deadline(5s));
    user.tap(rightControl);
    EXPECT_EQ(handled.text(2), "f63/800000 f63/0") << "only the second one";
}

TEST_F(X11EventTapTest, HearsTheReleaseWhoeverGotTheKeyboardMeanwhile) {
    start({fnAnyhow()});
    awaitGrabs(rightControl);
    user.press(rightControl);
    (void)handled.text(1);
    auto* c = window.connection().get();
    (void)window.connection().reply<xcb_grab_keyboard_reply_t>(
        xcb_grab_keyboard(c, 0, window.id(), 0, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC), Deadline(5s));
    user.release(rightControl);
    EXPECT_EQ(handled.text(2), "f63/800000 f63/0");
    EXPECT_THAT(window.keys(), testing::IsEmpty());
}

TEST_F(X11EventTapTest, LeavesOurOwnChordsAlone) {
    start({fnAnyhow(), {9, {0x40000}}}); // control and V are bound as well
    awaitGrabs(55);
    XTestSyntheticKeyboard keyboard(state);
    EXPECT_TRUE(keyboard.chord(Chord::paste, std::nullopt));
    EXPECT_EQ(toString(window.keys(4)), "37+ 55+/4 55-/4 37-/4");
    EXPECT_EQ(handled.text(), "");
}

TEST_F(X11EventTapTest, ReleasesWhatWasGivenBackWhenTheUserLetsGo) {
    start({fnAnyhow()});
    awaitGrabs(rightControl);
    user.press(leftControl);
    (void)handled.text(1);
    XTestSyntheticKeyboard keyboard(state);
    EXPECT_TRUE(keyboard.chord(Chord::paste, std::nullopt));
    EXPECT_EQ(toString(window.keys(7)), "37+ 37-/4 37+ 55+/4 55-/4 37-/4 37+");
    user.release(leftControl);
    EXPECT_EQ(toString(window.keys(1)), "37-/4");
    (void)handled.text(2);
    const Deadline deadline(5s);
    while (state->keys[leftControl] != 0 && !deadline.hasPassed())
        std::this_thread::yield();
    EXPECT_TRUE(keyboard.chord(Chord::paste, std::nullopt));
    EXPECT_EQ(toString(window.keys(4)), "37+ 55+/4 55-/4 37-/4") << "a chord, and no plain v";
}

TEST_F(X11EventTapTest, ChangesItsKeysWhileItRuns) {
    start({fnAnyhow()});
    awaitGrabs(rightControl);
    tap.setTappedKeys({{96, {0}}});
    awaitGrabs(f5);
    user.tap(rightControl);
    EXPECT_EQ(toString(window.keys(2)), "105+ 105-/4");
    user.tap(f5);
    EXPECT_EQ(handled.text(4), "f63/800000 f63/0 d96 u96") << "a modifier that is free still counts as one";
    EXPECT_THAT(window.keys(), testing::IsEmpty());
}

TEST_F(X11EventTapTest, LetsAnotherKeyStandInForFn) {
    tap.setFnStandIn(u"capsLock"_s);
    start({fnAnyhow()});
    awaitGrabs(capsLock);
    user.tap(capsLock);
    EXPECT_EQ(handled.text(2), "f63/800000 f63/0");
    user.tap(letterA);
    EXPECT_EQ(toString(window.keys(2)), "38+ 38-") << "the lock is put back";
    tap.setFnStandIn(u"menu"_s);
    awaitGrabs(135);
    user.tap(135);
    EXPECT_THAT(handled.text(4), testing::EndsWith("f63/800000 f63/0"));
}

TEST_F(X11EventTapTest, LeavesTheKeyboardFreeWhenItStops) {
    start({fnAnyhow()});
    awaitGrabs(rightControl);
    user.press(rightControl);
    (void)handled.text(1);
    tap.stop();
    user.release(rightControl);
    user.tap(rightControl);
    EXPECT_EQ(toString(window.keys(2)), "105+ 105-/4");
    EXPECT_TRUE(down().none());
}

TEST_F(X11EventTapTest, ComesBackWhenItsConnectionWasEnded) {
    start({fnAnyhow()});
    awaitGrabs(rightControl);
    user.press(rightControl);
    user.press(leftShift);
    (void)handled.text(2);
    xcb_kill_client(user.connection().get(), state->tapResource);
    user.release(rightControl);
    EXPECT_THAT(handled.text(3), testing::HasSubstr("f63/20000")) << "the hold ends";
    awaitResumes(2);
    awaitGrabs(rightControl);
    handled.clear();
    user.release(leftShift);
    user.press(rightControl);
    EXPECT_EQ(handled.text(2), "f56/0 f63/800000");
    user.release(rightControl);
    EXPECT_FALSE(isLost);
}

TEST_F(X11EventTapTest, KeepsTheHoldWhenItsConnectionWasEndedAndTheKeyIsStillHeld) {
    start({fnAnyhow()});
    awaitGrabs(rightControl);
    user.press(rightControl);
    (void)handled.text(1);
    user.tap(letterA); // the answer has been given
    EXPECT_THAT(window.keys(2), testing::SizeIs(2));
    xcb_kill_client(user.connection().get(), state->tapResource);
    user.sync();
    awaitResumes(2);
    user.tap(leftShift); // what is told comes after the coming back
    EXPECT_EQ(handled.text(3), "f63/800000 f56/820000 f56/800000");
    user.release(rightControl);
    EXPECT_THAT(handled.text(4), testing::EndsWith(" f63/0"));
}

TEST_F(X11EventTapTest, TellsWhenTheServerIsGone) {
    start({fnAnyhow()});
    server.kill();
    const Deadline deadline(10s);
    while (!isLost && !deadline.hasPassed())
        std::this_thread::yield();
    EXPECT_TRUE(isLost);
    tap.stop();
}

TEST_F(X11EventTapTest, KeepsItsGrabsThroughAChangeOfLayout) {
    // Like the shortcuts: a modifier that is free and pressed right behind the hold key goes on.
    handled.answer = [](const KeyEvent& event) {
        return event.keyCode == 55 ? TapAnswer::pass : TapAnswer::swallow;
    };
    start({fnAnyhow(), {96, {command}}});
    awaitGrabs(f5);
    user.press(rightControl);
    (void)handled.text(1);
    server.start({"setxkbmap", "-layout", "us,ru", "-option", "grp:alt_shift_toggle"}).wait();
    user.release(rightControl);
    EXPECT_EQ(handled.text(2), "f63/800000 f63/0");
    // The tap hears of the new map a moment after the window does, and asks for its grabs anew.
    const Deadline deadline(20s);
    const auto isServed = [&] {
        return handled.text().find("f55/100000 d96 u96 f55/0") != std::string::npos;
    };
    while (!isServed() && !deadline.hasPassed()) {
        user.press(leftSuper);
        user.tap(f5);
        user.release(leftSuper);
        (void)window.keysThrough(leftSuper);
    }
    EXPECT_TRUE(isServed());
}

TEST(X11EventTap, LeavesTheKeyboardFreeWhenItsProcessIsKilledWhileAPressWaits) {
    PrivateServer server;
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe(ends.data()), 0);
    const auto child = fork();
    if (child == 0) {
        SharedKeyState state;
        X11EventTap tap(state, {});
        tap.setTappedKeys({fnAnyhow()});
        const auto started = tap.start(
            [&](const KeyEvent&) {
                (void)write(ends[1], "p", 1);
                for (;;) // never answers
                    pause();
                return TapAnswer::pass;
            },
            {});
        while (started && (state->grabbed[rightControl / 32] >> (rightControl % 32) & 1) == 0)
            std::this_thread::yield();
        (void)write(ends[1], "g", 1);
        for (;;)
            pause();
    }
    PhysicalKeyboard user;
    TestWindow window;
    window.focus();
    char mark = 0;
    ASSERT_EQ(read(ends[0], &mark, 1), 1);
    window.connection().sync(Deadline(5s));
    user.press(rightControl);
    ASSERT_EQ(read(ends[0], &mark, 1), 1);
    ASSERT_EQ(mark, 'p');
    user.tap(letterA);
    user.sync();
    EXPECT_THAT(window.keys(), testing::IsEmpty()) << "all keys wait for the answer";
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    EXPECT_EQ(window.keys(2).size(), 2u) << "what was typed meanwhile arrives";
    user.release(rightControl);
    user.sync();
    EXPECT_TRUE(keysDown(user.connection(), Deadline(5s))->none());
}

} // namespace
} // namespace velorin
