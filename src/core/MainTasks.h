/// Main-thread tasks that nobody waits for.
///
///     tasks.launch(session.start());
///
/// A task runs at once up to its first wait. It is kept until it ends; what still waits when the MainTasks
/// are destroyed is never resumed. An exception that escapes a task is a bug and ends the program.
#pragma once

#include <QCoro/QCoroTask>

#include <coroutine>
#include <unordered_set>

namespace velorin {

class MainTasks final {
public:
    MainTasks() = default;
    MainTasks(const MainTasks&) = delete;
    MainTasks& operator=(const MainTasks&) = delete;
    ~MainTasks();

    void launch(QCoro::Task<> task);

    /// Whether every launched task has ended.
    [[nodiscard]] bool isIdle() const { return waiting_.empty(); }

private:
    struct Runner;

    std::unordered_set<void*> waiting_; ///< Coroutine frames that have not ended.
};

} // namespace velorin
