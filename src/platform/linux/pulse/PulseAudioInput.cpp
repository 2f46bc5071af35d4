#include "platform/linux/pulse/PulseAudioInput.h"

#include "platform/Gate.h"
#include "platform/Log.h"

#include <QCoreApplication>
#include <QMetaObject>

namespace velorin {

namespace {

using Kind = PulseError::Kind;

QString tr(const char* text) { return QCoreApplication::translate("PulseAudioInput", text); }

QString words(const PulseError& error) {
    switch (error.kind) {
    case Kind::noServer:
        return tr("The sound server does not answer.");
    case Kind::noMicrophone:
        return tr("There is no microphone.");
    case Kind::microphoneGone:
        return tr("The microphone was unplugged.");
    case Kind::serverGone:
        return tr("The sound server went away.");
    case Kind::refused:
        break;
    }
    return QString::fromStdString(error.detail);
}

AudioFormat formatOf(const PulseSource& source) {
    return {static_cast<double>(source.spec.rate), source.spec.channels, AudioFormat::Samples::float32};
}

} // namespace

PulseAudioInput::~PulseAudioInput() { loop_.end(); }

/// Has the question answered on the audio thread; the task goes on on the main thread.
template <typename Answer>
QCoro::Task<Answer> PulseAudioInput::ask(std::function<Answer()> question) {
    struct Reply {
        Gate isHere{false};
        std::optional<Answer> answer;
    };
    const auto reply = std::make_shared<Reply>();
    loop_.post([this, reply, question = std::move(question)] {
        auto deliver = [reply, answer = question()]() mutable {
            reply->answer = std::move(answer);
            reply->isHere.open();
        };
        QMetaObject::invokeMethod(&mainThread_, std::move(deliver), Qt::QueuedConnection);
    });
    co_await reply->isHere.opened();
    co_return std::move(*reply->answer);
}

QCoro::Task<AudioFormat> PulseAudioInput::inputFormat() {
    using Answer = tl::expected<PulseSource, PulseError>;
    const auto source = co_await ask<Answer>([this] { return capture_.findMicrophone(); });
    if (source)
        co_return formatOf(*source);
    qCWarning(speechLog).noquote() << "no microphone:" << words(source.error());
    co_return AudioFormat{};
}

QCoro::Task<tl::expected<void, QString>> PulseAudioInput::start(AudioFormat format, quint32 frames,
                                                                Block block, Failure failure) {
    const auto hand = [format, block = std::move(block)](std::span<const float> samples) {
        block({format, std::vector<float>(samples.begin(), samples.end()), 0});
    };
    const auto lost = [this, failure = std::move(failure)](const PulseError& error) {
        QMetaObject::invokeMethod(
            &mainThread_, [failure, message = words(error)] { failure(message); }, Qt::QueuedConnection);
    };
    const auto rate = static_cast<std::uint32_t>(format.sampleRate);
    const auto channels = static_cast<std::uint8_t>(format.channels);
    using Answer = tl::expected<void, PulseError>;
    const std::function<Answer()> open = [=, this] {
        return capture_.start(rate, channels, frames, hand, lost);
    };
    const auto started = co_await ask<Answer>(open);
    if (!started)
        co_return tl::unexpected(words(started.error()));
    co_return tl::expected<void, QString>{};
}

QCoro::Task<void> PulseAudioInput::stop() {
    const std::function<PulseCapture::Statistics()> end = [this] {
        capture_.stop();
        return capture_.statistics();
    };
    const auto statistics = co_await ask<PulseCapture::Statistics>(end);
    if (statistics.lostFrames > 0 || statistics.overflows > 0)
        qCWarning(speechLog) << "microphone: lost" << statistics.lostFrames << "frames of"
                             << statistics.frames << "and overflowed" << statistics.overflows << "times";
}

} // namespace velorin
