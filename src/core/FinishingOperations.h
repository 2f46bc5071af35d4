/// What AI can make of a dictation when it ends. A port: sessions are tested without a provider.
///
/// Each takes a dictation and gives what it comes to; it shows, keeps and inserts nothing itself. The waits
/// resume on the main thread. What a newer dictation overtakes gives what the machine has by itself, at once;
/// only what answers an instruction is waited for to the end, since nothing else could answer it.
#pragma once

#include "core/Dictation.h"
#include "core/Ending.h"
#include "core/ModelTypes.h"

#include <QCoro/QCoroTask>

#include <functional>

namespace velorin {

class FinishingOperations {
public:
    /// Called when it begins to be worth showing, with what is being done.
    using Asking = std::function<void(AIProcessing)>;

    /// The provider's words, none when the recogniser's are to be taken; and why, if it is its fault.
    struct Transcription {
        std::optional<QString> text;
        std::optional<QString> problem;
    };

    virtual ~FinishingOperations() = default;

    /// Whether a provider is ready for use.
    [[nodiscard]] virtual bool aiConfigured() const = 0;
    /// Whether recordings go to the provider for transcription.
    [[nodiscard]] virtual bool providerTranscriptionActive() const = 0;

    /// Reads the dictation's recording, and leaves it where it is.
    virtual QCoro::Task<Transcription> transcribed(SharedDictation dictation, Asking asking) = 0;
    virtual QCoro::Task<Ending> generated(SharedDictation dictation, QString instruction,
                                          std::optional<QString> context, Asking asking) = 0;
    virtual QCoro::Task<Ending> edited(SharedDictation dictation, QString instruction, Asking asking) = 0;
    /// `base` is the plain text, which it falls back to.
    virtual QCoro::Task<Ending> polished(SharedDictation dictation, QString base, Asking asking) = 0;
};

} // namespace velorin
