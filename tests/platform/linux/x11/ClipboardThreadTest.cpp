// The clipboard's thread under ThreadSanitizer: callers of several threads, an owner and a reader at once.
#include "platform/linux/x11/X11Pasteboard.h"

#include "tests/platform/linux/x11/support/PrivateServer.h"
#include "tests/platform/linux/x11/support/TestOwner.h"

#include <gmock/gmock.h>

using namespace std::chrono_literals;

namespace velorin {
namespace {

TEST(ClipboardThread, ServesCallersOfSeveralThreads) {
    PrivateServer server;
    X11Pasteboard pasteboard;
    X11Pasteboard stranger;
    const PasteboardContents users{{"UTF8_STRING", "UTF8_STRING", 8, QByteArray(500'000, 'x')}};
    const TestOwner owner("PRIMARY", users);
    const auto changes = pasteboard.changeCount(PasteboardSelection::primary);
    std::thread selecting([&] {
        for (int i = 0; i < 20; ++i) {
            EXPECT_EQ(pasteboard.save(PasteboardSelection::primary, 5s), users);
            EXPECT_EQ(pasteboard.changeCount(PasteboardSelection::primary), changes);
        }
    });
    for (int i = 0; i < 20; ++i) {
        const auto text = QString::number(i).repeated(100'000);
        const auto count = pasteboard.write(PasteboardSelection::clipboard, text);
        ASSERT_TRUE(count);
        EXPECT_EQ(stranger.read(PasteboardSelection::clipboard, 5s), text);
        EXPECT_TRUE(pasteboard.awaitFetch(PasteboardSelection::clipboard, 0, 5s));
        EXPECT_TRUE(pasteboard.restore(PasteboardSelection::clipboard, users, *count));
    }
    selecting.join();
}

} // namespace
} // namespace velorin
