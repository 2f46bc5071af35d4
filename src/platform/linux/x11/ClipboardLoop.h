/// The clipboard as the clipboard's own thread sees it: who owns what, what we offer, and what we read from
/// others. All operations belong on one thread; X11Pasteboard brings them there.
#pragma once

#include "platform/linux/x11/ClientProcesses.h"
#include "platform/linux/x11/SelectionOffer.h"

#include <array>

namespace velorin {

class ClipboardLoop final {
public:
    using Fetched = std::function<void(PasteboardSelection, const PasteboardFetch&)>;
    /// How long the clipboard manager may take to copy what we leave behind.
    static constexpr std::chrono::milliseconds handOverDeadline{1000};

    ClipboardLoop(XConnection& connection, Fetched fetched);

    /// False when the server cannot tell us of changes of owner.
    [[nodiscard]] bool isUsable() const { return xfixesEvent_ != 0; }
    /// Serves whoever has asked for something.
    void serve() {
        loop_.drain();
        loop_.connection().flush();
    }

    [[nodiscard]] std::optional<PasteboardContents> save(PasteboardSelection selection, Deadline deadline);
    [[nodiscard]] std::optional<QString> read(PasteboardSelection selection, Deadline deadline);
    [[nodiscard]] std::optional<quint64> write(PasteboardSelection selection, const QString& text);
    bool copy(PasteboardSelection selection, const QString& text);
    bool restore(PasteboardSelection selection, const PasteboardContents& contents, quint64 expected);
    [[nodiscard]] quint64 changeCount(PasteboardSelection selection);
    void stirReaders(PasteboardSelection selection) { stateOf(selection).offer->stirRequestors(); }

    /// What we still own goes to the clipboard manager, if there is one.
    void handOver();

private:
    struct State {
        xcb_atom_t atom = XCB_ATOM_NONE;
        std::unique_ptr<SelectionOffer> offer;
        quint64 changes = 0;
        /// The change at which we became owner last.
        quint64 ours = 0;
    };

    [[nodiscard]] State& stateOf(PasteboardSelection selection);
    void handle(const xcb_generic_event_t& event);
    void fetched(PasteboardSelection selection, xcb_window_t requestor);
    [[nodiscard]] xcb_window_t ownerOf(xcb_atom_t selection) const;

    XEventLoop loop_;
    ClientProcesses processes_;
    Fetched fetched_;
    int xfixesEvent_ = 0;
    std::array<State, 2> states_;
    Subscription listening_;
};

} // namespace velorin
