#include "core/MainTasks.h"

#include <QtGlobal>

#include <exception>
#include <utility>

namespace velorin {

/// The outermost coroutine of a task: it owns the task, and its frame takes itself off the list at its end.
struct MainTasks::Runner {
    struct promise_type {
        promise_type(MainTasks& owner, const QCoro::Task<>&) : tasks(owner) {}

        Runner get_return_object() {
            tasks.waiting_.insert(std::coroutine_handle<promise_type>::from_promise(*this).address());
            return {};
        }
        std::suspend_never initial_suspend() noexcept { return {}; }
        std::suspend_never final_suspend() noexcept {
            tasks.waiting_.erase(std::coroutine_handle<promise_type>::from_promise(*this).address());
            return {};
        }
        void return_void() {}
        [[noreturn]] void unhandled_exception() {
            try {
                throw;
            } catch (const std::exception& error) {
                qFatal("velorin: a task ended with an exception: %s", error.what());
            } catch (...) {
                qFatal("velorin: a task ended with an exception");
            }
        }

        MainTasks& tasks;
    };

    static Runner run(MainTasks&, QCoro::Task<> task) { co_await task; }
};

MainTasks::~MainTasks() {
    for (void* frame : std::exchange(waiting_, {}))
        std::coroutine_handle<>::from_address(frame).destroy();
}

void MainTasks::launch(QCoro::Task<> task) { Runner::run(*this, std::move(task)); }

} // namespace velorin
