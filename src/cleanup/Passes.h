/// The stages of RuleCleaner::clean as they ship, in the order in which they run.
///
/// Each works on the draft in place and looks only at what the words of the text call for (`concerns`).
/// What each does is written out plainly, as patterns, in Tables.h.
#pragma once

#include "cleanup/Draft.h"
#include "cleanup/Lexicon.h"
#include "cleanup/Personalization.h"
#include "delivery/ContextProfile.h"

#include <span>

namespace velorin::RuleCleaner {

void spokenPunctuation(Draft& draft, ContextProfile profile, Lexicon::Concerns concerns);
/// The parts of spokenPunctuation that are for code.
void commandFlags(Draft& draft);
void applyCodeSymbols(Draft& draft);

/// Whether words may have been joined: "n,like,o".
bool stripFillers(Draft& draft, Lexicon::Concerns concerns);
/// Whether anything was corrected, so that words may stand elsewhere, or be cut.
bool applyCorrections(Draft& draft);
/// Whether anything was replaced.
bool applyReplacements(Draft& draft, std::span<const WordReplacement> replacements);
void tidy(Draft& draft, bool wasPunctuated, ContextProfile profile);

/// Whether there was a command.
bool applyLayoutCommands(Draft& draft, Lexicon::Concerns concerns);
void normalizeLayout(Draft& draft, bool capitalize);

/// Splits at white space and joins with single spaces. Returns whom the words concern.
Lexicon::Concerns collapse(QStringView raw, QString& collapsed);

/// Makes the first character upper case if it is lower case.
void capitalizeHead(QString& text);

} // namespace velorin::RuleCleaner
