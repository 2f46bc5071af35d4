#include "platform/linux/x11/WindowPing.h"

#include "tests/platform/linux/x11/support/PrivateServer.h"
#include "tests/platform/linux/x11/support/TestWindow.h"

#include <gtest/gtest.h>

using namespace std::chrono_literals;

namespace velorin {
namespace {

int windowsOf(XConnection& connection) {
    const auto tree = connection.reply<xcb_query_tree_reply_t>(
        xcb_query_tree(connection.get(), connection.root()), Deadline(5s));
    return tree ? xcb_query_tree_children_length(tree.get()) : -1;
}

std::uint32_t eventsOfRoot(XConnection& connection) {
    const auto attributes = connection.reply<xcb_get_window_attributes_reply_t>(
        xcb_get_window_attributes(connection.get(), connection.root()), Deadline(5s));
    return attributes ? attributes->your_event_mask : ~0U;
}

TEST(WindowPing, LeavesNothingBehindInTheServer) {
    PrivateServer server;
    TestWindow target;
    auto& other = target.connection();
    const auto protocol = other.atom("_NET_WM_PING");
    xcb_change_property(other.get(), XCB_PROP_MODE_REPLACE, target.id(), other.atom("WM_PROTOCOLS"),
                        XCB_ATOM_ATOM, 32, 1, &protocol);
    ASSERT_TRUE(other.sync(Deadline(5s)));
    RunningApplication application;
    application.window = target.id();
    const auto connection = XConnection::open();
    const auto before = windowsOf(*connection);
    for (int i = 0; i < 3; ++i)
        EXPECT_FALSE(hasReadItsEvents(*connection, application, Deadline(50ms)));
    EXPECT_EQ(windowsOf(*connection), before);
    EXPECT_EQ(eventsOfRoot(*connection), 0U);
}

} // namespace
} // namespace velorin
