/// Time that passes when a test says so.
#pragma once

#include "platform/Clock.h"

#include <map>
#include <memory>

namespace velorin {

class FakeClock final : public Clock {
public:
    QDateTime time = QDateTime::fromMSecsSinceEpoch(1'700'000'000'000).toUTC();

    [[nodiscard]] QDateTime now() const override { return time; }

    [[nodiscard]] Subscription after(std::chrono::milliseconds delay, std::function<void()> action) override {
        const auto key = std::pair(time.addMSecs(delay.count()), nextId_++);
        timers_->emplace(key, std::move(action));
        return Subscription([timers = std::weak_ptr(timers_), key] {
            if (const auto alive = timers.lock())
                alive->erase(key);
        });
    }

    /// Lets the time pass; what falls due runs in order, at its own time.
    void advance(std::chrono::milliseconds duration) {
        const auto end = time.addMSecs(duration.count());
        while (!timers_->empty() && timers_->begin()->first.first <= end) {
            auto timer = timers_->extract(timers_->begin());
            time = timer.key().first;
            timer.mapped()();
        }
        time = end;
    }

    [[nodiscard]] std::size_t waiting() const { return timers_->size(); }

private:
    std::shared_ptr<std::map<std::pair<QDateTime, int>, std::function<void()>>> timers_ =
        std::make_shared<std::map<std::pair<QDateTime, int>, std::function<void()>>>();
    int nextId_ = 0;
};

} // namespace velorin
