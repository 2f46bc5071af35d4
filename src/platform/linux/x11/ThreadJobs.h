/// What other threads want done on the thread of a loop, with a deadline each.
///
///     ThreadJobs<ClipboardLoop> jobs;
///     // on the thread               // anywhere else
///     jobs.open();                   if (jobs.perform(deadline, [=](ClipboardLoop& loop) { … })) …
///     while (!jobs.isStopping()) {
///         jobs.run(loop);
///         …poll(jobs.fileDescriptor())…
///         jobs.clearWakeUp();
///     }
///     jobs.close();
///
/// A job is claimed by the thread, or by a caller who gave up waiting: what was given up never happens later.
#pragma once

#include "platform/linux/x11/WakeUp.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>

namespace velorin {

template <typename Loop>
class ThreadJobs final {
public:
    /// Any thread but the loop's own. False when the work was not begun, or not done, by the deadline.
    bool perform(std::chrono::steady_clock::time_point deadline, std::function<void(Loop&)> work) {
        const auto job = std::make_shared<Job>();
        job->work = std::move(work);
        std::unique_lock lock(mutex_);
        if (!isOpen_)
            return false;
        jobs_.push_back(job);
        wakeUp_.wake();
        changed_.wait_until(lock, deadline, [&] { return job->state == Job::State::done || !isOpen_; });
        if (job->state == Job::State::waiting)
            job->state = Job::State::abandoned;
        return job->state == Job::State::done;
    }
    /// Any thread. Does not wait for it, nor tell whether it came about.
    void post(std::function<void(Loop&)> work) {
        const std::scoped_lock lock(mutex_);
        if (!isOpen_)
            return;
        jobs_.emplace_back(std::make_shared<Job>())->work = std::move(work);
        wakeUp_.wake();
    }
    /// Any thread: the loop shall end.
    void stop() {
        {
            const std::scoped_lock lock(mutex_);
            isStopping_ = true;
        }
        wakeUp_.wake();
    }

    /// The loop's thread from here on. Jobs are taken from now on; until then they are refused.
    void open() {
        const std::scoped_lock lock(mutex_);
        isOpen_ = true;
    }
    /// No job is taken any more; who waits for one is told.
    void close() {
        const std::scoped_lock lock(mutex_);
        isOpen_ = false;
        jobs_.clear();
        changed_.notify_all();
    }
    /// Does what waits.
    void run(Loop& loop) {
        for (;;) {
            std::shared_ptr<Job> job;
            {
                const std::scoped_lock lock(mutex_);
                if (jobs_.empty())
                    return;
                job = std::move(jobs_.front());
                jobs_.pop_front();
                if (job->state != Job::State::waiting)
                    continue;
                job->state = Job::State::running;
            }
            job->work(loop);
            const std::scoped_lock lock(mutex_);
            job->state = Job::State::done;
            changed_.notify_all();
        }
    }
    [[nodiscard]] bool isStopping() {
        const std::scoped_lock lock(mutex_);
        return isStopping_;
    }
    /// Whether there is a job, or the loop shall end.
    [[nodiscard]] bool isAnyWaiting() {
        const std::scoped_lock lock(mutex_);
        return !jobs_.empty() || isStopping_;
    }
    /// Readable when there is something to look at.
    [[nodiscard]] int fileDescriptor() const { return wakeUp_.fileDescriptor(); }
    void clearWakeUp() const { wakeUp_.clear(); }

private:
    struct Job {
        std::function<void(Loop&)> work;
        enum class State { waiting, running, done, abandoned } state = State::waiting;
    };

    WakeUp wakeUp_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<std::shared_ptr<Job>> jobs_;
    bool isStopping_ = false;
    bool isOpen_ = false;
};

} // namespace velorin
