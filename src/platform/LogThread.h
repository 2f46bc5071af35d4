/// Writes log lines on a thread of its own, for those who must not wait for whoever reads them: a line to a
/// terminal that is held, or to a pipe that is full, takes until somebody goes on reading.
///
///     LogThread log;
///     log.write([=] { qCWarning(tapLog, "…", key); });   // returns at once
///
/// From any thread. Lines keep their order. The thread is started for the first of them; where very many
/// wait, further ones are dropped.
#pragma once

#include <functional>
#include <memory>

namespace velorin {

class LogThread final {
public:
    LogThread();
    /// Waits until all is written, half a second at most.
    ~LogThread();
    LogThread(const LogThread&) = delete;
    LogThread& operator=(const LogThread&) = delete;

    void write(std::function<void()> line);

private:
    struct Lines;
    static void run(Lines& lines);

    std::shared_ptr<Lines> lines_; ///< The thread's as well: it may be stuck when we go.
};

} // namespace velorin
