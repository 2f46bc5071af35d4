/// Reads what somebody else offers on a selection, one form or all of them, byte for byte. Lives on the
/// clipboard's thread; requests to us are served while it waits.
#pragma once

#include "platform/Pasteboard.h"
#include "platform/linux/x11/XEventLoop.h"

namespace velorin {

class SelectionReader final {
public:
    /// More than this is not taken into memory.
    static constexpr std::size_t largestContents = 64UL * 1024 * 1024;
    /// No program offers more forms than a few dozen; who does is not listened to.
    static constexpr std::size_t mostForms = 1024;

    /// Gives up as soon as `isStale` says that what it reads is no longer what there is.
    SelectionReader(
        XEventLoop& loop, xcb_atom_t selection, Deadline deadline,
        std::function<bool()> isStale = [] { return false; });
    ~SelectionReader();
    SelectionReader(const SelectionReader&) = delete;
    SelectionReader& operator=(const SelectionReader&) = delete;

    /// All forms but those that are no content: questions about the selection, orders to its owner, numbers
    /// of resources in the server, images that a toolkit hands to itself. A form that the owner refuses is
    /// left out. Nothing when the deadline passed or a limit was reached.
    [[nodiscard]] std::optional<PasteboardContents> readAll();

    /// The first of these forms that the owner gives.
    [[nodiscard]] std::optional<PasteboardEntry> readFirst(const std::vector<QByteArray>& types);

private:
    enum class Outcome { given, refused, failed };

    [[nodiscard]] bool await(const std::function<bool()>& isDone);
    void handle(const xcb_generic_event_t& event);
    /// `most` is what all that is read so far and this may have, in bytes.
    [[nodiscard]] Outcome convert(xcb_atom_t target, PasteboardEntry& entry,
                                  std::size_t most = largestContents);
    [[nodiscard]] XcbPtr<xcb_get_property_reply_t> takeProperty(xcb_atom_t property, std::size_t most);
    [[nodiscard]] Outcome receivePieces(xcb_atom_t property, PasteboardEntry& entry, std::size_t most);
    [[nodiscard]] bool append(const xcb_get_property_reply_t& piece, PasteboardEntry& entry,
                              std::size_t most);
    [[nodiscard]] std::vector<xcb_atom_t> targetsIn(const PasteboardEntry& list) const;

    XEventLoop& loop_;
    xcb_connection_t* connection_;
    xcb_atom_t selection_;
    Deadline deadline_;
    std::function<bool()> isStale_;
    /// A window for this one reading: what comes late for an earlier one cannot be taken for ours.
    xcb_window_t window_;
    xcb_timestamp_t time_ = XCB_CURRENT_TIME;
    std::size_t total_ = 0;
    std::optional<xcb_selection_notify_event_t> notify_;
    int newPieces_ = 0;
    bool isOwnerBusy_ = false; ///< It has been asked for something that it may still write.
    Subscription listening_;
};

} // namespace velorin
