#include "platform/linux/x11/X11Windows.h"

#include "tests/platform/linux/x11/support/PrivateServer.h"
#include "tests/platform/linux/x11/support/TestWindow.h"

#include <functional>
#include <gtest/gtest.h>
#include <thread>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;
using namespace std::chrono_literals;

namespace velorin {
namespace {

/// A window manager tells of a window, and gives it the keyboard, in its own time.
bool eventually(const std::function<bool()>& isTrue) {
    const Deadline deadline(30s);
    while (!isTrue()) {
        if (deadline.hasPassed())
            return false;
        std::this_thread::yield();
    }
    return true;
}

bool isActive(X11Windows& windows, const TestWindow& window) {
    return eventually([&] {
        const auto front = windows.frontmostApplication();
        return front && front->window == window.id();
    });
}

TEST(X11Windows, TellsTheApplicationThatHasTheKeyboard) {
    PrivateServer server;
    X11Windows windows;
    EXPECT_EQ(windows.frontmostApplication(), std::nullopt);
    TestWindow editor("mousepad", "Mousepad");
    editor.focus();
    const auto front = windows.frontmostApplication();
    ASSERT_TRUE(front);
    EXPECT_EQ(front->processIdentifier, getpid());
    EXPECT_EQ(front->window, editor.id());
    EXPECT_EQ(front->bundleIdentifier, u"org.xfce.mousepad"_s);
    EXPECT_EQ(front->kin, u"com.apple.TextEdit"_s);
    EXPECT_TRUE(front->executablePath.endsWith(u"x11_test"_s));
}

TEST(X11Windows, TrustsTheServerMoreThanTheWindowAboutItsProcess) {
    PrivateServer server;
    X11Windows windows;
    TestWindow boxed("app", "App");
    boxed.setNumber("_NET_WM_PID", 2);
    boxed.focus();
    EXPECT_EQ(windows.frontmostApplication()->processIdentifier, getpid());
}

TEST(X11Windows, KnowsAnApplicationByThePublishedId) {
    PrivateServer server;
    X11Windows windows;
    TestWindow window("gedit", "Gedit");
    window.setProperty("_GTK_APPLICATION_ID", "UTF8_STRING", "org.gnome.TextEditor");
    window.focus();
    EXPECT_EQ(windows.frontmostApplication()->bundleIdentifier, u"org.gnome.TextEditor"_s);
}

TEST(X11Windows, BringsAWindowToTheFrontByTheWindowManager) {
    PrivateServer server;
    server.startWindowManager({"openbox"});
    X11Windows windows;
    TestWindow first("first", "First");
    ASSERT_TRUE(isActive(windows, first));
    const auto target = windows.frontmostApplication().value();
    TestWindow second("second", "Second");
    windows.activate(target);
    EXPECT_TRUE(isActive(windows, first));
}

TEST(X11Windows, FindsAWindowOfTheProcessWhereNoneIsGiven) {
    PrivateServer server;
    server.startWindowManager({"openbox"});
    X11Windows windows;
    TestWindow only("only", "Only");
    ASSERT_TRUE(isActive(windows, only));
    auto target = windows.frontmostApplication().value();
    target.window = 0;
    xcb_set_input_focus(only.connection().get(), XCB_INPUT_FOCUS_NONE, XCB_WINDOW_NONE, 0);
    only.connection().sync(Deadline(5s));
    windows.activate(target);
    EXPECT_TRUE(only.waitFor([](const auto& event) { return (event.response_type & 0x7f) == XCB_FOCUS_IN; }));
}

TEST(X11Windows, WaitsUntilTheApplicationIsInFront) {
    PrivateServer server;
    server.startWindowManager({"openbox"});
    X11Windows windows;
    TestWindow window("first", "First");
    ASSERT_TRUE(isActive(windows, window));
    auto target = windows.frontmostApplication().value();
    EXPECT_TRUE(eventually([&] { return windows.awaitFrontmost(target, Deadline(0ms)); }));
    xcb_unmap_window(window.connection().get(), window.id());
    window.connection().sync(Deadline(5s));
    ASSERT_TRUE(eventually([&] { return !windows.awaitFrontmost(target, Deadline(0ms)); }));
    EXPECT_FALSE(windows.awaitFrontmost(target, Deadline(50ms)));
    xcb_map_window(window.connection().get(), window.id());
    window.connection().sync(Deadline(5s));
    EXPECT_TRUE(windows.awaitFrontmost(target, Deadline(30s)));
}

TEST(X11Windows, GivesAStrangerInFrontAwayAfterTheDeadline) {
    PrivateServer server;
    X11Windows windows;
    TestWindow window;
    window.focus();
    auto target = windows.frontmostApplication().value();
    target.processIdentifier = 1;
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_FALSE(windows.awaitFrontmost(target, Deadline(50ms)));
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 500ms);
}

TEST(X11Windows, ReadsTheTitleOfTheWindow) {
    PrivateServer server;
    X11Windows windows;
    TestWindow window("firefox", "firefox-esr");
    window.focus();
    const auto browser = windows.frontmostApplication().value();
    EXPECT_EQ(windows.titleOf(browser), std::nullopt);
    window.setProperty("WM_NAME", "STRING", "old name");
    EXPECT_EQ(windows.titleOf(browser), u"old name"_s);
    window.setProperty("_NET_WM_NAME", "UTF8_STRING", "Inbox — Gmail");
    EXPECT_EQ(windows.titleOf(browser), u"Inbox — Gmail"_s);
}

TEST(X11Windows, NamesAndTitlesOfMegabytesAreShortLines) {
    PrivateServer server;
    X11Windows windows;
    TestWindow window("app", "App");
    std::string hostile;
    while (hostile.size() < 16'000'000)
        hostile += "\x1b]0;\x07\r\n\xff\xe2\x80\xae";
    std::string names("a\nb\0", 4);
    window.setProperty("WM_CLASS", "STRING", names + hostile);
    window.setProperty("_NET_WM_NAME", "UTF8_STRING", hostile);
    window.setProperty("_NET_WM_ICON", "CARDINAL", hostile);
    window.focus();
    const auto start = std::chrono::steady_clock::now();
    const auto front = windows.frontmostApplication();
    ASSERT_TRUE(front);
    const auto title = windows.titleOf(*front);
    EXPECT_LT(std::chrono::steady_clock::now() - start, 300ms);
    ASSERT_TRUE(front->bundleIdentifier && title);
    EXPECT_LE(front->bundleIdentifier->size(), 128);
    EXPECT_LE(title->size(), 1024);
    for (const auto& text : {*front->bundleIdentifier, *front->localizedName, *title})
        EXPECT_TRUE(std::ranges::all_of(text, [](QChar c) { return c.isPrint(); })) << qPrintable(text);
}

TEST(X11Windows, FindsTheTopmostOfTenThousandWindows) {
    PrivateServer server;
    X11Windows windows;
    TestWindow window("app", "App");
    std::vector<std::uint32_t> list(10'000, 1);
    list.back() = window.id();
    xcb_change_property(window.connection().get(), XCB_PROP_MODE_REPLACE, window.connection().root(),
                        window.connection().atom("_NET_CLIENT_LIST_STACKING"), XCB_ATOM_WINDOW, 32,
                        static_cast<std::uint32_t>(list.size()), list.data());
    window.setProperty("WM_NAME", "STRING", "the topmost");
    window.connection().sync(Deadline(5s));
    RunningApplication application;
    application.processIdentifier = getpid();
    EXPECT_EQ(windows.titleOf(application), u"the topmost"_s);
    application.processIdentifier = 1;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(windows.titleOf(application), std::nullopt);
    EXPECT_LT(std::chrono::steady_clock::now() - start, 500ms);
}

TEST(X11Windows, SeesNobodyWithoutAServer) {
    unsetenv("DISPLAY");
    X11Windows windows;
    EXPECT_EQ(windows.frontmostApplication(), std::nullopt);
    windows.activate(RunningApplication());
    EXPECT_FALSE(windows.awaitFrontmost(RunningApplication(), Deadline(1s)));
    EXPECT_EQ(windows.titleOf(RunningApplication()), std::nullopt);
}

} // namespace
} // namespace velorin
