/// A microphone that says what the test tells it to.
///
///     FakeAudioInput input;
///     input.startGate.close();          // the next start waits
///     …
///     input.startGate.open();           // … until here
///     input.block(buffer);              // sound comes
#pragma once

#include "platform/AudioInput.h"
#include "platform/Gate.h"

#include <optional>
#include <vector>

namespace velorin {

struct FakeAudioInput final : AudioInput {
    AudioFormat format{48000, 2, AudioFormat::Samples::float32};
    Gate formatGate{true};
    std::optional<QString> startError;
    Gate startGate{true};
    Gate stopGate{true};

    struct Start {
        AudioFormat format;
        quint32 frames;
    };
    std::vector<Start> starts;
    int formatQuestions = 0;
    int failedStarts = 0;
    int stops = 0;
    /// Whether somebody is listening.
    [[nodiscard]] bool isOpen() const { return static_cast<int>(starts.size()) > failedStarts + stops; }
    /// Those of the last start.
    Block block;
    Failure failure;

    QCoro::Task<AudioFormat> inputFormat() override {
        ++formatQuestions;
        co_await formatGate.opened();
        co_return format;
    }

    QCoro::Task<tl::expected<void, QString>> start(AudioFormat startFormat, quint32 frames, Block newBlock,
                                                   Failure newFailure) override {
        starts.push_back({startFormat, frames});
        block = std::move(newBlock);
        failure = std::move(newFailure);
        co_await startGate.opened();
        if (startError)
            ++failedStarts;
        if (startError)
            co_return tl::unexpected(*startError);
        co_return tl::expected<void, QString>{};
    }

    QCoro::Task<void> stop() override {
        ++stops;
        co_await stopGate.opened();
    }
};

} // namespace velorin
