/// Accessibility over the bus of the desktop's assistive programs, on a thread and a connection of its own.
///
/// It is switched on for the session if nobody had done so before, and left on, as every assistive program
/// does. Without that bus, or while it is gone, no element has the keyboard; it is come back to when there is
/// one again.
#pragma once

#include "platform/Accessibility.h"
#include "platform/linux/x11/ThreadJobs.h"

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
    void run();
    void serve(BusConnection& bus);
    /// Waits for a job, the end, or something to read; -1 for no descriptor and no timeout.
    void wait(int descriptor, int timeout);

    ThreadJobs<AtspiLoop> jobs_; ///< Open while there is a bus: nobody waits for one.
    std::thread thread_;
};

} // namespace velorin
