#include "platform/linux/x11/X11SelectionOwners.h"

#include <xcb/xfixes.h>

namespace velorin {

X11SelectionOwners::X11SelectionOwners(const std::vector<std::string>& selections)
    : connection_(XConnection::open()) {
    if (!connection_)
        return;
    const auto* xfixes = connection_->extension(xcb_xfixes_id);
    if (xfixes == nullptr)
        return;
    firstEvent_ = xfixes->first_event;
    // The server answers no request of the extension before it was asked for its version.
    const auto version = connection_->reply<xcb_xfixes_query_version_reply_t>(
        xcb_xfixes_query_version(connection_->get(), 5, 0), Deadline(serverDeadline));
    if (!version)
        return;
    for (const auto& selection : selections)
        watch(selection);
    notifier_ = std::make_unique<QSocketNotifier>(connection_->fileDescriptor(), QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] { drain(); });
}

void X11SelectionOwners::watch(const std::string& selection) {
    const auto atom = connection_->atom(selection);
    xcb_xfixes_select_selection_input(connection_->get(), connection_->root(), atom,
                                      XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    const auto owner = connection_->reply<xcb_get_selection_owner_reply_t>(
        xcb_get_selection_owner(connection_->get(), atom), Deadline(serverDeadline));
    atoms_[selection] = atom;
    isOwned_[atom] = owner && owner->owner != XCB_WINDOW_NONE;
}

bool X11SelectionOwners::hasOwner(const std::string& selection) const {
    const auto atom = atoms_.find(selection);
    return atom != atoms_.end() && isOwned_.at(atom->second);
}

void X11SelectionOwners::drain() {
    bool hasChanged = false;
    while (const auto event = XcbPtr<xcb_generic_event_t>(xcb_poll_for_event(connection_->get()))) {
        if ((event->response_type & 0x7f) != firstEvent_ + XCB_XFIXES_SELECTION_NOTIFY)
            continue;
        const auto& change = reinterpret_cast<const xcb_xfixes_selection_notify_event_t&>(*event);
        isOwned_[change.selection] = change.owner != XCB_WINDOW_NONE;
        hasChanged = true;
    }
    if (connection_->isBroken())
        notifier_->setEnabled(false); // else it would report the closed socket for ever
    if (hasChanged)
        listeners_.tell();
}

} // namespace velorin
