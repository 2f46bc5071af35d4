// For ThreadSanitizer. Nothing here runs an event loop, which Qt comes without the instrumentation for: the
// edges stay posted, and go with the backend.
#include "shortcuts/ShortcutBackend.h"
#include "tests/support/FakeClock.h"
#include "tests/support/FakeEventTap.h"

#include <gmock/gmock.h>

#include <atomic>
#include <thread>

namespace velorin {
namespace {

constexpr int keystrokes = 3000;

ShortcutConfiguration holdKey(quint16 keyCode) {
    return {.hold = {.keyCode = keyCode, .kind = ShortcutBindingKind::key}};
}

TEST(ShortcutBackendThreads, ProcessesKeysWhileTheMainThreadChangesEverything) {
    FakeEventTap tap;
    FakeClock clock;
    ShortcutBackend backend(tap, clock);
    ASSERT_TRUE(backend.ensureTap());
    std::atomic<bool> isTyping = true;
    std::atomic<int> swallowed = 0;
    std::thread typist([&, handler = tap.handler] {
        for (int i = 0; i < keystrokes; ++i) {
            const auto keyCode = static_cast<quint16>(96 + i % 3);
            for (const auto type : {KeyEvent::keyDown, KeyEvent::keyUp})
                swallowed += handler({.type = type, .keyCode = keyCode}) == TapAnswer::swallow ? 1 : 0;
        }
        isTyping = false;
    });
    int changes = 0;
    while (isTyping || changes < 10) {
        backend.setConfiguration(holdKey(static_cast<quint16>(96 + changes % 3)));
        backend.setCaptureMode(changes % 5 == 0);
        EXPECT_EQ(backend.configuration().hold.keyCode, 96 + changes % 3);
        ++changes;
    }
    typist.join();
    backend.setCaptureMode(false);
    // Nothing stuck: the last configuration works as if nothing had happened.
    const auto keyCode = backend.configuration().hold.keyCode;
    EXPECT_EQ(tap.handler({.type = KeyEvent::keyDown, .keyCode = keyCode}), TapAnswer::swallow);
    EXPECT_EQ(tap.handler({.type = KeyEvent::keyUp, .keyCode = keyCode}), TapAnswer::swallow);
    EXPECT_LE(swallowed, 2 * keystrokes);
}

} // namespace
} // namespace velorin
