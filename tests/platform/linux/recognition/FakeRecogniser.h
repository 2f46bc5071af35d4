/// Voice activity and decoding that a test can foretell: a frame is speech when its first sample is not zero,
/// and a window's text tells how many frames it has, how many of them are speech, and the first sample of
/// each kind of speech in it.
#pragma once

#include "platform/linux/recognition/AheadDecoder.h"
#include "platform/linux/recognition/VoiceActivity.h"
#include "platform/linux/recognition/WindowDecoder.h"

#include <functional>
#include <mutex>
#include <utility>
#include <vector>

namespace velorin {

struct FakeVoiceActivity final : VoiceActivity {
    int resets = 0;

    bool isSpeech(std::span<const float, frameSamples> frame) override { return frame[0] != 0; }
    void reset() override { ++resets; }
};

struct FakeDecoder final : WindowDecoder {
    std::mutex mutex;
    std::vector<std::vector<float>> windows; ///< Under the mutex while a worker decodes.
    std::function<std::string(std::span<const float>)> answer = [](std::span<const float> samples) {
        return std::to_string(samples.size() / VoiceActivity::frameSamples);
    };

    std::string decode(std::span<const float> samples) override {
        {
            const std::scoped_lock lock(mutex);
            windows.emplace_back(samples.begin(), samples.end());
        }
        return answer(samples);
    }
};

/// Decodes ahead in no time; or, when it is told to wait, once it is told to end.
struct FakeAhead final : AheadDecoder {
    explicit FakeAhead(WindowDecoder& with) : decoder(with) {}

    WindowDecoder& decoder;
    bool waits = false;
    bool isDecoding = false;
    int awaited = 0;
    std::vector<float> window;
    std::optional<Decoded> result;

    void begin(std::vector<float> samples) override {
        window = std::move(samples);
        isDecoding = true;
        if (!waits)
            end();
    }
    void end() {
        result = Decoded{decoder.decode(window), {}};
        isDecoding = false;
    }
    bool isIdle() const override { return !isDecoding && !result; }
    std::optional<Decoded> take() override { return std::exchange(result, std::nullopt); }
    Decoded await() override {
        ++awaited;
        if (isDecoding)
            end();
        return std::exchange(result, std::nullopt).value_or(Decoded{});
    }
};

/// So many frames, all of this value.
inline std::vector<float> frames(std::size_t count, float value) {
    return std::vector<float>(count * VoiceActivity::frameSamples, value);
}

} // namespace velorin
