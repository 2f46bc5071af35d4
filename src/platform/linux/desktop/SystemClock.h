/// The machine's own time. Main thread; timers need Qt's event loop.
#pragma once

#include "platform/Clock.h"

namespace velorin {

class SystemClock final : public Clock {
public:
    [[nodiscard]] QDateTime now() const override;
    [[nodiscard]] Subscription after(std::chrono::milliseconds delay, std::function<void()> action) override;
};

} // namespace velorin
