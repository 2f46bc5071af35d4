/// A moment by which an answer must be there.
#pragma once

#include <algorithm>
#include <chrono>

namespace velorin {

class Deadline final {
public:
    using Clock = std::chrono::steady_clock;

    explicit Deadline(Clock::duration fromNow) : time_(Clock::now() + fromNow) {}

    [[nodiscard]] bool hasPassed() const { return Clock::now() >= time_; }
    [[nodiscard]] Clock::time_point time() const { return time_; }

    /// For poll(): what is left in whole milliseconds, rounded up, 0 when it has passed.
    [[nodiscard]] int pollTimeout() const {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(time_ - Clock::now());
        return static_cast<int>(std::max<std::chrono::milliseconds::rep>(left.count(), 0));
    }

private:
    Clock::time_point time_;
};

/// A healthy X server answers within a millisecond; one that does not is as good as gone.
inline constexpr std::chrono::milliseconds serverDeadline{250};

} // namespace velorin
