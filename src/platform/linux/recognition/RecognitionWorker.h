/// The recogniser's thread: loads the model when a dictation begins, and takes one dictation after the other
/// from its sound to its results. Previews are decoded beside it, on a second thread, so that the end of a
/// dictation waits for none. Sleeps otherwise. Standard primitives only.
///
///     worker.prepare("moonshine-tiny-en", load);     // begins to load
///     worker.begin({"moonshine-tiny-en", load, stream, {}, onResult, onEnd});
///     …
///     worker.release();                              // gives the model's memory back
#pragma once

#include "platform/linux/recognition/BackgroundDecoder.h"
#include "platform/linux/recognition/SampleStream.h"
#include "platform/linux/recognition/StreamingTranscriber.h"

#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>

namespace velorin {

struct LoadedModel {
    std::unique_ptr<VoiceActivity> voiceActivity;
    std::unique_ptr<WindowDecoder> decoder;
    [[nodiscard]] bool isWhole() const { return voiceActivity && decoder; }
};

class RecognitionWorker final {
public:
    /// Runs on the worker's thread; gives less than both parts when the model cannot be loaded.
    using Load = std::function<LoadedModel()>;

    enum class Outcome { done, modelFailed };

    struct Job {
        /// A model that is loaded under this name is not loaded again.
        std::string model;
        Load load;
        std::shared_ptr<SampleStream> input;
        StreamingRules rules;
        /// Applied to each text that the model gives; none for as it is.
        std::function<std::string(const std::string&)> correct;
        /// Both are called on the worker's thread; `onEnd` once, last.
        StreamingTranscriber::Emit onResult;
        std::function<void(Outcome)> onEnd;
    };

    RecognitionWorker() = default;
    RecognitionWorker(const RecognitionWorker&) = delete;
    RecognitionWorker& operator=(const RecognitionWorker&) = delete;
    /// Ends the thread after the decode in hand; jobs that have not ended are dropped without a word.
    ~RecognitionWorker();

    void prepare(std::string model, Load load);
    void begin(Job job);
    /// Drops the loaded model, once the jobs before are done.
    void release();

private:
    void post(std::function<void()> work);
    void run();
    bool makeReady(const std::string& model, const Load& load);
    void unload();
    void work(const Job& job);

    std::mutex mutex_;
    std::condition_variable hasWork_;
    std::deque<std::function<void()>> work_;
    std::atomic<bool> isEnding_{false};
    /// What the thread must be woken from when it is to end.
    std::shared_ptr<SampleStream> currentInput_;

    // The thread's own.
    std::string loadedName_;
    LoadedModel loaded_;
    BackgroundDecoder previews_; ///< Goes before the model that it decodes with.

    std::thread thread_;
};

} // namespace velorin
