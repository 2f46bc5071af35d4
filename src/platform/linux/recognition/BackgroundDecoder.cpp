#include "platform/linux/recognition/BackgroundDecoder.h"

#include <pthread.h>

#include <utility>

namespace velorin {

BackgroundDecoder::~BackgroundDecoder() {
    {
        const std::scoped_lock lock(mutex_);
        isEnding_ = true;
    }
    hasChanged_.notify_all();
    if (thread_.joinable())
        thread_.join();
}

void BackgroundDecoder::decodeWith(WindowDecoder& model, std::function<void()> onEnd) {
    model_ = &model;
    onEnd_ = std::move(onEnd);
}

void BackgroundDecoder::stop() {
    std::unique_lock lock(mutex_);
    hasChanged_.wait(lock, [this] { return !isDecoding_; });
    result_.reset();
    model_ = nullptr;
    onEnd_ = nullptr;
}

void BackgroundDecoder::begin(std::vector<float> window) {
    {
        const std::scoped_lock lock(mutex_);
        work_ = Work{model_, std::move(window), onEnd_};
        isDecoding_ = true;
        if (!thread_.joinable())
            thread_ = std::thread([this] { run(); });
    }
    hasChanged_.notify_all();
}

bool BackgroundDecoder::isIdle() const {
    const std::scoped_lock lock(mutex_);
    return !isDecoding_ && !result_;
}

std::optional<AheadDecoder::Decoded> BackgroundDecoder::take() {
    const std::scoped_lock lock(mutex_);
    return std::exchange(result_, std::nullopt);
}

AheadDecoder::Decoded BackgroundDecoder::await() {
    std::unique_lock lock(mutex_);
    hasChanged_.wait(lock, [this] { return !isDecoding_; });
    return std::exchange(result_, std::nullopt).value_or(Decoded{});
}

void BackgroundDecoder::run() {
    pthread_setname_np(pthread_self(), "velorin-preview");
    std::unique_lock lock(mutex_);
    while (true) {
        hasChanged_.wait(lock, [this] { return isEnding_ || work_; });
        if (isEnding_)
            return;
        const Work work = *std::exchange(work_, std::nullopt);
        lock.unlock();
        const auto begin = std::chrono::steady_clock::now();
        Decoded decoded{work.model->decode(work.window), {}};
        decoded.time = std::chrono::steady_clock::now() - begin;
        lock.lock();
        result_ = std::move(decoded);
        isDecoding_ = false;
        hasChanged_.notify_all();
        work.onEnd();
    }
}

} // namespace velorin
