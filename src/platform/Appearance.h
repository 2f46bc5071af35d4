/// How the user wants windows to look. Main thread.
#pragma once

#include "platform/Subscription.h"

#include <functional>
#include <optional>

namespace velorin {

class Appearance {
public:
    virtual ~Appearance() = default;

    /// Nothing when the desktop has no opinion; the colours of its windows tell then.
    [[nodiscard]] virtual std::optional<bool> prefersDark() const = 0;

    /// Whether things should stand still that need not move.
    [[nodiscard]] virtual bool reducesMotion() const = 0;

    virtual Subscription onChange(std::function<void()> action) = 0;
};

} // namespace velorin
