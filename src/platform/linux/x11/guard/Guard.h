/// The guard: a small process beside the program that gives the keyboard back when the program cannot.
///
/// The program holds the keyboard whenever a press waits for its answer. If it is stopped, stuck or swapped
/// out just then, no thread of its own could help. The guard hears every press as well; some time after one
/// that the tap has grabbed it asks the tap for a sign of life, and without one it ends the tap's connection
/// to the server, which lets go of everything; what the user typed meanwhile reaches the window in front.
/// When the program is gone it releases the keys that the program held down, and ends.
///
/// It sleeps while no key is pressed.
#pragma once

#include "platform/linux/x11/ClientProcesses.h"
#include "platform/linux/x11/SharedKeyState.h"
#include "platform/linux/x11/WakeUp.h"

#include <optional>

namespace velorin {

class Guard final {
public:
    /// When it asks, after a press: the tap has answered that press by then, or is in trouble.
    static constexpr std::chrono::milliseconds questionDelay{100};
    /// How long it waits for the sign of life.
    static constexpr std::chrono::milliseconds patience{400};
    /// How long the server may take to answer before the guard listens: at login all programs start at once.
    static constexpr std::chrono::seconds startPatience{10};
    /// How long the server may take to notice that the program is gone.
    static constexpr std::chrono::milliseconds leavePatience{500};

    /// `program`: whose connection may be ended. `life` is a socket to it: the guard writes a byte once it
    /// listens, and takes its end for the program's. A write to `tapWakeUp` makes the tap look at the
    /// question.
    Guard(XConnection& connection, SharedKeyState& shared, std::int64_t program, int life, int tapWakeUp);

    /// Until the program or the server is gone. False when the server lacks what it takes.
    [[nodiscard]] bool run();

private:
    [[nodiscard]] bool listen();
    void readKeys();
    void lookAtTime();
    [[nodiscard]] bool concernsTap(unsigned key) const;
    void ask();
    [[nodiscard]] bool isAnswered() const;
    void judge();
    void endTap();
    void awaitLeave();
    void releaseOurKeys();
    [[nodiscard]] int pollTimeout() const;

    XConnection& connection_;
    ClientProcesses processes_;
    SharedKeyState& shared_;
    std::int64_t program_;
    int life_;
    int tapWakeUp_;
    std::uint8_t inputOpcode_ = 0;
    std::optional<Deadline> askAt_;
    std::optional<Deadline> askAgainAt_; ///< For what was pressed since askAt_ was set.
    std::optional<Deadline> judgeAt_;
};

} // namespace velorin
