#include "platform/linux/x11/WindowPing.h"

#include "platform/linux/x11/XEventLoop.h"

#include <QByteArray>
#include <QFile>

#include <algorithm>
#include <span>

namespace velorin {

namespace {

using namespace Qt::Literals::StringLiterals;

bool isStopped(qint64 process) {
    QFile file(u"/proc/%1/stat"_s.arg(process));
    if (process == 0 || !file.open(QIODevice::ReadOnly))
        return false;
    const auto line = file.read(512);
    const auto state = line.mid(line.lastIndexOf(')') + 2, 1); // the name before it may hold anything
    return state == "T" || state == "t";
}

bool takesPings(XConnection& connection, xcb_window_t window, Deadline deadline) {
    const auto protocols = connection.reply<xcb_get_property_reply_t>(
        xcb_get_property(connection.get(), false, window, connection.atom("WM_PROTOCOLS"), XCB_ATOM_ATOM, 0,
                         64),
        deadline);
    if (!protocols)
        return false;
    const std::span atoms(static_cast<const xcb_atom_t*>(xcb_get_property_value(protocols.get())),
                          static_cast<std::size_t>(xcb_get_property_value_length(protocols.get())) / 4);
    return std::ranges::find(atoms, connection.atom("_NET_WM_PING")) != atoms.end();
}

void listenToRoot(XConnection& connection, std::uint32_t events) {
    xcb_change_window_attributes(connection.get(), connection.root(), XCB_CW_EVENT_MASK, &events);
}

bool answersPing(XConnection& connection, xcb_window_t window, Deadline deadline) {
    XEventLoop loop(connection);
    const auto time = loop.serverTime(deadline);
    if (!time)
        return false;
    xcb_client_message_event_t ping{};
    ping.response_type = XCB_CLIENT_MESSAGE;
    ping.format = 32;
    ping.window = window;
    ping.type = connection.atom("WM_PROTOCOLS");
    ping.data.data32[0] = connection.atom("_NET_WM_PING");
    ping.data.data32[1] = *time;
    ping.data.data32[2] = window;
    bool isAnswered = false;
    const auto listening = loop.listen([&](const xcb_generic_event_t& event) {
        const auto& message = eventAs<xcb_client_message_event_t>(event);
        if (typeOf(event) == XCB_CLIENT_MESSAGE && message.window == connection.root() &&
            message.data.data32[0] == ping.data.data32[0] && message.data.data32[1] == *time)
            isAnswered = true;
    });
    xcb_send_event(connection.get(), false, window, XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char*>(&ping));
    return loop.waitFor([&] { return isAnswered; }, deadline);
}

} // namespace

bool hasReadItsEvents(XConnection& connection, const RunningApplication& application, Deadline deadline) {
    if (isStopped(application.processIdentifier))
        return false;
    const auto window = static_cast<xcb_window_t>(application.window);
    if (window == XCB_WINDOW_NONE || !takesPings(connection, window, deadline))
        return true;
    listenToRoot(connection, XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY); // the answer goes to the root
    const bool isAnswered = answersPing(connection, window, deadline);
    listenToRoot(connection, XCB_EVENT_MASK_NO_EVENT);
    return isAnswered;
}

} // namespace velorin
