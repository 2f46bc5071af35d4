/// Whether somebody is at this session: not while its screen is locked, while another user has the machine,
/// or while that sleeps. Main thread; asked and told without waiting.
#pragma once

#include "platform/Subscription.h"

#include <functional>

namespace velorin {

class SessionWatch {
public:
    virtual ~SessionWatch() = default;

    /// As far as the desktop tells. False where nobody tells.
    [[nodiscard]] virtual bool isAway() const = 0;
    /// Called when that changes. Before the machine sleeps there is a moment for what must not wait.
    [[nodiscard]] virtual Subscription onChange(std::function<void()> action) = 0;
};

} // namespace velorin
