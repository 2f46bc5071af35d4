#include "platform/linux/recognition/RecognitionWorker.h"

#include <malloc.h>
#include <pthread.h>

namespace velorin {

RecognitionWorker::~RecognitionWorker() {
    {
        const std::scoped_lock lock(mutex_);
        isEnding_ = true;
        if (currentInput_)
            currentInput_->finish();
    }
    hasWork_.notify_one();
    if (thread_.joinable())
        thread_.join();
}

void RecognitionWorker::prepare(std::string model, Load load) {
    post([this, model = std::move(model), load = std::move(load)] { makeReady(model, load); });
}

void RecognitionWorker::begin(Job job) {
    post([this, job = std::move(job)] { work(job); });
}

void RecognitionWorker::release() {
    post([this] { unload(); });
}

void RecognitionWorker::post(std::function<void()> work) {
    {
        const std::scoped_lock lock(mutex_);
        work_.push_back(std::move(work));
        if (!thread_.joinable())
            thread_ = std::thread([this] { run(); });
    }
    hasWork_.notify_one();
}

void RecognitionWorker::run() {
    pthread_setname_np(pthread_self(), "velorin-recog");
    while (true) {
        std::function<void()> work;
        {
            std::unique_lock lock(mutex_);
            hasWork_.wait(lock, [this] { return isEnding_ || !work_.empty(); });
            if (isEnding_)
                return;
            work = std::move(work_.front());
            work_.pop_front();
        }
        work();
    }
}

bool RecognitionWorker::makeReady(const std::string& model, const Load& load) {
    if (loadedName_ == model && loaded_.isWhole())
        return true;
    unload();
    loaded_ = load();
    loadedName_ = model;
    return loaded_.isWhole();
}

void RecognitionWorker::unload() {
    previews_.stop();
    loaded_ = {};
    loadedName_.clear();
    // A model is many pieces of memory, which the allocator would otherwise keep for later.
    malloc_trim(0);
}

void RecognitionWorker::work(const Job& job) {
    if (!makeReady(job.model, job.load)) {
        job.onEnd(Outcome::modelFailed);
        return;
    }
    {
        const std::scoped_lock lock(mutex_);
        if (isEnding_)
            return;
        currentInput_ = job.input;
    }
    const auto give = [&job](const std::string& text, bool isFinal) {
        job.onResult(job.correct ? job.correct(text) : text, isFinal);
    };
    previews_.decodeWith(*loaded_.decoder, [input = job.input] { input->wake(); });
    StreamingTranscriber transcriber(*loaded_.voiceActivity, *loaded_.decoder, previews_, job.rules, give);
    while (!isEnding_) {
        // Asked first: what comes after the answer was yes is nothing.
        const bool isFinished = job.input->isFinished();
        if (const auto samples = job.input->take())
            transcriber.add(*samples);
        else if (isFinished)
            break;
        else if (!transcriber.preview())
            job.input->wait();
    }
    if (!isEnding_)
        transcriber.finish();
    {
        const std::scoped_lock lock(mutex_);
        currentInput_.reset();
    }
    if (!isEnding_)
        job.onEnd(Outcome::done);
}

} // namespace velorin
