#include "platform/linux/desktop/SystemClock.h"

#include <QTimer>

#include <memory>

namespace velorin {

QDateTime SystemClock::now() const { return QDateTime::currentDateTime(); }

Subscription SystemClock::after(std::chrono::milliseconds delay, std::function<void()> action) {
    // The action is called for as long as the context lives, and may itself be what ends it.
    auto context = std::make_shared<QObject>();
    QTimer::singleShot(delay, context.get(), std::move(action));
    return Subscription([context]() mutable { context.reset(); });
}

} // namespace velorin
