#include "platform/linux/x11/XConnection.h"

#include <csignal>
#include <mutex>
#include <poll.h>
#include <xcb/xcbext.h>

namespace velorin {

namespace {

/// A write to a server that went away must come back as an error, not end the process.
void ignoreBrokenPipes() {
    struct sigaction action {};
    if (sigaction(SIGPIPE, nullptr, &action) == 0 && action.sa_handler == SIG_DFL) {
        action.sa_handler = SIG_IGN;
        sigaction(SIGPIPE, &action, nullptr);
    }
}

const xcb_screen_t* screenOf(xcb_connection_t* connection, int number) {
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (; screens.rem > 1 && number > 0; --number)
        xcb_screen_next(&screens);
    return screens.rem > 0 ? screens.data : nullptr;
}

} // namespace

std::unique_ptr<XConnection> XConnection::open() {
    // Looking for the session's key to the server uses memory that all threads share.
    static std::mutex opening;
    const std::scoped_lock lock(opening);
    ignoreBrokenPipes();
    int screenNumber = 0;
    std::unique_ptr<xcb_connection_t, Disconnect> connection(xcb_connect(nullptr, &screenNumber));
    if (!connection || xcb_connection_has_error(connection.get()) != 0)
        return nullptr;
    const auto* screen = screenOf(connection.get(), screenNumber);
    if (!screen)
        return nullptr;
    return std::unique_ptr<XConnection>(
        new XConnection(connection.release(), *screen)); // private constructor
}

const xcb_query_extension_reply_t* XConnection::extension(xcb_extension_t& id,
                                                          std::chrono::milliseconds patience) const {
    // The question would be waited for without a deadline; behind a sync the answer is there already.
    xcb_prefetch_extension_data(get(), &id);
    if (!sync(Deadline(patience)))
        return nullptr;
    const auto* data = xcb_get_extension_data(get(), &id);
    return data && data->present ? data : nullptr;
}

xcb_atom_t XConnection::atom(std::string_view name) {
    const auto [entry, isNew] = atoms_.try_emplace(std::string(name), XCB_ATOM_NONE);
    if (isNew) {
        const auto length = static_cast<std::uint16_t>(name.size());
        const auto answer = reply<xcb_intern_atom_reply_t>(xcb_intern_atom(get(), false, length, name.data()),
                                                           Deadline(serverDeadline));
        if (!answer) {
            atoms_.erase(entry);
            return XCB_ATOM_NONE;
        }
        entry->second = answer->atom;
    }
    return entry->second;
}

std::string XConnection::atomName(xcb_atom_t atom, Deadline deadline) const {
    return atomNames({atom}, deadline).front();
}

std::vector<std::string> XConnection::atomNames(const std::vector<xcb_atom_t>& atoms,
                                                Deadline deadline) const {
    std::vector<xcb_get_atom_name_cookie_t> cookies;
    cookies.reserve(atoms.size());
    for (const auto atom : atoms)
        cookies.push_back(xcb_get_atom_name(get(), atom));
    std::vector<std::string> names;
    names.reserve(atoms.size());
    for (const auto cookie : cookies) {
        const auto answer = reply<xcb_get_atom_name_reply_t>(cookie, deadline);
        if (answer) {
            const auto length = static_cast<std::size_t>(xcb_get_atom_name_name_length(answer.get()));
            names.emplace_back(xcb_get_atom_name_name(answer.get()), length);
        } else {
            names.emplace_back();
        }
    }
    return names;
}

bool XConnection::sync(Deadline deadline) const {
    return reply<xcb_get_input_focus_reply_t>(xcb_get_input_focus(get()), deadline) != nullptr;
}

void XConnection::dropEvents() const {
    while (const XcbPtr<xcb_generic_event_t> event{xcb_poll_for_event(get())}) {
    }
}

bool XConnection::hasAnswer(unsigned sequence, void*& answer) const {
    xcb_generic_error_t* error = nullptr;
    const bool isThere = xcb_poll_for_reply(get(), sequence, &answer, &error) != 0;
    const XcbPtr<xcb_generic_error_t> owned(error);
    return isThere;
}

void* XConnection::awaitReply(unsigned sequence, Deadline deadline) const {
    flush();
    for (bool isLastLook = false;;) {
        void* answer = nullptr;
        if (hasAnswer(sequence, answer))
            return answer;
        pollfd waiting{fileDescriptor(), POLLIN, 0};
        if (isBroken() || isLastLook || poll(&waiting, 1, deadline.pollTimeout()) == 0) {
            xcb_discard_reply(get(), sequence);
            return nullptr;
        }
        // There may always be something to read that is not the answer.
        isLastLook = deadline.hasPassed();
    }
}

} // namespace velorin
