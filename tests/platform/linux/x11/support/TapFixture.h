/// A tap on a server of its own, the user's keyboard and a window that has it.
#pragma once

#include "platform/linux/x11/X11EventTap.h"
#include "tests/platform/linux/x11/support/Handled.h"
#include "tests/platform/linux/x11/support/PhysicalKeyboard.h"
#include "tests/platform/linux/x11/support/PrivateServer.h"
#include "tests/platform/linux/x11/support/TestWindow.h"

#include <atomic>
#include <gmock/gmock.h>
#include <thread>

namespace velorin {

// X key codes.
inline constexpr int leftControl = 37;
inline constexpr int rightControl = 105;
inline constexpr int leftAlt = 64;
inline constexpr int rightAlt = 108;
inline constexpr int leftSuper = 133;
inline constexpr int leftShift = 50;
inline constexpr int capsLock = 66;
inline constexpr int numLock = 77;
inline constexpr int f5 = 71;
inline constexpr int letterA = 38;
inline constexpr int letterB = 56;

inline constexpr quint64 command = 0x100000;
inline constexpr quint64 shift = 0x20000;
inline constexpr quint64 function = 0x800000;

/// The hold key with whatever is held besides.
inline TappedKey fnAnyhow() {
    TappedKey key{KeyCodes::function, {}};
    for (quint64 set = 0; set < 16; ++set)
        key.modifierFlags.push_back((set & 1 ? command : 0) | (set & 2 ? shift : 0) |
                                    (set & 4 ? 0x40000 : 0) | (set & 8 ? 0x80000 : 0));
    return key;
}

class X11EventTapTest : public testing::Test {
protected:
    X11EventTapTest() {
        window.focus();
        handled.answer = [](const KeyEvent&) { return TapAnswer::swallow; };
    }

    void start(std::vector<TappedKey> keys) {
        tap.setTappedKeys(std::move(keys));
        ASSERT_TRUE(tap.start(handled.handler(),
                              {.onLost = [this] { isLost = true; }, .onResumed = [this] { ++resumes; }}));
        awaitGrabs();
    }

    /// The tap has done what it was told when its grabs are published.
    void awaitGrabs(int key = 0) {
        const Deadline deadline(std::chrono::seconds(5));
        const auto isThere = [&] {
            if (key == 0)
                return state->isWatched == 1 && state->tapResource != 0;
            return (state->grabbed[static_cast<unsigned>(key) / 32] >> (key % 32) & 1) != 0;
        };
        while (!isThere() && !deadline.hasPassed())
            std::this_thread::yield();
        ASSERT_TRUE(isThere());
        window.connection().sync(deadline);
    }

    /// It has come so far for so many times, the start included.
    void awaitResumes(int count) {
        const Deadline deadline(std::chrono::seconds(5));
        while (resumes < count && !deadline.hasPassed())
            std::this_thread::yield();
        ASSERT_GE(resumes, count);
    }

    KeySet down() { return keysDown(user.connection(), Deadline(std::chrono::seconds(5))).value(); }

    PrivateServer server;
    SharedKeyState state;
    Handled handled;
    std::atomic<bool> isLost = false;
    std::atomic<int> resumes = 0;
    X11EventTap tap{state, {}};
    PhysicalKeyboard user;
    TestWindow window;
};

} // namespace velorin
