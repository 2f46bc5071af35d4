/// The microphone that the user has chosen for the session.
///
/// Asked anew for each dictation, since it may have been changed, unplugged or plugged in meanwhile.
/// Nothing here blocks: every question has a deadline, after which it is answered as if nothing were there.
///
///     const AudioFormat format = co_await input.inputFormat();
///     co_await input.start(format, 1024, onBuffer, onFailure);
///     …
///     co_await input.stop();      // onBuffer has had everything, and is not called any more
#pragma once

#include "platform/AudioBuffer.h"

#include <QCoro/QCoroTask>
#include <QString>

#include <functional>
#include <tl/expected.hpp>

namespace velorin {

class AudioInput {
public:
    /// Called on the audio thread for each buffer, in order. It must not wait for anything.
    using Block = std::function<void(const AudioBuffer& buffer)>;
    /// Called once on the main thread when the microphone has gone away for good; no buffer comes after it.
    using Failure = std::function<void(const QString& message)>;

    virtual ~AudioInput() = default;

    /// The format of the present microphone; 0 channels where there is none. Main thread.
    [[nodiscard]] virtual QCoro::Task<AudioFormat> inputFormat() = 0;

    /// Starts to record in `format`, handing out buffers of `frames` frames. Ends when sound is flowing,
    /// or with the reason, in words, why it cannot; then neither callback is called. A start while another
    /// one runs replaces it. Main thread.
    [[nodiscard]] virtual QCoro::Task<tl::expected<void, QString>> start(AudioFormat format, quint32 frames,
                                                                         Block block, Failure failure) = 0;

    /// Hands out what was recorded until this call, the last buffer shorter than the others, and ends the
    /// recording. Ends within 50 ms. Main thread.
    [[nodiscard]] virtual QCoro::Task<void> stop() = 0;
};

} // namespace velorin
