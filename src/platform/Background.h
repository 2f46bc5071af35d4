/// Work that waits for others, off the main thread; its result comes back to it.
///
///     auto work = inBackground<QString>(pool, [] { … });
///     const auto text = co_await work;
///
/// In two statements: the compiler of the day ends what is captured twice when it stands within the wait. The
/// pool's end waits for what runs.
#pragma once

#include <QCoro/QCoroFuture>
#include <QFuture>
#include <QPromise>
#include <QThreadPool>

#include <memory>

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

} // namespace velorin
