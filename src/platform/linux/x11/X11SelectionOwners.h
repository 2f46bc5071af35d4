/// Tells whether somebody owns a selection that stands for a service of the desktop: a compositor
/// ("_NET_WM_CM_S0"), a tray ("_NET_SYSTEM_TRAY_S0"). Main thread, with Qt's event loop; sleeps until the
/// server reports a change.
///
///     X11SelectionOwners owners({"_NET_WM_CM_S0"});
///     if (owners.hasOwner("_NET_WM_CM_S0")) …
#pragma once

#include "platform/Listeners.h"
#include "platform/linux/x11/XConnection.h"

#include <QSocketNotifier>

#include <map>

namespace velorin {

class X11SelectionOwners final {
public:
    explicit X11SelectionOwners(const std::vector<std::string>& selections);

    /// False also for a selection that is not watched and without a server.
    [[nodiscard]] bool hasOwner(const std::string& selection) const;

    /// Called after any of them got an owner or lost its own.
    Subscription onChange(std::function<void()> action) { return listeners_.add(std::move(action)); }

private:
    void watch(const std::string& selection);
    void drain();

    std::unique_ptr<XConnection> connection_;
    std::map<xcb_atom_t, bool> isOwned_;
    std::map<std::string, xcb_atom_t> atoms_;
    int firstEvent_ = 0;
    std::unique_ptr<QSocketNotifier> notifier_;
    Listeners listeners_;
};

} // namespace velorin
