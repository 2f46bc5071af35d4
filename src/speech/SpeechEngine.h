/// Turns the microphone into a stream of transcript updates: captures sound, feeds the recogniser, brings a
/// model to the machine when it is missing, reports the level for the waveform, and keeps a recording of the
/// sound when asked to.
///
/// It hands over the raw text of each result and decides nothing about transcripts. One dictation at a time:
///
///     engine.onResult = …;
///     if (auto started = co_await engine.start(u"en-US"_s); !started)
///         show(started.error().description());
///     …
///     const auto recording = co_await engine.stop();   // every result has been delivered
///
/// Main thread. `stop` while a start is under way does nothing. A start that comes while another start, or a
/// stop, is under way waits for it and then looks again.
#pragma once

#include "platform/ApplicationFolders.h"
#include "platform/AudioConverter.h"
#include "platform/AudioFileWriter.h"
#include "platform/AudioInput.h"
#include "platform/Gate.h"
#include "platform/LatencyMarks.h"
#include "platform/SpeechRecognition.h"
#include "speech/RecordingWriter.h"
#include "speech/SpeechEngineError.h"

namespace velorin {

class SpeechEngine final {
public:
    SpeechEngine(AudioInput& input, SpeechRecognition& recognition, AudioConverterFactory& converters,
                 AudioFileFactory& files, const ApplicationFolders& folders, LatencyMarks& marks);
    SpeechEngine(const SpeechEngine&) = delete;
    SpeechEngine& operator=(const SpeechEngine&) = delete;
    ~SpeechEngine();

    /// A volatile result replaces the volatile one before it; results are joined as they are.
    std::function<void(const QString& text, bool isFinal)> onResult;
    /// The dictation stays open until `stop`, which delivers what was heard.
    std::function<void(const SpeechEngineError& error)> onError;
    /// What the user waits for, while a model is being brought.
    std::function<void(const QString& status)> onStatus;
    /// Bytes of the model that are here, of bytes in all.
    std::function<void(qint64 received, qint64 total)> onModelProgress;
    /// Once per buffer, from 0 to 1, on the audio thread. Taken over when a start installs the tap.
    std::function<void(float level)> onAudioLevel;

    /// Words that the speaker is likely to use. Read by `start`.
    QStringList contextualStrings;
    /// Whether to keep a recording. Read by `start`.
    bool recordsAudio = false;

    [[nodiscard]] bool isRunning() const { return isRunning_; }

    /// Ends when sound is flowing. Locale as in "en-US".
    [[nodiscard]] QCoro::Task<tl::expected<void, SpeechEngineError>> start(QString localeIdentifier);

    /// Ends when the last final result has been delivered. Gives the path of the recording, which the caller
    /// removes.
    [[nodiscard]] QCoro::Task<std::optional<QString>> stop();

private:
    using Outcome = tl::expected<void, SpeechEngineError>;
    /// Lives as long as the engine; tasks hold it weakly.
    using Self = std::weak_ptr<SpeechEngine*>;

    QCoro::Task<Outcome> launch(QString localeIdentifier, AudioFormat microphone);
    QCoro::Task<Outcome> prepareModel(QString localeIdentifier);
    QCoro::Task<Outcome> installModel(QString localeIdentifier,
                                      std::shared_ptr<SpeechTranscriber> transcriber);
    QCoro::Task<Outcome> startInput(AudioFormat microphone);
    QCoro::Task<void> applyContext(std::shared_ptr<SpeechAnalyzer> analyzer);
    [[nodiscard]] AudioInput::Block tapBlock() const;
    static QCoro::Task<void> deliverResults(Self self, std::shared_ptr<SpeechTranscriber> transcriber);
    static QCoro::Task<void> analyze(Self self, std::shared_ptr<SpeechAnalyzer> analyzer,
                                     std::shared_ptr<AnalyzerInput> input);
    void report(const SpeechEngineError& error) const;
    std::optional<QString> finishRecording();
    void discardRecording();

    AudioInput& input_;
    SpeechRecognition& recognition_;
    AudioConverterFactory& converters_;
    AudioFileFactory& files_;
    const ApplicationFolders& folders_;
    LatencyMarks& marks_;

    std::shared_ptr<SpeechAnalyzer> analyzer_;
    std::shared_ptr<SpeechTranscriber> transcriber_;
    std::shared_ptr<AnalyzerInput> continuation_;
    std::shared_ptr<AudioConverter> converter_;
    std::optional<AudioFormat> analyzerFormat_;
    std::optional<QCoro::Task<void>> analysisTask_;
    std::optional<QCoro::Task<void>> resultsTask_;
    std::shared_ptr<RecordingWriter> recordingWriter_;
    bool isRunning_ = false;

    std::shared_ptr<Gate> idle_;
    std::shared_ptr<SpeechEngine*> self_;
};

} // namespace velorin
