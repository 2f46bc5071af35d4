#include "platform/linux/x11/X11Session.h"

#include "platform/linux/x11/TapConnections.h"

#include <QByteArray>

#include <xcb/xtest.h>

namespace velorin {

bool isWaylandSession() {
    return qgetenv("XDG_SESSION_TYPE") == "wayland" || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

bool X11Session::letsUsWatchAndPostKeys() {
    if (isWaylandSession())
        return false;
    if (!connection_ || connection_->isBroken()) {
        connection_ = XConnection::open();
        if (connection_ && (!hasInput22(*connection_) || !connection_->extension(xcb_test_id)))
            connection_.reset();
    }
    if (connection_)
        connection_->dropEvents();
    return connection_ && connection_->sync(Deadline(serverDeadline));
}

} // namespace velorin
