/// What AI makes of a dictation that ends: its polished form, a rewritten selection, new text, or the
/// provider's transcript.
///
/// The user's words are never lost because of AI: a polish that fails, comes too late or is not to be trusted
/// leaves the plain text, a transcription likewise the recogniser's. Nothing is shown, kept or inserted here.
/// Main thread.
#pragma once

#include "ai/AIService.h"
#include "core/FinishingOperations.h"

namespace velorin {

class AISettings;
class AppState;
class MainTasks;

class FinishingFlows final : public FinishingOperations {
public:
    /// What the flows reach; all of it outlives them.
    struct Neighbours {
        AIService& service;
        const AISettings& settings;
        const LanguageModel& languageModel;
        MainTasks& tasks;
    };

    FinishingFlows(const AppState& state, Neighbours neighbours) : state_(state), near_(neighbours) {}

    [[nodiscard]] bool aiConfigured() const override;
    [[nodiscard]] bool providerTranscriptionActive() const override;
    QCoro::Task<Transcription> transcribed(SharedDictation dictation, Asking asking) override;
    QCoro::Task<Ending> generated(SharedDictation dictation, QString instruction,
                                  std::optional<QString> context, Asking asking) override;
    QCoro::Task<Ending> edited(SharedDictation dictation, QString instruction, Asking asking) override;
    QCoro::Task<Ending> polished(SharedDictation dictation, QString base, Asking asking) override;

    /// A line for the user; failures are lines as well.
    QCoro::Task<QString> testAIConnection();

private:
    [[nodiscard]] std::optional<AIConfiguration> configuration() const;
    [[nodiscard]] QString notConfiguredMessage() const;

    const AppState& state_;
    Neighbours near_;
};

} // namespace velorin
