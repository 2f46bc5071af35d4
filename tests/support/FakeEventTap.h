/// Records what it was asked and answers what the test set. A test speaks through `handler` and `listener`.
#pragma once

#include "platform/EventTap.h"

#include <optional>

namespace velorin {

class FakeEventTap final : public EventTap {
public:
    std::optional<EventTapError> error; ///< What a start answers; none lets it succeed.
    int starts = 0;
    int stops = 0;
    Handler handler; ///< Of the tap that runs; empty when none does.
    TapListener listener;
    std::vector<std::vector<TappedKey>> tappedKeys; ///< One entry a call.

    [[nodiscard]] tl::expected<void, EventTapError> start(Handler newHandler,
                                                          TapListener newListener) override {
        ++starts;
        if (error)
            return tl::unexpected(*error);
        handler = std::move(newHandler);
        listener = std::move(newListener);
        return {};
    }
    void stop() override {
        ++stops;
        handler = nullptr;
    }
    void setTappedKeys(std::vector<TappedKey> keys) override { tappedKeys.push_back(std::move(keys)); }
};

} // namespace velorin
