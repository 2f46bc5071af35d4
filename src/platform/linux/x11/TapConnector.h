/// Gives the tap its connections, however long the server takes.
///
/// libxcb waits without end for a server that is stuck before its first answer, and the tap must still be
/// able to end: so each attempt is made on a thread of its own, which is left behind when nobody waits any
/// more.
#pragma once

#include "platform/linux/x11/TapConnections.h"
#include "platform/linux/x11/WakeUp.h"

#include <functional>

namespace velorin {

class TapConnector final {
public:
    /// What is to be done while it waits.
    struct Meanwhile {
        int fileDescriptor = -1;     ///< Whenever this is readable; -1 for nothing.
        std::function<bool()> serve; ///< False when there is nothing to look at any more.
    };

    /// Looks again whether it is still wanted when the wake-up is set, which it clears.
    TapConnector(const WakeUp& wakeUp, std::function<bool()> isWanted)
        : wakeUp_(wakeUp), isWanted_(std::move(isWanted)) {}

    /// Tries again, with growing pauses, as long as the server is late, and `refusals` times when nobody is
    /// there. Anything but `late` can be the reason for nothing.
    [[nodiscard]] tl::expected<std::unique_ptr<TapConnections>, TapRefusal> connect(int refusals,
                                                                                    Meanwhile meanwhile);

private:
    /// False when it is not wanted any more. -1: nothing to wait for but the time.
    [[nodiscard]] bool await(int fileDescriptor, int milliseconds, Meanwhile& meanwhile);

    const WakeUp& wakeUp_;
    std::function<bool()> isWanted_;
};

} // namespace velorin
