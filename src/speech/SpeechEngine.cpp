#include "speech/SpeechEngine.h"

#include "platform/Log.h"
#include "speech/AudioConversion.h"
#include "speech/AudioLevel.h"
#include "text/WhiteSpace.h"

#include <QCoreApplication>
#include <QFile>

#include <utility>

namespace velorin {

namespace {

constexpr quint32 tapFrames = 1024;

using Kind = SpeechEngineError::Kind;

tl::unexpected<SpeechEngineError> failure(Kind kind, const QString& detail = {}) {
    return tl::unexpected(SpeechEngineError{kind, detail});
}

/// What a task returns that finds its engine gone; nobody is left to read it.
tl::unexpected<SpeechEngineError> gone() { return failure(Kind::platform); }

/// Keeps other starts out while the microphone is being opened or closed.
class Busy final {
public:
    explicit Busy(std::shared_ptr<Gate> idle) : idle_(std::move(idle)) { idle_->close(); }
    Busy(const Busy&) = delete;
    Busy& operator=(const Busy&) = delete;
    ~Busy() { idle_->open(); }

private:
    std::shared_ptr<Gate> idle_;
};

QStringList cleaned(const QStringList& strings) {
    QStringList kept;
    for (const QString& string : strings)
        if (const auto trimmed = WhiteSpace::trimmed(string, WhiteSpace::Set::whitespacesAndNewlines);
            !trimmed.isEmpty())
            kept.append(trimmed.toString());
    return kept;
}

} // namespace

struct SpeechEngine::Take {
    QString locale;
    std::function<void(const QString&, bool)> onResult;
    std::function<void(const SpeechEngineError&)> onError;
    std::function<void(const QString&)> onStatus;
    std::function<void(qint64, qint64)> onModelProgress;
    std::function<void(RecordingWriter::Loss)> onRecordingCut;
    std::function<void(float)> onAudioLevel;
    QStringList contextualStrings;
    bool recordsAudio = false;
    std::optional<qint64> mostRecordedBytes;
    LatencyMarks::Number number = 0; ///< Of the dictation, for its stages.

    std::shared_ptr<SpeechAnalyzer> analyzer;
    std::shared_ptr<SpeechTranscriber> transcriber;
    std::shared_ptr<AnalyzerInput> input;
    std::shared_ptr<AudioConverter> converter;
    AudioFormat analyzerFormat;
    std::shared_ptr<RecordingWriter> recording;
    std::optional<QCoro::Task<void>> analysis;
    std::optional<QCoro::Task<void>> results;
};

SpeechEngine::SpeechEngine(AudioInput& input, SpeechRecognition& recognition,
                           AudioConverterFactory& converters, AudioFileFactory& files,
                           const ApplicationFolders& folders, LatencyMarks& marks)
    : input_(input), recognition_(recognition), converters_(converters), files_(files), folders_(folders),
      marks_(marks), idle_(std::make_shared<Gate>(true)), self_(std::make_shared<SpeechEngine*>(this)) {}

SpeechEngine::~SpeechEngine() {
    // Whoever waits at the gate is resumed by its end, and must then see that the engine is gone.
    self_.reset();
    // The audio thread may still be writing: the file goes, the writer follows with the tap.
    for (const auto& recording : recordings_)
        QFile::remove(recording->path());
}

SpeechEngine::SharedTake SpeechEngine::makeTake(QString localeIdentifier) const {
    auto take = std::make_shared<Take>();
    take->locale = std::move(localeIdentifier);
    take->onResult = onResult;
    take->onError = onError;
    take->onStatus = onStatus;
    take->onModelProgress = onModelProgress;
    take->onRecordingCut = onRecordingCut;
    take->onAudioLevel = onAudioLevel;
    take->contextualStrings = cleaned(contextualStrings);
    take->recordsAudio = recordsAudio;
    take->mostRecordedBytes = mostRecordedBytes;
    take->number = marksOf.value_or(marks_.newest());
    return take;
}

QCoro::Task<SpeechEngine::Outcome> SpeechEngine::start(QString localeIdentifier) {
    const Self self = self_;
    const auto take = makeTake(std::move(localeIdentifier));
    // Several may wait at the gate, and the first of them closes it again.
    while (!isRunning() && !idle_->isOpen()) {
        co_await idle_->opened();
        if (self.expired())
            co_return gone();
    }
    if (isRunning())
        co_return Outcome{};
    const Busy busy(idle_);
    const AudioFormat microphone = co_await input_.inputFormat();
    if (self.expired())
        co_return gone();
    if (microphone.channels <= 0 || !(microphone.sampleRate > 0))
        co_return failure(Kind::noInputDevice);
    co_return co_await launch(take, microphone);
}

QCoro::Task<SpeechEngine::Outcome> SpeechEngine::launch(SharedTake take, AudioFormat microphone) {
    const Self self = self_;
    if (auto prepared = co_await prepareModel(take); !prepared)
        co_return prepared;
    if (self.expired())
        co_return gone();
    take->transcriber = recognition_.makeTranscriber(take->locale);
    const auto format = co_await recognition_.bestAvailableAudioFormat(take->transcriber);
    if (self.expired())
        co_return gone();
    if (!format)
        co_return failure(Kind::noAudioFormat);
    take->analyzerFormat = *format;
    // Without a converter the sound goes to the recording only.
    take->converter = converters_.make(microphone, *format);
    take->analyzer = recognition_.makeAnalyzer(take->transcriber);
    co_await applyContext(take);
    if (self.expired())
        co_return gone();
    take->input = recognition_.makeInput();
    if (take->recordsAudio) {
        take->recording =
            RecordingWriter::make(folders_, files_, converters_, microphone, take->mostRecordedBytes);
        if (take->recording)
            recordings_.insert(take->recording);
    }
    if (auto started = co_await startInput(take, microphone); !started)
        co_return started;
    if (self.expired())
        co_return gone();
    take->results = deliverResults(self, take, take->transcriber);
    take->analysis = analyze(self, take, take->analyzer, take->input);
    running_ = take;
    co_return Outcome{};
}

QCoro::Task<SpeechEngine::Outcome> SpeechEngine::prepareModel(SharedTake take) {
    const Self self = self_;
    // It serves for the questions only.
    const auto transcriber = recognition_.makeTranscriber(take->locale);
    const auto supported = co_await recognition_.supportedLocale(take->locale);
    if (self.expired())
        co_return gone();
    if (!supported)
        co_return failure(Kind::unsupportedLocale, take->locale);
    const AssetStatus status = co_await recognition_.assets().status(transcriber);
    if (self.expired())
        co_return gone();
    if (status == AssetStatus::installed)
        co_return Outcome{};
    co_return co_await installModel(take, transcriber);
}

QCoro::Task<SpeechEngine::Outcome>
SpeechEngine::installModel(SharedTake take, std::shared_ptr<SpeechTranscriber> transcriber) {
    const Self self = self_;
    const auto tell = [&take](const QString& status) {
        if (take->onStatus)
            take->onStatus(status);
    };
    tell(
        QCoreApplication::translate("SpeechEngine", "Downloading on-device model for %1…").arg(take->locale));
    const auto request = co_await recognition_.assets().assetInstallationRequest(transcriber);
    if (self.expired())
        co_return gone();
    if (!request)
        co_return failure(Kind::platform, request.error().description);
    if (*request) {
        const auto progress = [self, take](qint64 received, qint64 total) {
            if (!self.expired() && take->onModelProgress)
                take->onModelProgress(received, total);
        };
        const auto installed = co_await (*request)->downloadAndInstall(progress);
        if (self.expired())
            co_return gone();
        if (!installed)
            co_return failure(Kind::platform, installed.error().description);
    }
    tell(QCoreApplication::translate("SpeechEngine", "Model ready"));
    co_return Outcome{};
}

QCoro::Task<void> SpeechEngine::applyContext(SharedTake take) {
    if (take->contextualStrings.isEmpty())
        co_return;
    // A recogniser that refuses the words goes on without them.
    [[maybe_unused]] const auto outcome = co_await take->analyzer->setContext(take->contextualStrings);
}

QCoro::Task<SpeechEngine::Outcome> SpeechEngine::startInput(SharedTake take, AudioFormat microphone) {
    const Self self = self_;
    const auto lost = [self, take = std::weak_ptr(take)](const QString& message) {
        if (const auto its = take.lock(); its && !self.expired())
            report(*its, {Kind::engineFailed, message});
    };
    const auto started = co_await input_.start(microphone, tapFrames, tapBlock(*take), lost);
    if (self.expired())
        co_return gone();
    if (!started) {
        discardRecording(*take);
        co_return failure(Kind::engineFailed, started.error());
    }
    co_return Outcome{};
}

AudioInput::Block SpeechEngine::tapBlock(const Take& take) const {
    // The block owns what it uses: the rest of a take belongs to the main thread.
    return [level = take.onAudioLevel, writer = take.recording, converter = take.converter,
            format = take.analyzerFormat, input = take.input, &marks = marks_, number = take.number,
            isFirst = true](const AudioBuffer& buffer) mutable {
        if (std::exchange(isFirst, false))
            marks.mark(number, Stage::firstSample);
        if (level)
            level(audioLevel(buffer));
        if (writer)
            writer->write(buffer);
        if (!converter)
            return;
        if (auto converted = convert(buffer, *converter, format))
            input->yield(std::move(*converted));
    };
}

QCoro::Task<void> SpeechEngine::deliverResults(Self self, std::weak_ptr<Take> its,
                                               std::shared_ptr<SpeechTranscriber> transcriber) {
    while (true) {
        const auto next = co_await transcriber->nextResult();
        const auto engine = self.lock();
        const auto take = its.lock();
        if (!engine || !take)
            co_return;
        if (!next)
            report(*take, {Kind::platform, next.error().description});
        if (!next || !*next)
            co_return;
        (*engine)->marks_.mark(take->number, Stage::firstPreview);
        if (take->onResult)
            take->onResult((*next)->text, (*next)->isFinal);
    }
}

QCoro::Task<void> SpeechEngine::analyze(Self self, std::weak_ptr<Take> its,
                                        std::shared_ptr<SpeechAnalyzer> analyzer,
                                        std::shared_ptr<AnalyzerInput> input) {
    const auto outcome = co_await analyzer->start(std::move(input));
    const auto take = its.lock();
    if (take && !self.expired() && !outcome)
        report(*take, {Kind::platform, outcome.error().description});
}

void SpeechEngine::report(const Take& take, const SpeechEngineError& error) {
    qCWarning(speechLog) << "speech error of kind" << static_cast<int>(error.kind);
    if (take.onError)
        take.onError(error);
}

QCoro::Task<std::optional<QString>> SpeechEngine::stop() {
    const Self self = self_;
    const auto take = std::exchange(running_, nullptr);
    if (!take)
        co_return std::nullopt;
    std::optional<Busy> busy(idle_);
    co_await input_.stop();
    if (self.expired())
        co_return std::nullopt;
    take->input->finish();
    take->converter.reset();
    // Before the recogniser ends, so that the file is closed as early as can be.
    const std::optional<QString> recording = finishRecording(*take);
    // Whoever waits for the microphone has it now; what was said is recognised meanwhile.
    busy.reset();
    [[maybe_unused]] const auto ignored = co_await take->analyzer->finalizeAndFinishThroughEndOfInput();
    co_await *std::exchange(take->analysis, std::nullopt);
    co_await *std::exchange(take->results, std::nullopt);
    if (!self.expired())
        marks_.mark(take->number, Stage::lastFinal);
    co_return recording;
}

std::optional<QString> SpeechEngine::finishRecording(Take& take) {
    const auto writer = std::exchange(take.recording, nullptr);
    recordings_.erase(writer);
    if (writer && writer->loss() && take.onRecordingCut)
        take.onRecordingCut(*writer->loss());
    return writer ? writer->finish() : std::nullopt;
}

void SpeechEngine::discardRecording(Take& take) {
    if (const auto writer = std::exchange(take.recording, nullptr)) {
        recordings_.erase(writer);
        writer->discard();
    }
}

} // namespace velorin
