/// Hands the events of one connection to those who listen, and waits with a deadline for what they report.
///
///     XEventLoop loop(connection);
///     const auto listening = loop.listen([&](const xcb_generic_event_t& event) { … });
///     loop.waitFor([&] { return hasAnswer; }, Deadline(300ms));    // others go on being served meanwhile
///
/// Listeners may be called within any operation that waits. One thread only.
#pragma once

#include "platform/Subscription.h"
#include "platform/linux/x11/XConnection.h"

#include <list>
#include <optional>
#include <vector>

namespace velorin {

class XEventLoop final {
public:
    using Listener = std::function<void(const xcb_generic_event_t&)>;

    explicit XEventLoop(XConnection& connection);
    ~XEventLoop();
    XEventLoop(const XEventLoop&) = delete;
    XEventLoop& operator=(const XEventLoop&) = delete;

    [[nodiscard]] XConnection& connection() const { return connection_; }

    [[nodiscard]] Subscription listen(Listener listener);

    /// Handles all events that have arrived by now, however many more are on their way.
    void drain();

    /// Handles events until `isDone`, asked after each round. False when the deadline passes or the server
    /// went away.
    bool waitFor(const std::function<bool()>& isDone, Deadline deadline);

    /// Waits until all that happened in the server before this call has been handled.
    bool catchUp(Deadline deadline);

    /// The server's own time, after catching up; nothing when it does not answer. An operation that carries
    /// this time loses against whatever happens after it.
    [[nodiscard]] std::optional<xcb_timestamp_t> serverTime(Deadline deadline);

    /// An unmapped window of ours that lives as long as the loop, for properties and ownership.
    [[nodiscard]] xcb_window_t window() const { return window_; }
    [[nodiscard]] xcb_window_t makeWindow() const;
    /// Destroys the window, but not before somebody who was asked to write to it has answered: many a program
    /// ends when a window has gone that it writes to.
    void retire(xcb_window_t window);

private:
    static constexpr std::size_t mostRetired = 8;
    /// After so many events one looks whether they were enough.
    static constexpr int mostAtATime = 64;

    void handle(const xcb_generic_event_t& event);
    /// False when there are no more.
    bool handleSome();
    void destroyIfRetired(xcb_window_t window);

    XConnection& connection_;
    std::list<Listener> listeners_;
    std::vector<xcb_window_t> retired_; ///< The earliest first.
    xcb_window_t window_;
    std::optional<xcb_timestamp_t> seenTime_;
};

/// What kind of event it is, whoever sent it.
[[nodiscard]] inline int typeOf(const xcb_generic_event_t& event) { return event.response_type & 0x7f; }

template <typename Event>
[[nodiscard]] const Event& eventAs(const xcb_generic_event_t& event) {
    return reinterpret_cast<const Event&>(event);
}

} // namespace velorin
