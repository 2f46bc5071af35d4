/// Serves the event loop until something has come about, or too much time has passed.
///
///     ASSERT_TRUE(waitUntil([&] { return !failures.empty(); }));
#pragma once

#include <QDeadlineTimer>
#include <QEventLoop>
#include <QTimer>

#include <chrono>
#include <functional>

namespace velorin {

inline bool waitUntil(const std::function<bool()>& done,
                      std::chrono::milliseconds atMost = std::chrono::seconds(10)) {
    const QDeadlineTimer deadline(atMost);
    QEventLoop loop;
    // Not everything that is waited for comes as an event of this thread.
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &loop, &QEventLoop::quit);
    look.start(std::chrono::milliseconds(2));
    while (!done()) {
        if (deadline.hasExpired())
            return false;
        loop.exec();
    }
    return true;
}

} // namespace velorin
