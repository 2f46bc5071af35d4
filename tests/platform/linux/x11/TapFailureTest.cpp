#include "platform/linux/x11/X11EventTap.h"

#include "platform/linux/x11/TapGrabs.h"
#include "platform/linux/x11/X11Session.h"
#include "tests/platform/linux/x11/support/Handled.h"
#include "tests/platform/linux/x11/support/LesserServer.h"
#include "tests/platform/linux/x11/support/PhysicalKeyboard.h"
#include "tests/platform/linux/x11/support/TestWindow.h"
#include "tests/support/LogCapture.h"

#include <gmock/gmock.h>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace velorin {
namespace {

constexpr int f5 = 71;
constexpr int f6 = 72;
constexpr quint16 codeOfF5 = 96;
constexpr quint16 codeOfF6 = 97;

class TapFailureTest : public testing::Test {
protected:
    TapFailureTest() {
        handled.answer = [](const KeyEvent&) { return TapAnswer::swallow; };
    }

    void expectThatTheServerIsRefused() {
        X11EventTap tap(state, {});
        EXPECT_EQ(tap.start(handled.handler(), {}).error(), EventTapError::notPermitted);
        EXPECT_FALSE(X11Session().letsUsWatchAndPostKeys());
    }

    /// Its grabs were asked for, and what was refused was logged.
    void awaitGrab(int key) {
        const Deadline deadline(10s);
        while ((state->grabbed[static_cast<unsigned>(key) / 32] >> (key % 32) & 1) == 0)
            ASSERT_FALSE(deadline.hasPassed());
    }

    PrivateServer server;
    SharedKeyState state;
    Handled handled;
};

TEST_F(TapFailureTest, NeedsTheInputExtension) {
    const LesserServer lesser(server, LesserServer::Lack::input);
    expectThatTheServerIsRefused();
}

TEST_F(TapFailureTest, NeedsItInVersionTwoPointTwo) {
    const LesserServer lesser(server, LesserServer::Lack::input22);
    expectThatTheServerIsRefused();
}

TEST_F(TapFailureTest, NamesAKeyThatAnotherProgramHasAndServesTheOthers) {
    const auto other = TapConnections::open();
    ASSERT_TRUE(other.has_value());
    SharedKeyState othersState;
    LogThread othersLog;
    TapGrabs others(**other, othersState, othersLog);
    others.apply({{f5, {XCB_MOD_MASK_4}}}, TapKeys("rightControl"));
    PhysicalKeyboard user;
    TestWindow window;
    window.focus();
    X11EventTap tap(state, {});
    const LogCapture log;
    tap.setTappedKeys({{codeOfF5, {0x100000}}, {codeOfF6, {0}}});
    ASSERT_TRUE(tap.start(handled.handler(), {}));
    awaitGrab(f6);
    user.tap(f6);
    EXPECT_EQ(handled.text(2), "d97 u97");
    EXPECT_THAT(window.keys(), testing::IsEmpty());
    tap.stop();
    EXPECT_TRUE(log.lines().contains(
        u"tap: grab refused: key 71 (code 96) with modifiers 0x40 belongs to another program"_s));
}

TEST_F(TapFailureTest, WorksWithoutAGuardThatEndsAtOnce) {
    PhysicalKeyboard user;
    TestWindow window;
    window.focus();
    X11EventTap tap(state, "/bin/false");
    const LogCapture log;
    tap.setTappedKeys({{codeOfF6, {0}}});
    ASSERT_TRUE(tap.start(handled.handler(), {}));
    awaitGrab(f6);
    user.tap(f6);
    EXPECT_EQ(handled.text(2), "d97 u97");
    tap.stop();
    EXPECT_TRUE(log.lines().contains(u"tap: the keyboard's guard could not be started"_s));
}

TEST(X11EventTap, NeedsAServer) {
    unsetenv("DISPLAY");
    unsetenv("WAYLAND_DISPLAY");
    unsetenv("XDG_SESSION_TYPE");
    SharedKeyState state;
    X11EventTap tap(state, {});
    Handled handled;
    EXPECT_EQ(tap.start(handled.handler(), {}).error(), EventTapError::notPermitted);
    EXPECT_FALSE(X11Session().letsUsWatchAndPostKeys());
}

TEST(X11EventTap, NeedsTheExtensions) {
    PrivateServer server({"-extension", "XTEST"});
    SharedKeyState state;
    X11EventTap tap(state, {});
    Handled handled;
    EXPECT_EQ(tap.start(handled.handler(), {}).error(), EventTapError::notPermitted);
    EXPECT_FALSE(X11Session().letsUsWatchAndPostKeys());
}

TEST(X11EventTap, DoesNotServeAWaylandSession) {
    PrivateServer server;
    SharedKeyState state;
    X11EventTap tap(state, {});
    Handled handled;
    EXPECT_TRUE(X11Session().letsUsWatchAndPostKeys());
    setenv("XDG_SESSION_TYPE", "wayland", 1);
    EXPECT_EQ(tap.start(handled.handler(), {}).error(), EventTapError::unsupportedSession);
    EXPECT_FALSE(X11Session().letsUsWatchAndPostKeys());
    unsetenv("XDG_SESSION_TYPE");
    setenv("WAYLAND_DISPLAY", "wayland-0", 1);
    EXPECT_EQ(tap.start(handled.handler(), {}).error(), EventTapError::unsupportedSession);
    unsetenv("WAYLAND_DISPLAY");
}

} // namespace
} // namespace velorin
