/// The microphone through PulseAudio's client library, which PipeWire serves as well.
///
/// Sound comes in the source's own rate and channels as 32-bit float. The connection is made at the first
/// question and kept; it costs nothing while no dictation runs.
#pragma once

#include "platform/AudioInput.h"
#include "platform/linux/pulse/PulseCapture.h"

#include <QObject>

namespace velorin {

class PulseAudioInput final : public AudioInput {
public:
    PulseAudioInput() = default;
    ~PulseAudioInput() override;

    [[nodiscard]] QCoro::Task<AudioFormat> inputFormat() override;
    [[nodiscard]] QCoro::Task<tl::expected<void, QString>> start(AudioFormat format, quint32 frames,
                                                                 Block block, Failure failure) override;
    [[nodiscard]] QCoro::Task<void> stop() override;

private:
    template <typename Answer>
    QCoro::Task<Answer> ask(std::function<Answer()> question);

    PulseLoop loop_;
    PulseCapture capture_{loop_};
    /// Receives what the audio thread sends to the main thread; nothing arrives once it is gone.
    QObject mainThread_;
};

} // namespace velorin
