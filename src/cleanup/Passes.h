/// The stages of RuleCleaner::clean as they ship, in the order in which they run.
///
/// Each works on the draft and looks only at what the words of the text call for.
/// What each does is written out plainly, as patterns, in Tables.h.
#pragma once

#include "cleanup/Draft.h"
#include "cleanup/Personalization.h"
#include "delivery/ContextProfile.h"

#include <span>

namespace velorin::RuleCleaner {

void spokenPunctuation(Draft& draft, ContextProfile profile);
/// The parts of spokenPunctuation that are for code.
void commandFlags(Draft& draft);
void applyCodeSymbols(Draft& draft);

void stripFillers(Draft& draft);
void applyCorrections(Draft& draft);
void applyReplacements(Draft& draft, std::span<const WordReplacement> replacements);
void tidy(Draft& draft, bool wasPunctuated, ContextProfile profile);

/// Whether there was a command.
bool applyLayoutCommands(Draft& draft);
void normalizeLayout(Draft& draft, bool capitalize);

} // namespace velorin::RuleCleaner
