/// Whether something on this desktop shows the icons of programs. Main thread; learns of hosts that come and
/// go.
#pragma once

#include "platform/Subscription.h"

#include <functional>

namespace velorin {

class TrayHosts {
public:
    virtual ~TrayHosts() = default;

    [[nodiscard]] virtual bool isAnyThere() const = 0;
    virtual Subscription onChange(std::function<void()> action) = 0;
};

} // namespace velorin
