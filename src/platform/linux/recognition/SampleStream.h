/// The sound of one dictation on its way from the audio thread to the recogniser's. Standard primitives only.
#pragma once

#include "platform/linux/recognition/ChunkQueue.h"

#include <vector>

namespace velorin {

class SampleStream final {
public:
    SampleStream();
    SampleStream(const SampleStream&) = delete;
    SampleStream& operator=(const SampleStream&) = delete;
    ~SampleStream();

    /// One thread. Never waits.
    void write(std::vector<float> samples);

    /// No more is written. Any thread, once the writing thread is done.
    void finish();

    /// The oldest samples not taken yet; nothing when there are none at the moment. Reading thread.
    [[nodiscard]] std::optional<std::vector<float>> take() { return queue_.take(); }

    /// Whether the writer is done: what `take` gives after this was true is all there is. Reading thread.
    [[nodiscard]] bool isFinished() const { return isFinished_.load(std::memory_order_acquire); }

    /// Sleeps until something has been written or finished, or `wake` was called, since the last wait.
    /// Reading thread.
    void wait();

    /// For news of another kind. Any thread.
    void wake();

private:
    ChunkQueue<std::vector<float>> queue_;
    std::atomic<bool> isFinished_{false};
    int wakeUp_;
};

} // namespace velorin
