// The tap's thread under ThreadSanitizer: keys, chords and changes of the bindings at once.
#include "platform/linux/x11/X11EventTap.h"
#include "platform/linux/x11/XTestSyntheticKeyboard.h"

#include "tests/platform/linux/x11/support/Handled.h"
#include "tests/platform/linux/x11/support/PhysicalKeyboard.h"
#include "tests/platform/linux/x11/support/PrivateServer.h"

#include <gmock/gmock.h>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace velorin {
namespace {

constexpr int rightControl = 105;
constexpr int leftShift = 50;
constexpr int letterA = 38;

TEST(TapThread, TakesOrdersWhileKeysArePressed) {
    PrivateServer server;
    SharedKeyState state;
    Handled handled;
    handled.answer = [](const KeyEvent&) { return TapAnswer::swallow; };
    X11EventTap tap(state, {});
    tap.setTappedKeys({{63, {0}}});
    std::atomic<bool> isTyping = true;
    std::thread typing([&] {
        PhysicalKeyboard user;
        for (int i = 0; i < 300; ++i) {
            user.press(i % 3 == 0 ? leftShift : letterA);
            user.tap(rightControl);
            user.release(i % 3 == 0 ? leftShift : letterA);
        }
        user.sync();
        isTyping = false;
    });
    XTestSyntheticKeyboard keyboard(state);
    for (int round = 0; round == 0 || isTyping; ++round) {
        ASSERT_TRUE(tap.start(handled.handler(), {}));
        for (int i = 0; i < 10; ++i) {
            tap.setTappedKeys({{63, {0, 0x20000}}, {static_cast<quint16>(96 + i % 3), {0}}});
            EXPECT_TRUE(keyboard.chord(Chord::paste, std::nullopt));
        }
        tap.setFnStandIn(round % 2 == 0 ? u"menu"_s : u"rightControl"_s);
        tap.stop();
    }
    typing.join();
    PhysicalKeyboard user;
    EXPECT_TRUE(keysDown(user.connection(), Deadline(5s))->none());
}

TEST(TapThread, IsStoppedWhileItComesBack) {
    PrivateServer server;
    SharedKeyState state;
    Handled handled;
    PhysicalKeyboard user;
    X11EventTap tap(state, {});
    tap.setTappedKeys({{63, {0}}});
    std::atomic<int> calls = 0;
    const TapListener listener{.onLost = [&] { ++calls; },
                               .onSuspended = [&](TapTrouble) { ++calls; },
                               .onResumed = [&] { ++calls; }};
    for (int round = 0; round < 30; ++round) {
        ASSERT_TRUE(tap.start(handled.handler(), listener));
        xcb_kill_client(user.connection().get(), state->tapResource);
        user.press(rightControl);
        user.release(rightControl);
        user.sync();
        if (round % 3 == 0)
            std::this_thread::sleep_for(std::chrono::milliseconds(round));
        tap.stop();
    }
    EXPECT_GE(calls, 60) << "each start is told of";
    EXPECT_TRUE(keysDown(user.connection(), Deadline(5s))->none());
}

} // namespace
} // namespace velorin
