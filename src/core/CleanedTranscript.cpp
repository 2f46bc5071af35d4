#include "core/CleanedTranscript.h"

#include "cleanup/RuleCleaner.h"
#include "core/AppState.h"

namespace velorin {

QString cleanedTranscript(const QString& transcript, const AppState& settings, ContextProfile profile) {
    const auto replacements = settings.wordReplacements();
    if (settings.cleanMode() == CleanMode::rules)
        return RuleCleaner::clean(transcript, replacements, profile);
    const QString replaced = RuleCleaner::applyReplacements(transcript, replacements);
    const auto laidOut = RuleCleaner::applyLayoutCommands(replaced);
    return laidOut.hasChanged ? RuleCleaner::normalizeLayout(laidOut.text, capitalizesSentences(profile))
                              : replaced;
}

} // namespace velorin
