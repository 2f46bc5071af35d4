/// Accessibility over the bus of the desktop's assistive programs, on a thread and a connection of its own.
///
/// It is switched on for the session if nobody had done so before, and left on, as every assistive program
/// does. Without that bus, or while it is gone, no element has the keyboard; it is come back to when there is
/// one again.
#pragma once

#include "platform/Accessibility.h"
#include "platform/linux/x11/WakeUp.h"

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace velorin {

class AtspiLoop;
class BusConnection;

class AtspiAccessibility final : public Accessibility {
public:
    AtspiAccessibility();
    ~AtspiAccessibility() override;

    [[nodiscard]] std::shared_ptr<AccessibleElement>
    focusedElement(qint64 process, std::chrono::milliseconds budget) override;

    /// Does the work on the accessibility thread. False when it was not begun, or not done, by the deadline:
    /// what was not begun never happens later.
    bool perform(std::chrono::steady_clock::time_point deadline, std::function<void(AtspiLoop&)> work);

private:
    struct Job {
        std::function<void(AtspiLoop&)> work;
        enum class State { waiting, running, done, abandoned } state = State::waiting;
    };

    void run();
    void serve(BusConnection& bus);
    void runJobs(AtspiLoop& loop);
    /// Waits for a job, the end, or something to read; -1 for no descriptor and no timeout.
    void wait(int descriptor, int timeout);
    [[nodiscard]] bool isStopping();
    [[nodiscard]] bool hasJobs();

    WakeUp wakeUp_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<std::shared_ptr<Job>> jobs_;
    bool isStopping_ = false;
    /// While there is no bus, nobody waits for one.
    bool isConnected_ = false;
    std::thread thread_;
};

} // namespace velorin
