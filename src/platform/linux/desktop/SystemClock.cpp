#include "platform/linux/desktop/SystemClock.h"

#include <QTimer>

#include <memory>

namespace velorin {

QDateTime SystemClock::now() const { return QDateTime::currentDateTime(); }

Subscription SystemClock::after(std::chrono::milliseconds delay, std::function<void()> action) {
    // The action is called for as long as the timer lives, and may itself be what ends it. A wait that was
    // given up wakes nobody.
    auto timer = std::make_shared<QTimer>();
    timer->setSingleShot(true);
    timer->setTimerType(delay < std::chrono::seconds(2) ? Qt::PreciseTimer : Qt::CoarseTimer);
    timer->callOnTimeout(timer.get(), std::move(action));
    timer->start(delay);
    return Subscription([timer]() mutable { timer.reset(); });
}

} // namespace velorin
