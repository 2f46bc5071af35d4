/// Work that waits for others, off the main thread; its result comes back to it.
///
///     auto work = inBackground<QString>(pool, [] { … });
///     const auto text = co_await work;
///
/// In two statements: the compiler of the day ends what is captured twice when it stands within the wait. The
/// pool's end waits for what runs. Without a pool, the program's own is taken: for work that owns what it
/// reads and ends by itself.
///
///     auto work = inBackground<QString>(pool, clock, 250ms, [] { … });
///     const auto text = co_await work.answer;      // empty when there is none by then
///
/// Who waits no longer than that gets nothing; the work goes on to its own end.
#pragma once

#include "platform/Clock.h"

#include <QCoro/QCoroFuture>
#include <QFuture>
#include <QPromise>
#include <QThreadPool>

#include <atomic>
#include <memory>
#include <type_traits>

namespace velorin {

template <typename T, typename Work>
[[nodiscard]] QFuture<T> inBackground(QThreadPool& pool, Work work) {
    auto promise = std::make_shared<QPromise<T>>();
    promise->start();
    pool.start([promise, work = std::move(work)] {
        promise->addResult(work());
        promise->finish();
    });
    return promise->future();
}

/// What is waited for in the background, no longer than a while. Main thread.
template <typename T>
struct TimedWork {
    QFuture<T> answer;
    Subscription alarm;
};

template <typename T, typename Work>
[[nodiscard]] TimedWork<T> inBackground(QThreadPool& pool, Clock& clock, std::chrono::milliseconds longest,
                                        Work work) {
    struct Race {
        QPromise<T> promise;
        std::atomic<bool> isOver = false;

        void finish(T value) {
            if (isOver.exchange(true))
                return;
            promise.addResult(std::move(value));
            promise.finish();
        }
    };
    const auto race = std::make_shared<Race>();
    race->promise.start();
    TimedWork<T> timed{race->promise.future(), clock.after(longest, [race] { race->finish(T{}); })};
    pool.start([race, work = std::move(work)] { race->finish(work()); });
    return timed;
}

template <typename Work>
[[nodiscard]] QFuture<std::invoke_result_t<Work>> inBackground(Work work) {
    return inBackground<std::invoke_result_t<Work>>(*QThreadPool::globalInstance(), std::move(work));
}

} // namespace velorin
