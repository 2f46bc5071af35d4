#include "core/EndingChoice.h"

#include "core/AppState.h"
#include "core/CleanedTranscript.h"
#include "core/Dictation.h"
#include "core/GenerateTrigger.h"
#include "text/WhiteSpace.h"

namespace velorin {

EndingChoice EndingChoice::of(const Dictation& dictation, const AppState& settings, bool aiConfigured) {
    const QString said =
        WhiteSpace::trimmed(dictation.transcript(), WhiteSpace::Set::whitespacesAndNewlines).toString();
    EndingChoice choice;
    if (settings.aiGenerateEnabled() && aiConfigured) {
        if (const auto instruction = GenerateTrigger::instruction(said, settings.aiGenerateTrigger())) {
            choice.kind = Kind::generate;
            choice.instruction = *instruction;
            choice.context = dictation.selection ? dictation.selection->text : dictation.context;
            return choice;
        }
    }
    if (dictation.isEdit && dictation.selection) {
        choice.kind = Kind::edit;
        choice.instruction = said;
        return choice;
    }
    choice.base = cleanedTranscript(dictation.transcript(), settings, dictation.profile);
    const bool isPolished = settings.aiPolishEnabled() && aiConfigured && !isCodeLike(dictation.profile);
    choice.kind = isPolished ? Kind::polish : Kind::plain;
    return choice;
}

} // namespace velorin
