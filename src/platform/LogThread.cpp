#include "platform/LogThread.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <utility>

#include <pthread.h>

namespace velorin {

namespace {
constexpr std::size_t mostLines = 10'000;
constexpr std::chrono::milliseconds patience{500};
} // namespace

struct LogThread::Lines {
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<std::function<void()>> waiting;
    bool isRunning = false;
    bool isEnding = false;
};

LogThread::LogThread() : lines_(std::make_shared<Lines>()) {}

LogThread::~LogThread() {
    std::unique_lock lock(lines_->mutex);
    lines_->isEnding = true;
    lines_->changed.notify_all();
    lines_->changed.wait_for(lock, patience, [this] { return !lines_->isRunning; });
}

void LogThread::write(std::function<void()> line) {
    const std::scoped_lock lock(lines_->mutex);
    if (lines_->waiting.size() >= mostLines)
        return;
    lines_->waiting.push_back(std::move(line));
    lines_->changed.notify_all();
    if (!std::exchange(lines_->isRunning, true))
        std::thread([lines = lines_] { run(*lines); }).detach();
}

void LogThread::run(Lines& lines) {
    pthread_setname_np(pthread_self(), "velorin-log");
    std::unique_lock lock(lines.mutex);
    for (;;) {
        lines.changed.wait(lock, [&] { return !lines.waiting.empty() || lines.isEnding; });
        if (lines.waiting.empty())
            break;
        auto line = std::move(lines.waiting.front());
        lines.waiting.pop_front();
        lock.unlock();
        line();
        line = nullptr;
        lock.lock();
    }
    lines.isRunning = false;
    lines.changed.notify_all();
}

} // namespace velorin
