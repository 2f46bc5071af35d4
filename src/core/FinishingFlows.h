/// What AI makes of a dictation that ends: its polished form, a rewritten selection, new text, or the
/// provider's transcript.
///
/// The user's words are never lost because of AI: a polish that fails or is not to be trusted leaves the
/// plain text, a transcription that fails the recogniser's, and a rewrite whose selection has gone its result
/// in the history. Every flow looks after each wait whether the session that it works for is still the
/// model's; if not, it leaves no trace. Main thread.
#pragma once

#include "ai/AIService.h"
#include "core/FinishingOperations.h"

namespace velorin {

class AISettings;
class AppModel;
class LatencyMarks;
class Overlay;
class SelectionOperations;

class FinishingFlows final : public FinishingOperations {
public:
    /// What the flows reach; all of it outlives them.
    struct Neighbours {
        AIService& service;
        const AISettings& settings;
        SelectionOperations& selection;
        Overlay& hud;
        const LanguageModel& languageModel;
        LatencyMarks& marks;
    };

    FinishingFlows(AppModel& model, Neighbours neighbours) : model_(model), near_(neighbours) {}

    [[nodiscard]] bool aiConfigured() const override;
    [[nodiscard]] bool providerTranscriptionActive() const override;
    QCoro::Task<> transcribeWithProvider(QString audioPath, qint64 generation) override;
    QCoro::Task<> finishGenerate(QString instruction, std::optional<QString> context,
                                 qint64 generation) override;
    QCoro::Task<> finishEdit(SelectionSnapshot selection) override;
    QCoro::Task<> finishPolish(QString base, QString raw, qint64 generation) override;

    /// A line for the user; failures are lines as well.
    QCoro::Task<QString> testAIConnection();

private:
    [[nodiscard]] std::optional<AIConfiguration> configuration() const;
    [[nodiscard]] QString notConfiguredMessage() const;
    /// `status` keeps its value unless the flow had begun to ask.
    void endWithError(const QString& message);
    void endAsked(const QString& what, const AIFailure& failure);
    void keep(const QString& instruction, const QString& reply, const QString& kind);
    void deliver(const QString& reply);
    void hideUnlessRecording();

    AppModel& model_;
    Neighbours near_;
};

} // namespace velorin
