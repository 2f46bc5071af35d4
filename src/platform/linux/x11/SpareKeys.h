/// Lends key codes that mean nothing to characters that the keyboard lacks, while they are typed.
///
///     SpareKeys spares;                                         // what a killed process left is given back
///     if (spares.lend(connection, map, {U'漢'}, false)) …       // as long as `spares` wants, see below
///     spares.wereUsed(application);                             // given back when that has read its keys
///
/// Applications look a key up when they come to read it, so a code keeps its meaning until the application
/// has shown that it has come that far, or has long been gone silent. What is lent stands in a property of
/// the root window: whoever starts next after a sudden end finds it there.
///
/// `lend` and `wereUsed` from any thread; the giving back happens on a thread of its own, "velorin-keys".
#pragma once

#include "platform/RunningApplication.h"
#include "platform/linux/x11/KeyboardMap.h"

#include <condition_variable>
#include <mutex>
#include <span>
#include <thread>

namespace velorin {

class SpareKeys final {
public:
    /// What is not known to be read is kept for so long after its use.
    static constexpr std::chrono::milliseconds shortestLoan{2000};
    static constexpr std::chrono::milliseconds longestLoan{60000};

    SpareKeys();
    /// Gives back what is lent.
    ~SpareKeys();
    SpareKeys(const SpareKeys&) = delete;
    SpareKeys& operator=(const SpareKeys&) = delete;

    /// Gives each character a code of its own; with `inBothCases` a letter's code has its other case on
    /// Shift, as a keyboard with Caps Lock on needs it. False, with nothing changed, when there are too few
    /// codes.
    [[nodiscard]] bool lend(const XConnection& connection, const KeyboardMap& map,
                            std::span<const char32_t> characters, bool inBothCases);

    /// Keys were posted to this application.
    void wereUsed(const std::optional<RunningApplication>& application);

    /// Whether something is lent.
    [[nodiscard]] bool isLending();

private:
    struct Loan {
        std::uint32_t key = 0;
        std::array<std::uint32_t, 2> symbols{};
    };
    using Time = Deadline::Clock::time_point;

    void run();
    static void giveBack(XConnection& connection, const std::vector<Loan>& loans);
    [[nodiscard]] static std::vector<Loan> loansIn(XConnection& connection);

    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<Loan> loans_;
    std::optional<RunningApplication> reader_;
    Time lastUse_{};
    bool isStopping_ = false;
    std::thread thread_;
};

} // namespace velorin
