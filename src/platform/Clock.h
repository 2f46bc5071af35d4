/// Time, as a port: nobody waits for ten minutes in a unit test.
#pragma once

#include "platform/Subscription.h"

#include <QDateTime>

#include <chrono>
#include <functional>

namespace velorin {

class Clock {
public:
    virtual ~Clock() = default;

    [[nodiscard]] virtual QDateTime now() const = 0;

    /// Calls `action` once on the main thread, `delay` from now, unless the handle is destroyed before.
    /// The action may destroy its own handle.
    [[nodiscard]] virtual Subscription after(std::chrono::milliseconds delay,
                                             std::function<void()> action) = 0;
};

} // namespace velorin
