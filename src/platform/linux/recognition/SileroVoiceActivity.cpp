#include "platform/linux/recognition/SileroVoiceActivity.h"

namespace velorin {

std::unique_ptr<SileroVoiceActivity> SileroVoiceActivity::load(const std::string& model, float threshold) {
    SherpaOnnxVadModelConfig config{};
    config.silero_vad.model = model.c_str();
    config.silero_vad.threshold = threshold;
    config.silero_vad.window_size = frameSamples;
    // Pauses and lengths are judged by the transcriber: from here it wants each frame by itself.
    config.silero_vad.min_silence_duration = 1e-4F; // 0 would stand for half a second.
    config.silero_vad.min_speech_duration = 1e-4F;
    // In samples it has to fit 32 bits; beyond it the detector changes its own thresholds.
    config.silero_vad.max_speech_duration = 1e5F;
    config.sample_rate = 16000;
    config.num_threads = 1;
    config.provider = "cpu";
    constexpr float bufferSeconds = 30;
    auto voiceActivity = std::make_unique<SileroVoiceActivity>();
    voiceActivity->detector_.reset(SherpaOnnxCreateVoiceActivityDetector(&config, bufferSeconds));
    if (!voiceActivity->detector_)
        return nullptr;
    return voiceActivity;
}

bool SileroVoiceActivity::isSpeech(std::span<const float, frameSamples> frame) {
    SherpaOnnxVoiceActivityDetectorAcceptWaveform(detector_.get(), frame.data(), frameSamples);
    // The segments that it collects are of no use here, and would pile up.
    SherpaOnnxVoiceActivityDetectorClear(detector_.get());
    return SherpaOnnxVoiceActivityDetectorDetected(detector_.get()) != 0;
}

void SileroVoiceActivity::reset() { SherpaOnnxVoiceActivityDetectorReset(detector_.get()); }

} // namespace velorin
