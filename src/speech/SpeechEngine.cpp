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

/// Keeps other starts out while one start or stop is under way.
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

SpeechEngine::SpeechEngine(AudioInput& input, SpeechRecognition& recognition,
                           AudioConverterFactory& converters, AudioFileFactory& files,
                           const ApplicationFolders& folders, LatencyMarks& marks)
    : input_(input), recognition_(recognition), converters_(converters), files_(files), folders_(folders),
      marks_(marks), idle_(std::make_shared<Gate>(true)), self_(std::make_shared<SpeechEngine*>(this)) {}

SpeechEngine::~SpeechEngine() {
    // Whoever waits at the gate is resumed by its end, and must then see that the engine is gone.
    self_.reset();
    // The audio thread may still be writing: the file goes, the writer follows with the tap.
    if (recordingWriter_)
        QFile::remove(recordingWriter_->path());
}

QCoro::Task<SpeechEngine::Outcome> SpeechEngine::start(QString localeIdentifier) {
    const Self self = self_;
    // Several may wait at the gate, and the first of them closes it again.
    while (!isRunning_ && !idle_->isOpen()) {
        co_await idle_->opened();
        if (self.expired())
            co_return gone();
    }
    if (isRunning_)
        co_return Outcome{};
    const Busy busy(idle_);
    const AudioFormat microphone = co_await input_.inputFormat();
    if (self.expired())
        co_return gone();
    if (microphone.channels <= 0 || !(microphone.sampleRate > 0))
        co_return failure(Kind::noInputDevice);
    co_return co_await launch(std::move(localeIdentifier), microphone);
}

QCoro::Task<SpeechEngine::Outcome> SpeechEngine::launch(QString localeIdentifier, AudioFormat microphone) {
    const Self self = self_;
    if (auto prepared = co_await prepareModel(localeIdentifier); !prepared)
        co_return prepared;
    if (self.expired())
        co_return gone();
    transcriber_ = recognition_.makeTranscriber(localeIdentifier);
    auto format = co_await recognition_.bestAvailableAudioFormat(transcriber_);
    if (self.expired())
        co_return gone();
    if (!format)
        co_return failure(Kind::noAudioFormat);
    analyzerFormat_ = format;
    // Without a converter the sound goes to the recording only.
    converter_ = converters_.make(microphone, *format);
    analyzer_ = recognition_.makeAnalyzer(transcriber_);
    co_await applyContext(analyzer_);
    if (self.expired())
        co_return gone();
    continuation_ = recognition_.makeInput();
    if (recordsAudio) {
        discardRecording();
        recordingWriter_ = RecordingWriter::make(folders_, files_, converters_, microphone);
    }
    if (auto started = co_await startInput(microphone); !started)
        co_return started;
    if (self.expired())
        co_return gone();
    resultsTask_ = deliverResults(self, transcriber_);
    analysisTask_ = analyze(self, analyzer_, continuation_);
    isRunning_ = true;
    co_return Outcome{};
}

QCoro::Task<SpeechEngine::Outcome> SpeechEngine::prepareModel(QString localeIdentifier) {
    const Self self = self_;
    // It serves for the questions only.
    const auto transcriber = recognition_.makeTranscriber(localeIdentifier);
    const auto supported = co_await recognition_.supportedLocale(localeIdentifier);
    if (self.expired())
        co_return gone();
    if (!supported)
        co_return failure(Kind::unsupportedLocale, localeIdentifier);
    const AssetStatus status = co_await recognition_.assets().status(transcriber);
    if (self.expired())
        co_return gone();
    if (status == AssetStatus::installed)
        co_return Outcome{};
    co_return co_await installModel(std::move(localeIdentifier), transcriber);
}

QCoro::Task<SpeechEngine::Outcome>
SpeechEngine::installModel(QString localeIdentifier, std::shared_ptr<SpeechTranscriber> transcriber) {
    const Self self = self_;
    const auto tell = [this](const QString& status) {
        if (const auto callback = onStatus)
            callback(status);
    };
    tell(QCoreApplication::translate("SpeechEngine", "Downloading on-device model for %1…")
             .arg(localeIdentifier));
    const auto request = co_await recognition_.assets().assetInstallationRequest(transcriber);
    if (self.expired())
        co_return gone();
    if (!request)
        co_return failure(Kind::platform, request.error().description);
    if (*request) {
        const auto progress = [self](qint64 received, qint64 total) {
            if (const auto engine = self.lock(); engine && (*engine)->onModelProgress)
                (*engine)->onModelProgress(received, total);
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

QCoro::Task<void> SpeechEngine::applyContext(std::shared_ptr<SpeechAnalyzer> analyzer) {
    const QStringList strings = cleaned(contextualStrings);
    if (strings.isEmpty())
        co_return;
    // A recogniser that refuses the words goes on without them.
    [[maybe_unused]] const auto outcome = co_await analyzer->setContext(strings);
}

QCoro::Task<SpeechEngine::Outcome> SpeechEngine::startInput(AudioFormat microphone) {
    const Self self = self_;
    const auto lost = [self](const QString& message) {
        if (const auto engine = self.lock())
            (*engine)->report({Kind::engineFailed, message});
    };
    const auto started = co_await input_.start(microphone, tapFrames, tapBlock(), lost);
    if (self.expired())
        co_return gone();
    if (!started) {
        discardRecording();
        co_return failure(Kind::engineFailed, started.error());
    }
    co_return Outcome{};
}

AudioInput::Block SpeechEngine::tapBlock() const {
    // The block owns what it uses: the engine's fields belong to the main thread.
    return
        [level = onAudioLevel, writer = recordingWriter_, converter = converter_, format = *analyzerFormat_,
         continuation = continuation_, &marks = marks_, isFirst = true](const AudioBuffer& buffer) mutable {
            if (std::exchange(isFirst, false))
                marks.mark(Stage::firstSample);
            if (level)
                level(audioLevel(buffer));
            if (writer)
                writer->write(buffer);
            if (!converter)
                return;
            if (auto converted = convert(buffer, *converter, format))
                continuation->yield(std::move(*converted));
        };
}

QCoro::Task<void> SpeechEngine::deliverResults(Self self, std::shared_ptr<SpeechTranscriber> transcriber) {
    while (true) {
        const auto next = co_await transcriber->nextResult();
        const auto engine = self.lock();
        if (!engine)
            co_return;
        if (!next)
            (*engine)->report({Kind::platform, next.error().description});
        if (!next || !*next)
            co_return;
        (*engine)->marks_.mark(Stage::firstPreview);
        // The receiver may replace the callback while it runs.
        if (const auto callback = (*engine)->onResult)
            callback((*next)->text, (*next)->isFinal);
    }
}

QCoro::Task<void> SpeechEngine::analyze(Self self, std::shared_ptr<SpeechAnalyzer> analyzer,
                                        std::shared_ptr<AnalyzerInput> input) {
    const auto outcome = co_await analyzer->start(std::move(input));
    const auto engine = self.lock();
    if (engine && !outcome)
        (*engine)->report({Kind::platform, outcome.error().description});
}

void SpeechEngine::report(const SpeechEngineError& error) const {
    qCWarning(speechLog) << "speech error of kind" << static_cast<int>(error.kind);
    if (const auto callback = onError)
        callback(error);
}

QCoro::Task<std::optional<QString>> SpeechEngine::stop() {
    const Self self = self_;
    if (!isRunning_)
        co_return std::nullopt;
    isRunning_ = false;
    const Busy busy(idle_);
    co_await input_.stop();
    if (self.expired())
        co_return std::nullopt;
    if (const auto continuation = std::exchange(continuation_, nullptr))
        continuation->finish();
    converter_.reset();
    // Before the recogniser ends, so that the file is closed as early as can be.
    std::optional<QString> recording = finishRecording();
    const auto analysis = std::exchange(analysisTask_, std::nullopt);
    const auto results = std::exchange(resultsTask_, std::nullopt);
    if (const auto analyzer = analyzer_) [[maybe_unused]]
        const auto ignored = co_await analyzer->finalizeAndFinishThroughEndOfInput();
    if (analysis)
        co_await *analysis;
    if (results)
        co_await *results;
    if (self.expired())
        co_return recording;
    marks_.mark(Stage::lastFinal);
    analyzer_.reset();
    transcriber_.reset();
    co_return recording;
}

std::optional<QString> SpeechEngine::finishRecording() {
    const auto writer = std::exchange(recordingWriter_, nullptr);
    return writer ? writer->finish() : std::nullopt;
}

void SpeechEngine::discardRecording() {
    if (const auto writer = std::exchange(recordingWriter_, nullptr))
        writer->discard();
}

} // namespace velorin
