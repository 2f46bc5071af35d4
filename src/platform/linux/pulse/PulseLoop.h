/// The audio thread: PulseAudio's loop on a thread of its own, and a way to have work done on it.
///
/// The thread sleeps until there is work, the server says something, or a wait within some work runs out of
/// time. Everything of PulseAudio is touched by this thread alone, so nothing needs a lock. Built of standard
/// primitives only.
///
///     PulseLoop loop;
///     loop.post([&] { … loop.runUntil([&] { return answered; }, deadline) … });
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include <pulse/mainloop.h>

namespace velorin {

class PulseLoop final {
public:
    using Time = std::chrono::steady_clock::time_point;

    PulseLoop();
    PulseLoop(const PulseLoop&) = delete;
    PulseLoop& operator=(const PulseLoop&) = delete;
    ~PulseLoop();

    /// Has `work` done on the audio thread, which starts with the first of it. Any thread.
    void post(std::function<void()> work);

    /// Ends the thread once the work in hand is done; what has not begun is dropped. Whoever calls may
    /// then use PulseAudio's objects itself, to take them down.
    void end();

    /// Serves the loop until `done`, and tells whether it came about before the deadline. Audio thread,
    /// within work that was posted, not within a callback of PulseAudio.
    bool runUntil(const std::function<bool()>& done, Time deadline);

    [[nodiscard]] pa_mainloop_api* api() const { return pa_mainloop_get_api(loop_.get()); }

private:
    struct FreeLoop {
        void operator()(pa_mainloop* loop) const { pa_mainloop_free(loop); }
    };

    void run();
    bool serve(std::chrono::microseconds atMost);
    bool takeWork(std::vector<std::function<void()>>& work);
    void wake() const;

    std::unique_ptr<pa_mainloop, FreeLoop> loop_;
    /// Readable once there is something to do. The loop's own means of waking it loses what comes while it is
    /// between two polls.
    int wakeUp_;
    std::mutex mutex_;
    std::vector<std::function<void()>> work_;
    bool isEnding_ = false;
    std::thread thread_;
};

} // namespace velorin
