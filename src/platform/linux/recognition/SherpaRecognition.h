/// The recogniser, on this machine and on one thread of its own: finds the model of a language, loads it when
/// a dictation begins, streams through it, and gives its memory back after ten minutes without a dictation.
#pragma once

#include "platform/Clock.h"
#include "platform/SpeechRecognition.h"
#include "platform/linux/recognition/ModelStore.h"
#include "platform/linux/recognition/RecognitionWorker.h"

#include <QNetworkAccessManager>
#include <QObject>

namespace velorin {

class SherpaRecognition final : public SpeechRecognition, private AssetInventory {
public:
    static constexpr std::chrono::minutes keepsModelFor{10};

    /// `userFolder` is where models lie that the user has brought here.
    SherpaRecognition(Clock& clock, QStringList programFolders, QString userFolder);
    ~SherpaRecognition() override;

    [[nodiscard]] QCoro::Task<std::optional<QString>>
    supportedLocale(QString equivalentToIdentifier) override;
    [[nodiscard]] std::shared_ptr<SpeechTranscriber> makeTranscriber(QString localeIdentifier) override;
    [[nodiscard]] QCoro::Task<std::optional<AudioFormat>>
    bestAvailableAudioFormat(std::shared_ptr<SpeechTranscriber> transcriber) override;
    [[nodiscard]] std::shared_ptr<SpeechAnalyzer>
    makeAnalyzer(std::shared_ptr<SpeechTranscriber> transcriber) override;
    [[nodiscard]] std::shared_ptr<AnalyzerInput> makeInput() override;
    [[nodiscard]] AssetInventory& assets() override { return *this; }

private:
    class Analyzer;

    [[nodiscard]] QCoro::Task<AssetStatus> status(std::shared_ptr<SpeechTranscriber> transcriber) override;
    [[nodiscard]] RecognitionTask<std::shared_ptr<AssetInstallationRequest>>
    assetInstallationRequest(std::shared_ptr<SpeechTranscriber> transcriber) override;

    [[nodiscard]] QNetworkAccessManager& network();
    void hasBegun();
    void hasEnded();
    void keepModelForAWhile();

    Clock& clock_;
    std::shared_ptr<ModelStore> store_;
    std::unique_ptr<QNetworkAccessManager> network_; ///< From the first download on.
    Subscription release_;
    int dictations_ = 0;
    /// Receives what the worker sends to the main thread.
    QObject mainThread_;
    RecognitionWorker worker_;
};

} // namespace velorin
