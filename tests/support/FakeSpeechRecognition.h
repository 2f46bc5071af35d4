/// A recogniser that hears what the test tells it to have heard.
///
///     FakeSpeechRecognition recognition;
///     recognition.statusGate.close();                 // a start waits in the question for the model …
///     recognition.statusGate.open();                  // … until here
///     recognition.deliver(u"hello"_s, false);         // a volatile result of the newest transcriber
///     recognition.finalResults = {{u" world"_s, true}};   // what the end of the input brings
#pragma once

#include "platform/Gate.h"
#include "platform/SpeechRecognition.h"

#include <deque>
#include <utility>
#include <vector>

namespace velorin {

struct FakeTranscriber final : SpeechTranscriber {
    QString locale;
    Gate isRecognised{true}; ///< The end of its input is answered once this is open.
    std::optional<std::vector<TranscriptionResult>> finalResults; ///< In place of the fake's.
    std::deque<TranscriptionResult> results;
    std::optional<QString> error;
    bool ended = false;
    Gate hasNews{false};

    RecognitionTask<std::optional<TranscriptionResult>> nextResult() override {
        while (results.empty() && !error && !ended) {
            hasNews.close();
            co_await hasNews.opened();
        }
        if (!results.empty()) {
            std::optional<TranscriptionResult> next = std::move(results.front());
            results.pop_front();
            co_return next;
        }
        if (error)
            co_return tl::unexpected(RecognitionError{*error});
        co_return std::optional<TranscriptionResult>{};
    }
};

struct FakeAnalyzerInput final : AnalyzerInput {
    std::vector<AudioBuffer> buffers;
    bool finished = false;

    void yield(AudioBuffer buffer) override { buffers.push_back(std::move(buffer)); }
    void finish() override { finished = true; }
};

struct FakeSpeechRecognition final : SpeechRecognition, AssetInventory {
    std::optional<QString> supported = QStringLiteral("en-US");
    AssetStatus assetStatus = AssetStatus::installed;
    Gate statusGate{true};
    bool hasRequest = true;
    std::optional<QString> requestError;
    std::optional<QString> downloadError;
    Gate downloadGate{true};
    std::optional<AudioFormat> bestFormat = AudioFormat{16000, 1, AudioFormat::Samples::float32};
    std::optional<QString> contextError;
    std::optional<QString> analysisError;
    std::optional<QString> finalizationError;
    Gate finalizationGate{true};
    bool isSlow = false; ///< New transcribers begin with the end of their input unanswered.
    /// Delivered, then the results end, when the newest transcriber is told that its input is complete.
    std::vector<TranscriptionResult> finalResults;

    /// What was asked, in order, by name.
    std::vector<QString> asked;
    std::vector<QStringList> contexts;
    std::vector<std::shared_ptr<FakeTranscriber>> transcribers;
    std::vector<std::shared_ptr<FakeAnalyzerInput>> inputs;
    AssetInstallationRequest::Progress progress;

    void deliver(const QString& text, bool isFinal) {
        transcribers.back()->results.push_back({text, isFinal});
        transcribers.back()->hasNews.open();
    }
    void fail(const QString& message) {
        transcribers.back()->error = message;
        transcribers.back()->hasNews.open();
    }

    QCoro::Task<std::optional<QString>> supportedLocale(QString identifier) override {
        asked.push_back(QStringLiteral("supportedLocale ") + identifier);
        co_return std::as_const(supported);
    }
    std::shared_ptr<SpeechTranscriber> makeTranscriber(QString locale) override {
        asked.push_back(QStringLiteral("makeTranscriber ") + locale);
        transcribers.push_back(std::make_shared<FakeTranscriber>());
        transcribers.back()->locale = locale;
        if (isSlow)
            transcribers.back()->isRecognised.close();
        return transcribers.back();
    }
    QCoro::Task<std::optional<AudioFormat>>
    bestAvailableAudioFormat(std::shared_ptr<SpeechTranscriber> /*transcriber*/) override {
        asked.push_back(QStringLiteral("bestAvailableAudioFormat"));
        co_return std::as_const(bestFormat);
    }
    std::shared_ptr<SpeechAnalyzer> makeAnalyzer(std::shared_ptr<SpeechTranscriber> transcriber) override {
        asked.push_back(QStringLiteral("makeAnalyzer"));
        return std::make_shared<Analyzer>(*this, std::static_pointer_cast<FakeTranscriber>(transcriber));
    }
    std::shared_ptr<AnalyzerInput> makeInput() override {
        asked.push_back(QStringLiteral("makeInput"));
        inputs.push_back(std::make_shared<FakeAnalyzerInput>());
        return inputs.back();
    }
    AssetInventory& assets() override { return *this; }

    QCoro::Task<AssetStatus> status(std::shared_ptr<SpeechTranscriber> /*transcriber*/) override {
        asked.push_back(QStringLiteral("status"));
        co_await statusGate.opened();
        co_return assetStatus;
    }
    RecognitionTask<std::shared_ptr<AssetInstallationRequest>>
    assetInstallationRequest(std::shared_ptr<SpeechTranscriber> /*transcriber*/) override {
        asked.push_back(QStringLiteral("assetInstallationRequest"));
        if (requestError)
            co_return tl::unexpected(RecognitionError{*requestError});
        std::shared_ptr<AssetInstallationRequest> request;
        if (hasRequest)
            request = std::make_shared<Request>(*this);
        co_return request;
    }

private:
    struct Request final : AssetInstallationRequest {
        explicit Request(FakeSpeechRecognition& fake) : owner(fake) {}
        RecognitionTask<void> downloadAndInstall(Progress progress) override {
            owner.asked.push_back(QStringLiteral("downloadAndInstall"));
            owner.progress = std::move(progress);
            co_await owner.downloadGate.opened();
            if (owner.downloadError)
                co_return tl::unexpected(RecognitionError{*owner.downloadError});
            co_return tl::expected<void, RecognitionError>{};
        }
        FakeSpeechRecognition& owner;
    };

    struct Analyzer final : SpeechAnalyzer {
        Analyzer(FakeSpeechRecognition& fake, std::shared_ptr<FakeTranscriber> its)
            : owner(fake), transcriber(std::move(its)) {}
        RecognitionTask<void> setContext(QStringList strings) override {
            owner.asked.push_back(QStringLiteral("setContext"));
            owner.contexts.push_back(strings);
            co_return outcome(owner.contextError);
        }
        RecognitionTask<void> start(std::shared_ptr<AnalyzerInput> /*input*/) override {
            owner.asked.push_back(QStringLiteral("analyze"));
            co_return outcome(owner.analysisError);
        }
        RecognitionTask<void> finalizeAndFinishThroughEndOfInput() override {
            owner.asked.push_back(QStringLiteral("finalize"));
            co_await owner.finalizationGate.opened();
            co_await transcriber->isRecognised.opened();
            for (const TranscriptionResult& result : transcriber->finalResults.value_or(owner.finalResults))
                transcriber->results.push_back(result);
            transcriber->ended = true;
            transcriber->hasNews.open();
            co_return outcome(owner.finalizationError);
        }
        static tl::expected<void, RecognitionError> outcome(const std::optional<QString>& error) {
            if (error)
                return tl::unexpected(RecognitionError{*error});
            return {};
        }
        FakeSpeechRecognition& owner;
        std::shared_ptr<FakeTranscriber> transcriber;
    };
};

} // namespace velorin
