/// Tells speech from everything else, frame by frame.
#pragma once

#include <cstddef>
#include <span>

namespace velorin {

class VoiceActivity {
public:
    /// 32 ms at 16 kHz.
    static constexpr std::size_t frameSamples = 512;

    virtual ~VoiceActivity() = default;

    /// Whether somebody speaks in the next frame of the stream.
    [[nodiscard]] virtual bool isSpeech(std::span<const float, frameSamples> frame) = 0;

    /// A new stream begins.
    virtual void reset() = 0;
};

} // namespace velorin
