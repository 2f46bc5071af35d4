/// Whether this session lets us watch and post keys.
#pragma once

#include "platform/linux/x11/XConnection.h"

namespace velorin {

/// A Wayland session has an X server beside it, which would say yes to everything while nothing worked over
/// the windows that are not its own.
[[nodiscard]] bool isWaylandSession();

/// Asked anew each time. Main thread.
class X11Session final {
public:
    /// X11, with a server that answers and has XInput 2.2 and XTEST.
    [[nodiscard]] bool letsUsWatchAndPostKeys();

private:
    std::unique_ptr<XConnection> connection_;
};

} // namespace velorin
