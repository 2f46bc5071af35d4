/// The program's side of its guard: starts it, sees when it is gone, and starts it again. One thread at a
/// time.
#pragma once

#include "platform/linux/x11/SharedKeyState.h"
#include "platform/linux/x11/WakeUp.h"

#include <chrono>
#include <string>

#include <sys/types.h>

namespace velorin {

/// The guard's program: beside ours, or where an installation puts it. Empty when there is none.
[[nodiscard]] std::string guardProgram();

class GuardProcess final {
public:
    /// An empty program: no guard, and nothing ever happens.
    GuardProcess(std::string program, const SharedKeyState& shared, const WakeUp& tapWakeUp);
    /// The guard ends, having released what is still held down.
    ~GuardProcess();
    GuardProcess(const GuardProcess&) = delete;
    GuardProcess& operator=(const GuardProcess&) = delete;

    /// False when it could not be started. It listens some time later.
    bool start();
    /// Returns when it listens, or is late to. False when it is gone.
    [[nodiscard]] bool awaitReady();
    /// Readable when there may be something to look at; -1 without one.
    [[nodiscard]] int fileDescriptor() const { return life_; }
    /// To be asked then.
    [[nodiscard]] bool lives() const;
    /// For one that is gone. A guard that keeps ending at once is given up, with a false.
    bool startAgain();
    /// Gives one that was given up, or could not be started, another chance.
    void startIfNone();
    [[nodiscard]] pid_t id() const { return process_; }

private:
    void reap();

    std::string program_;
    const SharedKeyState& shared_;
    const WakeUp& tapWakeUp_;
    pid_t process_ = 0;
    int life_ = -1;
    int quickEnds_ = 0;
    std::chrono::steady_clock::time_point startedAt_;
};

} // namespace velorin
