/// The calls to the provider of the AI features: any server that speaks the OpenAI interface, or the
/// machine's own model.
///
///     const AIResult reply = co_await service.polish(text, profile, configuration);
///     if (!reply)
///         show(description(reply.error()));
///
/// Every task makes one request, tries nothing twice, and gives a text or a failure. It keeps nothing, so any
/// number may run at once; whoever waits looks afterwards whether the result is still wanted. Replies are
/// read on another thread; everything else is on the main thread. Logs hold hosts, models, lengths and times.
#pragma once

#include "ai/AIConfiguration.h"
#include "ai/Prompts.h"
#include "ai/ServiceError.h"
#include "platform/HttpSession.h"
#include "platform/LanguageModel.h"
#include "platform/UserAccount.h"

#include <QCoro/QCoroTask>

namespace velorin {

class AIService final {
public:
    using Configuration = AIConfiguration;

    AIService(HttpSession& session, HttpSession& transcriptionSession, LanguageModel& languageModel,
              UserAccount& account)
        : session_(session), transcriptionSession_(transcriptionSession), languageModel_(languageModel),
          account_(account) {}

    /// Cleans a dictated transcript.
    QCoro::Task<AIResult> polish(QString transcript, ContextProfile profile, Configuration configuration);
    /// Applies a spoken instruction to selected text.
    QCoro::Task<AIResult> edit(QString selection, QString instruction, ContextProfile profile,
                               Configuration configuration);
    /// Writes new text from a spoken instruction. May be empty: a reply of placeholders only.
    QCoro::Task<AIResult> generate(QString instruction, std::optional<QString> context,
                                   ContextProfile profile, Configuration configuration);
    /// Proves that a configuration answers; gives the model's reply.
    QCoro::Task<AIResult> test(Configuration configuration);

    /// What was said in a recording (WAV). `prompt` names likely words, `language` is a code of two letters;
    /// the configuration's own model is not used. The file is read and left where it is.
    QCoro::Task<AIResult> transcribe(QString audioPath, QString model, std::optional<QString> prompt,
                                     std::optional<QString> language, Configuration configuration);

    /// Why the machine's own model can or cannot be used now, as a sentence.
    [[nodiscard]] QString appleIntelligenceAvailabilityDescription() const;

private:
    QCoro::Task<AIResult> complete(Prompt prompt, Configuration configuration, int maxTokens);
    QCoro::Task<AIResult> completeHTTP(Prompt prompt, Configuration configuration, int maxTokens);
    QCoro::Task<AIResult> completeOnDevice(Prompt prompt, int maxTokens);

    HttpSession& session_;
    HttpSession& transcriptionSession_;
    LanguageModel& languageModel_;
    UserAccount& account_;
};

} // namespace velorin
