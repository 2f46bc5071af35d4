/// A connection to the X server, and the few things that every user of one needs: replies with a deadline,
/// atoms, the root window. For one thread at a time.
///
///     auto connection = XConnection::open();
///     if (!connection) …                                   // no display, or none that lets us in
///     auto reply = connection->reply<xcb_get_property_reply_t>(xcb_get_property(…), deadline);
///     if (!reply) …                                        // an error, or no answer in time
#pragma once

#include "platform/linux/x11/Deadline.h"

#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>
#include <xcb/xcb.h>

namespace velorin {

struct FreeDeleter {
    void operator()(void* pointer) const { std::free(pointer); } // xcb allocates with malloc
};
template <typename T>
using XcbPtr = std::unique_ptr<T, FreeDeleter>;

class XConnection final {
public:
    /// Connects to the display of the environment; null when that fails. From any thread.
    [[nodiscard]] static std::unique_ptr<XConnection> open();

    [[nodiscard]] xcb_connection_t* get() const { return connection_.get(); }
    [[nodiscard]] int fileDescriptor() const { return xcb_get_file_descriptor(get()); }
    /// True for good once the server went away.
    [[nodiscard]] bool isBroken() const { return xcb_connection_has_error(get()) != 0; }
    [[nodiscard]] const xcb_setup_t& setup() const { return *xcb_get_setup(get()); }
    [[nodiscard]] xcb_window_t root() const { return root_; }
    [[nodiscard]] xcb_visualid_t rootVisual() const { return rootVisual_; }
    void flush() const { xcb_flush(get()); }

    /// The numbers of an extension; null when the server lacks it or does not answer.
    [[nodiscard]] const xcb_query_extension_reply_t*
    extension(xcb_extension_t& id, std::chrono::milliseconds patience = serverDeadline) const;

    /// Interned once and remembered; XCB_ATOM_NONE when the server does not answer.
    [[nodiscard]] xcb_atom_t atom(std::string_view name);
    /// Empty for an atom that is none.
    [[nodiscard]] std::string atomName(xcb_atom_t atom, Deadline deadline) const;
    [[nodiscard]] std::vector<std::string> atomNames(const std::vector<xcb_atom_t>& atoms,
                                                     Deadline deadline) const;

    template <typename Reply, typename Cookie>
    [[nodiscard]] XcbPtr<Reply> reply(Cookie cookie, Deadline deadline) const {
        return XcbPtr<Reply>(static_cast<Reply*>(awaitReply(cookie.sequence, deadline)));
    }

    /// What has come of it by now: nothing while it is still to come, null for an error.
    template <typename Reply, typename Cookie>
    [[nodiscard]] std::optional<XcbPtr<Reply>> replyByNow(Cookie cookie) const {
        void* answer = nullptr;
        if (!hasAnswer(cookie.sequence, answer))
            return std::nullopt;
        return XcbPtr<Reply>(static_cast<Reply*>(answer));
    }

    /// Waits until the server has done all that was asked before. False when it does not answer.
    bool sync(Deadline deadline) const;

    /// Forgets the events that have come in. Every client is told of new keyboard maps; where nobody takes
    /// the events, they would pile up for as long as the program runs.
    void dropEvents() const;

    /// Which client made a resource: the part of the id that all resources of a client share.
    [[nodiscard]] std::uint32_t clientOf(xcb_window_t resource) const {
        return resource & ~setup().resource_id_mask;
    }

private:
    struct Disconnect {
        void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
    };

    XConnection(xcb_connection_t* connection, const xcb_screen_t& screen)
        : connection_(connection), root_(screen.root), rootVisual_(screen.root_visual) {}
    [[nodiscard]] void* awaitReply(unsigned sequence, Deadline deadline) const;
    [[nodiscard]] bool hasAnswer(unsigned sequence, void*& answer) const;

    std::unique_ptr<xcb_connection_t, Disconnect> connection_;
    xcb_window_t root_;
    xcb_visualid_t rootVisual_;
    std::unordered_map<std::string, xcb_atom_t> atoms_;
};

} // namespace velorin
