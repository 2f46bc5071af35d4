/// When something is tried again: after a short pause at first, then after longer ones. A value.
///
///     Retries retries;
///     retries.begin(Retries::endless);
///     while (!isDone) { …poll(…, retries.pollTimeout())…; if (retries.isDue()) { retries.next(); … } }
#pragma once

#include "platform/linux/x11/Deadline.h"

#include <limits>
#include <optional>

namespace velorin {

class Retries final {
public:
    static constexpr int endless = std::numeric_limits<int>::max();

    /// So many times from now on. Where it goes on already the pauses stay as they are: what happens often
    /// does not make it more frequent.
    void begin(int times) {
        if (!next_)
            pause_ = shortest;
        times_ = std::max(times_, times);
        if (!next_ && times_ > 0)
            next_ = Deadline(pause_);
    }
    void end() {
        times_ = 0;
        next_.reset();
    }
    [[nodiscard]] bool isDue() const { return next_ && next_->hasPassed(); }
    /// Until the next time; -1, for ever, when there is none.
    [[nodiscard]] int pollTimeout() const { return next_ ? next_->pollTimeout() : -1; }
    /// It is tried now, and waits longer the next time.
    void next() {
        if (times_ != endless)
            --times_;
        pause_ = std::min(pause_ * 2, longest);
        next_ = times_ > 0 ? std::optional(Deadline(pause_)) : std::nullopt;
    }

private:
    static constexpr std::chrono::milliseconds shortest{50};
    static constexpr std::chrono::milliseconds longest{500};

    int times_ = 0;
    std::chrono::milliseconds pause_ = shortest;
    std::optional<Deadline> next_;
};

} // namespace velorin
