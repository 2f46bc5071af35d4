/// Work that waits for others, off the main thread; its result comes back to it.
///
///     auto work = inBackground<QString>(pool, [] { … });
///     const auto text = co_await work;
///
/// In two statements: the compiler of the day ends what is captured twice when it stands within the wait. The
/// pool's end waits for what runs. Without a pool, the program's own is taken: for work that owns what it
/// reads and ends by itself.
#pragma once

#include <QCoro/QCoroFuture>
#include <QFuture>
#include <QPromise>
#include <QThreadPool>

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

template <typename Work>
[[nodiscard]] QFuture<std::invoke_result_t<Work>> inBackground(Work work) {
    return inBackground<std::invoke_result_t<Work>>(*QThreadPool::globalInstance(), std::move(work));
}

} // namespace velorin
