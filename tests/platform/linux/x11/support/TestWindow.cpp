#include "tests/platform/linux/x11/support/TestWindow.h"

#include <algorithm>
#include <poll.h>
#include <stdexcept>
#include <thread>

namespace velorin {

namespace {
constexpr auto patience = std::chrono::seconds(5);
}

TestWindow::TestWindow(const char* name, const char* windowClass)
    : connection_(XConnection::open()), window_(0) {
    if (!connection_)
        throw std::runtime_error("no X server");
    auto* c = connection_->get();
    window_ = xcb_generate_id(c);
    const std::uint32_t events = XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE |
                                 XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_STRUCTURE_NOTIFY |
                                 XCB_EVENT_MASK_FOCUS_CHANGE | XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(c, XCB_COPY_FROM_PARENT, window_, connection_->root(), 0, 0, 100, 100, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
    setProperty("WM_CLASS", "STRING", std::string(name) + '\0' + windowClass + '\0');
    xcb_map_window(c, window_);
    waitFor([](const auto& event) { return (event.response_type & 0x7f) == XCB_MAP_NOTIFY; });
}

void TestWindow::setProperty(const char* name, const char* type, const std::string& value) {
    xcb_change_property(connection_->get(), XCB_PROP_MODE_REPLACE, window_, connection_->atom(name),
                        connection_->atom(type), 8, static_cast<std::uint32_t>(value.size()), value.data());
    connection_->sync(Deadline(patience));
}

void TestWindow::setNumber(const char* name, std::uint32_t value) {
    xcb_change_property(connection_->get(), XCB_PROP_MODE_REPLACE, window_, connection_->atom(name),
                        XCB_ATOM_CARDINAL, 32, 1, &value);
    connection_->sync(Deadline(patience));
}

void TestWindow::focus() {
    xcb_set_input_focus(connection_->get(), XCB_INPUT_FOCUS_PARENT, window_, XCB_CURRENT_TIME);
    connection_->sync(Deadline(patience));
}

std::vector<TestWindow::Key> TestWindow::keys(std::size_t atLeast) {
    std::vector<Key> keys;
    const Deadline deadline(patience);
    connection_->sync(deadline);
    do {
        while (const XcbPtr<xcb_generic_event_t> event{xcb_poll_for_event(connection_->get())}) {
            const int type = event->response_type & 0x7f;
            if (type != XCB_KEY_PRESS && type != XCB_KEY_RELEASE)
                continue;
            const auto& key = reinterpret_cast<const xcb_key_press_event_t&>(*event);
            keys.push_back({type == XCB_KEY_PRESS, key.detail, key.state, key.time});
        }
        if (keys.size() >= atLeast)
            break;
        pollfd waiting{connection_->fileDescriptor(), POLLIN, 0};
        poll(&waiting, 1, deadline.pollTimeout());
    } while (!deadline.hasPassed());
    return keys;
}

std::vector<TestWindow::Key> TestWindow::keysThrough(int key) {
    std::vector<Key> all;
    const Deadline deadline(patience);
    const auto isThere = [&] {
        return std::ranges::any_of(all, [&](const Key& seen) { return seen.key == key && !seen.isPress; });
    };
    while (!isThere() && !deadline.hasPassed()) {
        const auto more = keys();
        all.insert(all.end(), more.begin(), more.end());
        if (more.empty())
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return all;
}

bool TestWindow::waitFor(const std::function<bool(const xcb_generic_event_t&)>& predicate) {
    const Deadline deadline(patience);
    do {
        connection_->flush();
        while (const XcbPtr<xcb_generic_event_t> event{xcb_poll_for_event(connection_->get())})
            if (predicate(*event))
                return true;
        pollfd waiting{connection_->fileDescriptor(), POLLIN, 0};
        poll(&waiting, 1, deadline.pollTimeout());
    } while (!deadline.hasPassed());
    return false;
}

std::string toString(const std::vector<TestWindow::Key>& keys) {
    std::string text;
    for (const auto& key : keys) {
        text += (text.empty() ? "" : " ") + std::to_string(key.key) + (key.isPress ? "+" : "-");
        if (key.modifiers != 0)
            text += "/" + std::to_string(key.modifiers);
    }
    return text;
}

} // namespace velorin
