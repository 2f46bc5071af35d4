/// The recogniser: which languages it has, what it must install for one, and the transcription of one
/// dictation. Main thread, except for `AnalyzerInput::yield`.
///
///     auto transcriber = recognition.makeTranscriber(u"en-US"_s);
///     auto analyzer = recognition.makeAnalyzer(transcriber);
///     auto input = recognition.makeInput();
///     auto analysis = analyzer->start(input);                  // runs until the end of the input
///     input->yield(buffer);                                    // audio thread, again and again
///     auto result = co_await transcriber->nextResult();        // again and again, until there is none
///     input->finish();
///     co_await analyzer->finalizeAndFinishThroughEndOfInput(); // the last results come
#pragma once

#include "platform/AudioBuffer.h"

#include <QCoro/QCoroTask>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>
#include <tl/expected.hpp>

namespace velorin {

/// What went wrong, as a sentence for the user.
struct RecognitionError {
    QString description;
};

template <typename T>
using RecognitionTask = QCoro::Task<tl::expected<T, RecognitionError>>;

/// A result replaces the volatile one before it. Texts of final results, and the volatile one after them,
/// are joined as they are: whatever must stand between them is part of them.
struct TranscriptionResult {
    QString text;
    bool isFinal = false;

    bool operator==(const TranscriptionResult&) const = default;
};

/// One dictation's transcription in one language.
class SpeechTranscriber {
public:
    virtual ~SpeechTranscriber() = default;

    /// The next result, in order; nothing once the last one has been given. One caller at a time. An error
    /// ends the results.
    [[nodiscard]] virtual RecognitionTask<std::optional<TranscriptionResult>> nextResult() = 0;
};

/// The stream of sound into an analyzer. It holds any amount.
class AnalyzerInput {
public:
    virtual ~AnalyzerInput() = default;

    /// Any one thread. Never waits, never refuses; does nothing after `finish`.
    virtual void yield(AudioBuffer buffer) = 0;

    /// No more sound comes.
    virtual void finish() = 0;
};

/// Listens to one stream of sound on behalf of one transcriber.
class SpeechAnalyzer {
public:
    virtual ~SpeechAnalyzer() = default;

    /// Words that the speaker is likely to use.
    [[nodiscard]] virtual RecognitionTask<void> setContext(QStringList contextualStrings) = 0;

    /// Analyses the input; ends when the analysis does.
    [[nodiscard]] virtual RecognitionTask<void> start(std::shared_ptr<AnalyzerInput> input) = 0;

    /// Ends once the whole input has been analysed and the last result is on its way; the transcriber's
    /// results end after it.
    [[nodiscard]] virtual RecognitionTask<void> finalizeAndFinishThroughEndOfInput() = 0;
};

enum class AssetStatus { unsupported, supported, downloading, installed };

/// Something that must be brought to this machine before a transcriber can work.
class AssetInstallationRequest {
public:
    /// Bytes that are here, of bytes in all.
    using Progress = std::function<void(qint64 received, qint64 total)>;

    virtual ~AssetInstallationRequest() = default;

    /// Main thread, as is `progress`, which may be empty.
    [[nodiscard]] virtual RecognitionTask<void> downloadAndInstall(Progress progress) = 0;
};

class AssetInventory {
public:
    virtual ~AssetInventory() = default;

    [[nodiscard]] virtual QCoro::Task<AssetStatus> status(std::shared_ptr<SpeechTranscriber> transcriber) = 0;

    /// Null when there is nothing to install.
    [[nodiscard]] virtual RecognitionTask<std::shared_ptr<AssetInstallationRequest>>
    assetInstallationRequest(std::shared_ptr<SpeechTranscriber> transcriber) = 0;
};

class SpeechRecognition {
public:
    virtual ~SpeechRecognition() = default;

    /// The supported locale that is the same as this one or nearest to it; nothing where there is none.
    [[nodiscard]] virtual QCoro::Task<std::optional<QString>>
    supportedLocale(QString equivalentToIdentifier) = 0;

    /// Gives volatile results as well as final ones. Making one costs and loads nothing.
    [[nodiscard]] virtual std::shared_ptr<SpeechTranscriber> makeTranscriber(QString localeIdentifier) = 0;

    /// The format in which the transcriber wants its sound.
    [[nodiscard]] virtual QCoro::Task<std::optional<AudioFormat>>
    bestAvailableAudioFormat(std::shared_ptr<SpeechTranscriber> transcriber) = 0;

    [[nodiscard]] virtual std::shared_ptr<SpeechAnalyzer>
    makeAnalyzer(std::shared_ptr<SpeechTranscriber> transcriber) = 0;

    [[nodiscard]] virtual std::shared_ptr<AnalyzerInput> makeInput() = 0;

    [[nodiscard]] virtual AssetInventory& assets() = 0;
};

} // namespace velorin
