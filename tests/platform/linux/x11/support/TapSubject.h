/// The program's shortcuts in a process of their own, which a test may stop and kill.
#pragma once

#include "tests/platform/linux/x11/support/PrivateServer.h"

#include <deque>
#include <optional>

namespace velorin {

class TapSubject final {
public:
    /// Returns when its tap runs. `configuration`: the stored form, empty for the default one. `log`: where
    /// its log goes; ours when negative.
    explicit TapSubject(const std::string& program, const std::string& configuration = {}, int log = -1);
    ~TapSubject();
    TapSubject(const TapSubject&) = delete;
    TapSubject& operator=(const TapSubject&) = delete;

    [[nodiscard]] pid_t id() const { return process_->id(); }
    /// The process of its guard; 0 when there is none.
    [[nodiscard]] pid_t guard() const;
    void stop() const { process_->kill(19); } // SIGSTOP
    void goOn() const { process_->kill(18); } // SIGCONT
    void kill() { process_->end(9); }         // SIGKILL
    void command(const std::string& line) const;
    /// The next line that it says; nothing when none comes within the patience.
    [[nodiscard]] std::optional<std::string> line(int milliseconds = 5000);
    /// Waits for a line that begins so.
    [[nodiscard]] std::optional<std::string> lineWith(const std::string& beginning, int milliseconds = 5000);

private:
    std::unique_ptr<ChildProcess> process_;
    int input_ = -1;
    int output_ = -1;
    std::string unread_;
};

/// The processes that another one has started.
[[nodiscard]] std::vector<pid_t> childrenOf(pid_t process);
/// How often all threads of a process, or those of one name, have gone to sleep by themselves.
[[nodiscard]] long voluntarySwitchesOf(pid_t process, const std::string& threads = {});

} // namespace velorin
