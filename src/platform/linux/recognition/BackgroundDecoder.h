/// Decodes ahead on a thread of its own. Standard primitives only.
///
///     BackgroundDecoder ahead;
///     ahead.decodeWith(model, [&] { wakeMe(); });
///     ahead.begin(window);
#pragma once

#include "platform/linux/recognition/AheadDecoder.h"
#include "platform/linux/recognition/WindowDecoder.h"

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace velorin {

class BackgroundDecoder final : public AheadDecoder {
public:
    BackgroundDecoder() = default;
    BackgroundDecoder(const BackgroundDecoder&) = delete;
    BackgroundDecoder& operator=(const BackgroundDecoder&) = delete;
    /// Waits for the decode in hand.
    ~BackgroundDecoder() override;

    /// From the next `begin` on. The model is used by two threads at once, and must outlive what has begun;
    /// `onEnd` is called on the other thread when a result is there.
    void decodeWith(WindowDecoder& model, std::function<void()> onEnd);

    /// Waits for the decode in hand and forgets it: the model may go then.
    void stop();

    void begin(std::vector<float> window) override;
    [[nodiscard]] bool isIdle() const override;
    [[nodiscard]] std::optional<Decoded> take() override;
    [[nodiscard]] Decoded await() override;

private:
    struct Work {
        WindowDecoder* model;
        std::vector<float> window;
        std::function<void()> onEnd;
    };

    void run();

    WindowDecoder* model_ = nullptr;
    std::function<void()> onEnd_;

    mutable std::mutex mutex_;
    std::condition_variable hasChanged_;
    std::optional<Work> work_; ///< What waits for the thread.
    bool isDecoding_ = false;  ///< From `begin` until the result is there.
    std::optional<Decoded> result_;
    bool isEnding_ = false;
    std::thread thread_;
};

} // namespace velorin
