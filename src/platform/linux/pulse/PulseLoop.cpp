#include "platform/linux/pulse/PulseLoop.h"

#include <algorithm>
#include <limits>
#include <utility>

#include <pthread.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace velorin {

namespace {

constexpr std::chrono::microseconds noLimit{-1};

} // namespace

PulseLoop::PulseLoop() : loop_(pa_mainloop_new()), wakeUp_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    const auto clear = [](pa_mainloop_api*, pa_io_event*, int descriptor, pa_io_event_flags_t, void*) {
        eventfd_t count = 0;
        eventfd_read(descriptor, &count);
    };
    api()->io_new(api(), wakeUp_, PA_IO_EVENT_INPUT, clear, nullptr);
}

PulseLoop::~PulseLoop() {
    end();
    loop_.reset();
    close(wakeUp_);
}

void PulseLoop::wake() const { eventfd_write(wakeUp_, 1); }

void PulseLoop::post(std::function<void()> work) {
    {
        const std::scoped_lock lock(mutex_);
        work_.push_back(std::move(work));
        if (!thread_.joinable())
            thread_ = std::thread([this] { run(); });
    }
    wake();
}

void PulseLoop::end() {
    {
        const std::scoped_lock lock(mutex_);
        isEnding_ = true;
    }
    wake();
    if (thread_.joinable())
        thread_.join();
}

void PulseLoop::run() {
    pthread_setname_np(pthread_self(), "velorin-audio");
    std::vector<std::function<void()>> work;
    while (takeWork(work)) {
        // A wait within a piece of work may have taken the wake-up for more of it: look again before
        // sleeping.
        if (work.empty() && !serve(noLimit))
            return;
        for (const auto& piece : work)
            piece();
        work.clear();
    }
}

bool PulseLoop::takeWork(std::vector<std::function<void()>>& work) {
    const std::scoped_lock lock(mutex_);
    work.swap(work_);
    return !isEnding_;
}

bool PulseLoop::serve(std::chrono::microseconds atMost) {
    return pa_mainloop_prepare(loop_.get(), static_cast<int>(atMost.count())) >= 0 &&
           pa_mainloop_poll(loop_.get()) >= 0 && pa_mainloop_dispatch(loop_.get()) >= 0;
}

bool PulseLoop::runUntil(const std::function<bool()>& done, Time deadline) {
    while (!done()) {
        const auto left =
            std::chrono::ceil<std::chrono::microseconds>(deadline - std::chrono::steady_clock::now());
        if (left.count() <= 0)
            return false;
        constexpr std::chrono::microseconds most{std::numeric_limits<int>::max()};
        if (!serve(std::min(left, most)))
            return false;
    }
    return true;
}

} // namespace velorin
