/// What AI can make of a dictation when it ends. A port: sessions are tested without a provider.
///
/// The waits resume on the main thread. A session that has been replaced by a newer one in the meantime
/// (its generation is no longer the model's) leaves no trace.
#pragma once

#include "delivery/SelectionSnapshot.h"

#include <QCoro/QCoroTask>

#include <optional>

namespace velorin {

class FinishingOperations {
public:
    virtual ~FinishingOperations() = default;

    /// Whether a provider is ready for use.
    [[nodiscard]] virtual bool aiConfigured() const = 0;
    /// Whether recordings go to the provider for transcription.
    [[nodiscard]] virtual bool providerTranscriptionActive() const = 0;

    /// Replaces the transcript by the provider's, and deletes the file whatever happens.
    virtual QCoro::Task<> transcribeWithProvider(QString audioPath, qint64 generation) = 0;
    virtual QCoro::Task<> finishGenerate(QString instruction, std::optional<QString> context,
                                         qint64 generation) = 0;
    virtual QCoro::Task<> finishEdit(SelectionSnapshot selection) = 0;
    virtual QCoro::Task<> finishPolish(QString base, QString raw, qint64 generation) = 0;
};

} // namespace velorin
