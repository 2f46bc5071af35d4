/// What we offer on one selection, and the answers to those who ask for it: at once, or in pieces to those
/// who ask for more than fits into one. Lives on the clipboard's thread.
#pragma once

#include "platform/Pasteboard.h"
#include "platform/linux/x11/XEventLoop.h"

#include <map>
#include <set>

namespace velorin {

class SelectionOffer final {
public:
    using Fetched = std::function<void(xcb_window_t requestor)>;

    /// `fetched` is called for each requestor that was given content (not: the list of forms, or a mark), to
    /// its last byte, of the offer of which `countsFetches` was true.
    SelectionOffer(XEventLoop& loop, xcb_atom_t selection, Fetched fetched);

    /// Takes the selection, as of `time`, and offers this. False when somebody took it later than `time`.
    [[nodiscard]] bool take(PasteboardContents contents, xcb_timestamp_t time, bool countsFetches);
    /// Leaves the selection without an owner.
    void clear(xcb_timestamp_t time);
    /// The server tells of a new owner, us or somebody else; in the order in which they came. What it tells
    /// before it has told of us is older than our taking.
    void ownerChanged(xcb_window_t owner);

    /// Sends an event that means nothing to each of those who have asked for what is offered.
    void stirRequestors();

    [[nodiscard]] bool isOwner() const { return offer_ != nullptr; }
    [[nodiscard]] xcb_window_t window() const { return window_; }
    [[nodiscard]] const PasteboardContents& contents() const;

private:
    struct Offer {
        PasteboardContents contents;
        std::map<xcb_atom_t, const PasteboardEntry*> entries;
        std::set<xcb_window_t> requestors;
        xcb_timestamp_t since = XCB_CURRENT_TIME;
        std::chrono::steady_clock::time_point ownedSince = std::chrono::steady_clock::now();
        bool countsFetches = false;
        bool isConfirmed = false;
    };
    /// Content on its way in pieces; it keeps its offer, so that a change of owner does not cut it short.
    struct Transfer {
        std::shared_ptr<const Offer> offer;
        const PasteboardEntry* entry = nullptr;
        xcb_atom_t valueType = XCB_ATOM_NONE;
        std::size_t sent = 0;
        Deadline idle;
    };
    using TransferKey = std::pair<xcb_window_t, xcb_atom_t>;
    using Transfers = std::map<TransferKey, Transfer>;

    void handle(const xcb_generic_event_t& event);
    void answer(const xcb_selection_request_event_t& request);
    [[nodiscard]] bool convert(xcb_window_t requestor, xcb_atom_t target, xcb_atom_t property);
    [[nodiscard]] bool convertMultiple(xcb_window_t requestor, xcb_atom_t property);
    void sendEntry(xcb_window_t requestor, xcb_atom_t property, const PasteboardEntry& entry);
    void beginTransfer(xcb_window_t requestor, xcb_atom_t property, const PasteboardEntry& entry,
                       xcb_atom_t valueType);
    void sendPiece(const TransferKey& key);
    void forget(xcb_window_t requestor);
    void dropStalled();
    [[nodiscard]] Transfers::iterator longestIdle();
    void delivered(xcb_window_t requestor, const Offer& offer, const PasteboardEntry& entry);
    [[nodiscard]] std::vector<xcb_atom_t> targets();
    [[nodiscard]] xcb_atom_t atom(const QByteArray& name);

    XEventLoop& loop_;
    xcb_connection_t* connection_;
    xcb_atom_t selection_;
    Fetched fetched_;
    xcb_window_t window_;
    std::size_t pieceBytes_;
    std::shared_ptr<Offer> offer_;
    Transfers transfers_;
    Subscription listening_;
};

} // namespace velorin
