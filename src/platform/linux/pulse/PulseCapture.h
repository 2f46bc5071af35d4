/// The microphone as PulseAudio's clients see it: the connection, which is kept between recordings, and the
/// stream, which lives only during one.
///
/// Audio thread only, as work of a `PulseLoop`; each operation has a deadline and may block that thread until
/// then. Whatever goes wrong drops what it concerns, so that the next recording connects afresh.
#pragma once

#include "platform/linux/pulse/PulseHandles.h"
#include "platform/linux/pulse/PulseLoop.h"

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <tl/expected.hpp>
#include <vector>

namespace velorin {

struct PulseError {
    enum class Kind {
        noServer,     ///< Nobody answers, or nobody in time.
        noMicrophone, ///< The default source is missing, or an output's monitor.
        refused,      ///< The server does not open the microphone; `detail` has its words.
        microphoneGone,
        serverGone,
    };
    Kind kind = Kind::noServer;
    std::string detail;
};

struct PulseSource {
    std::string name;
    pa_sample_spec spec{};
    pa_channel_map channels{};
};

class PulseCapture final {
public:
    /// Interleaved samples of whole frames.
    using Block = std::function<void(std::span<const float>)>;
    using Failure = std::function<void(PulseError)>;
    /// What became of the last recording's sound.
    struct Statistics {
        std::size_t frames = 0;
        std::size_t lostFrames = 0; ///< Holes that the server told of, filled with silence.
        std::size_t overflows = 0;
    };

    explicit PulseCapture(PulseLoop& loop) : loop_(loop) {}
    PulseCapture(const PulseCapture&) = delete;
    PulseCapture& operator=(const PulseCapture&) = delete;

    /// The default source, as it is at this moment.
    [[nodiscard]] tl::expected<PulseSource, PulseError> findMicrophone();

    /// Records the source found last, as 32-bit float, in blocks of `frames` frames. `failure` is called at
    /// most once, after the last block, when source or server have gone away for good.
    [[nodiscard]] tl::expected<void, PulseError> start(std::uint32_t rate, std::uint8_t channels,
                                                       std::size_t frames, Block block, Failure failure);

    /// Hands out what was recorded until now, and ends the recording.
    void stop();

    [[nodiscard]] const Statistics& statistics() const { return statistics_; }

private:
    [[nodiscard]] bool connect(PulseLoop::Time deadline);
    [[nodiscard]] bool isConnected() const;
    bool await(pa_operation* operation, PulseLoop::Time deadline);
    tl::unexpected<PulseError> giveUp();
    [[nodiscard]] bool openStream(const pa_sample_spec& spec);
    [[nodiscard]] std::string refusal() const;
    [[nodiscard]] std::size_t samplesStillToCome();
    void read();
    void take(const void* data, std::size_t bytes);
    void handOut(bool alsoLessThanABlock);
    void fail(PulseError::Kind kind);
    void checkWhereWeAre();

    static void onContextState(pa_context* context, void* self);
    static void onStreamState(pa_stream* stream, void* self);
    static void onRead(pa_stream* stream, std::size_t bytes, void* self);
    static void onMoved(pa_stream* stream, void* self);
    static void onOverflow(pa_stream* stream, void* self);

    PulseLoop& loop_;
    PulseHandle<pa_context> context_;
    PulseHandle<pa_stream> stream_;
    PulseHandle<pa_operation> movedCheck_;
    PulseSource source_;
    std::size_t blockSamples_ = 0;
    std::vector<float> pending_;
    std::size_t samplesRead_ = 0;
    Block block_;
    Failure failure_;
    Statistics statistics_;
};

} // namespace velorin
