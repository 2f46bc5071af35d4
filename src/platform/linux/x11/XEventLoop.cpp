#include "platform/linux/x11/XEventLoop.h"

#include <poll.h>

namespace velorin {

namespace {
constexpr char timeProperty[] = "_VELORIN_TIME";
}

XEventLoop::XEventLoop(XConnection& connection) : connection_(connection), window_(makeWindow()) {}

XEventLoop::~XEventLoop() {
    xcb_destroy_window(connection_.get(), window_);
    connection_.flush();
}

xcb_window_t XEventLoop::makeWindow() const {
    const auto window = xcb_generate_id(connection_.get());
    const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(connection_.get(), 0, window, connection_.root(), -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
    return window;
}

void XEventLoop::retire(xcb_window_t window) {
    retired_.push_back(window);
    if (retired_.size() > mostRetired)
        destroyIfRetired(retired_.front());
}

void XEventLoop::destroyIfRetired(xcb_window_t window) {
    if (std::erase(retired_, window) == 0)
        return;
    xcb_destroy_window(connection_.get(), window);
    xcb_flush(connection_.get());
}

Subscription XEventLoop::listen(Listener listener) {
    const auto entry = listeners_.insert(listeners_.end(), std::move(listener));
    return Subscription([this, entry] { listeners_.erase(entry); });
}

void XEventLoop::drain() {
    // Read once: a client that sends without end would keep us here.
    XcbPtr<xcb_generic_event_t> event{xcb_poll_for_event(connection_.get())};
    for (; event; event.reset(xcb_poll_for_queued_event(connection_.get())))
        handle(*event);
}

bool XEventLoop::handleSome() {
    for (int i = 0; i < mostAtATime; ++i) {
        const XcbPtr<xcb_generic_event_t> event{xcb_poll_for_event(connection_.get())};
        if (!event)
            return false;
        handle(*event);
    }
    return true;
}

void XEventLoop::handle(const xcb_generic_event_t& event) {
    if (typeOf(event) == XCB_PROPERTY_NOTIFY) {
        const auto& notify = eventAs<xcb_property_notify_event_t>(event);
        if (notify.window == window_ && notify.atom == connection_.atom(timeProperty))
            seenTime_ = notify.time;
    }
    if (typeOf(event) == XCB_SELECTION_NOTIFY)
        destroyIfRetired(eventAs<xcb_selection_notify_event_t>(event).requestor);
    for (const auto& listener : listeners_)
        listener(event);
}

bool XEventLoop::waitFor(const std::function<bool()>& isDone, Deadline deadline) {
    for (;;) {
        const bool isMoreThere = handleSome();
        if (isDone())
            return true;
        if (connection_.isBroken() || deadline.hasPassed())
            return false;
        connection_.flush();
        if (isMoreThere)
            continue;
        pollfd waiting{connection_.fileDescriptor(), POLLIN, 0};
        poll(&waiting, 1, deadline.pollTimeout());
    }
}

bool XEventLoop::catchUp(Deadline deadline) {
    const bool isAlive = connection_.sync(deadline);
    drain();
    return isAlive;
}

std::optional<xcb_timestamp_t> XEventLoop::serverTime(Deadline deadline) {
    seenTime_.reset();
    xcb_change_property(connection_.get(), XCB_PROP_MODE_APPEND, window_, connection_.atom(timeProperty),
                        XCB_ATOM_STRING, 8, 0, nullptr);
    waitFor([this] { return seenTime_.has_value(); }, deadline);
    return seenTime_;
}

} // namespace velorin
