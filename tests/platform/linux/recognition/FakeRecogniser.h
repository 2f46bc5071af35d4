/// Voice activity and decoding that a test can foretell: a frame is speech when its first sample is not zero,
/// and a window's text tells how many frames it has, how many of them are speech, and the first sample of
/// each kind of speech in it.
#pragma once

#include "platform/linux/recognition/VoiceActivity.h"
#include "platform/linux/recognition/WindowDecoder.h"

#include <functional>
#include <vector>

namespace velorin {

struct FakeVoiceActivity final : VoiceActivity {
    int resets = 0;

    bool isSpeech(std::span<const float, frameSamples> frame) override { return frame[0] != 0; }
    void reset() override { ++resets; }
};

struct FakeDecoder final : WindowDecoder {
    std::vector<std::vector<float>> windows;
    std::function<std::string(std::span<const float>)> answer = [](std::span<const float> samples) {
        return std::to_string(samples.size() / VoiceActivity::frameSamples);
    };

    std::string decode(std::span<const float> samples) override {
        windows.emplace_back(samples.begin(), samples.end());
        return answer(samples);
    }
};

/// So many frames, all of this value.
inline std::vector<float> frames(std::size_t count, float value) {
    return std::vector<float>(count * VoiceActivity::frameSamples, value);
}

} // namespace velorin
