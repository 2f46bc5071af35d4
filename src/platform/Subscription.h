/// A subscription whose destruction ends it.
///
///     Subscription watching = workspace.onSomething([this] { … });   // member: ends with its owner
#pragma once

#include <functional>
#include <utility>

namespace velorin {

class [[nodiscard]] Subscription final {
public:
    Subscription() = default;
    /// `end` is called once, on the thread that destroys or replaces the subscription.
    explicit Subscription(std::function<void()> end) : end_(std::move(end)) {}
    Subscription(Subscription&& other) noexcept : end_(std::exchange(other.end_, nullptr)) {}
    Subscription& operator=(Subscription&& other) noexcept {
        std::swap(end_, other.end_);
        return *this;
    }
    Subscription(const Subscription&) = delete;
    Subscription& operator=(const Subscription&) = delete;
    ~Subscription() {
        if (end_)
            end_();
    }

private:
    std::function<void()> end_;
};

} // namespace velorin
