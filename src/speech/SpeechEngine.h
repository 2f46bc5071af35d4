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
/// What a dictation has of its own (the recogniser's stream, the recording, the callbacks as they were when
/// `start` was called) stays its own: while the last words of one are still being recognised the next one may
/// be listening, and each is told its own results. Only the microphone is one: a start waits for the start
/// or the closing of the microphone that is under way, and for nothing else.
///
/// Main thread. `stop` while a start is under way does nothing.
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

#include <set>

namespace velorin {

class SpeechEngine final {
public:
    SpeechEngine(AudioInput& input, SpeechRecognition& recognition, AudioConverterFactory& converters,
                 AudioFileFactory& files, const ApplicationFolders& folders, LatencyMarks& marks);
    SpeechEngine(const SpeechEngine&) = delete;
    SpeechEngine& operator=(const SpeechEngine&) = delete;
    ~SpeechEngine();

    // The callbacks, the words and the wish for a recording are taken over when `start` is called.

    /// A volatile result replaces the volatile one before it; results are joined as they are.
    std::function<void(const QString& text, bool isFinal)> onResult;
    /// The dictation stays open until `stop`, which delivers what was heard.
    std::function<void(const SpeechEngineError& error)> onError;
    /// What the user waits for, while a model is being brought.
    std::function<void(const QString& status)> onStatus;
    /// Bytes of the model that are here, of bytes in all.
    std::function<void(qint64 received, qint64 total)> onModelProgress;
    /// The recording that `stop` gives is not all of what was said. Within `stop`.
    std::function<void(RecordingWriter::Loss loss)> onRecordingCut;
    /// Once per buffer, from 0 to 1, on the audio thread.
    std::function<void(float level)> onAudioLevel;

    /// Words that the speaker is likely to use.
    QStringList contextualStrings;
    /// Whether to keep a recording.
    bool recordsAudio = false;
    /// How many bytes of it, at most; none for as many as come.
    std::optional<qint64> mostRecordedBytes;
    /// Whose stages are marked; none for the newest dictation.
    std::optional<LatencyMarks::Number> marksOf;

    /// Whether the microphone is open; not while the last words are being recognised.
    [[nodiscard]] bool isRunning() const { return running_ != nullptr; }

    /// Ends when sound is flowing. Locale as in "en-US". Ends at once during a run.
    [[nodiscard]] QCoro::Task<tl::expected<void, SpeechEngineError>> start(QString localeIdentifier);

    /// Closes the microphone, and ends when the last final result has been delivered. Gives the path of the
    /// recording, which the caller removes.
    [[nodiscard]] QCoro::Task<std::optional<QString>> stop();

private:
    using Outcome = tl::expected<void, SpeechEngineError>;
    /// Lives as long as the engine; tasks hold it weakly.
    using Self = std::weak_ptr<SpeechEngine*>;

    /// What one dictation has of its own, from its start to its last result.
    struct Take;
    using SharedTake = std::shared_ptr<Take>;

    [[nodiscard]] SharedTake makeTake(QString localeIdentifier) const;
    QCoro::Task<Outcome> launch(SharedTake take, AudioFormat microphone);
    QCoro::Task<Outcome> prepareModel(SharedTake take);
    QCoro::Task<Outcome> installModel(SharedTake take, std::shared_ptr<SpeechTranscriber> transcriber);
    QCoro::Task<Outcome> startInput(SharedTake take, AudioFormat microphone);
    static QCoro::Task<void> applyContext(SharedTake take);
    [[nodiscard]] AudioInput::Block tapBlock(const Take& take) const;
    // A take keeps these two, so they do not keep it.
    static QCoro::Task<void> deliverResults(Self self, std::weak_ptr<Take> its,
                                            std::shared_ptr<SpeechTranscriber> transcriber);
    static QCoro::Task<void> analyze(Self self, std::weak_ptr<Take> its,
                                     std::shared_ptr<SpeechAnalyzer> analyzer,
                                     std::shared_ptr<AnalyzerInput> input);
    static void report(const Take& take, const SpeechEngineError& error);
    std::optional<QString> finishRecording(Take& take);
    void discardRecording(Take& take);

    AudioInput& input_;
    SpeechRecognition& recognition_;
    AudioConverterFactory& converters_;
    AudioFileFactory& files_;
    const ApplicationFolders& folders_;
    LatencyMarks& marks_;

    SharedTake running_; ///< That has the microphone.
    /// Those whose files nobody else knows of yet.
    std::set<std::shared_ptr<RecordingWriter>> recordings_;

    std::shared_ptr<Gate> idle_; ///< Closed while the microphone is being opened or closed.
    std::shared_ptr<SpeechEngine*> self_;
};

} // namespace velorin
