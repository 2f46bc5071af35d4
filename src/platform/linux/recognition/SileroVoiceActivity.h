/// Voice activity by the Silero model in the recognition run time.
#pragma once

#include "platform/linux/recognition/SherpaHandles.h"
#include "platform/linux/recognition/VoiceActivity.h"

#include <string>

namespace velorin {

class SileroVoiceActivity final : public VoiceActivity {
public:
    /// `model` is a file whose digest has been checked. Null when it cannot be loaded.
    [[nodiscard]] static std::unique_ptr<SileroVoiceActivity> load(const std::string& model,
                                                                   float threshold = 0.5F);

    [[nodiscard]] bool isSpeech(std::span<const float, frameSamples> frame) override;
    void reset() override;

private:
    SherpaHandle<SherpaOnnxVoiceActivityDetector> detector_;
};

} // namespace velorin
