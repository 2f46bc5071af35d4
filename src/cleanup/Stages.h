/// The stages of RuleCleaner::clean, one by one, for the cleaner itself and its tests.
///
/// Each takes any text and gives the whole new one. In `clean` they run in the order in which they stand.
#pragma once

#include "cleanup/Personalization.h"
#include "delivery/ContextProfile.h"

#include <QString>

#include <span>

namespace velorin::RuleCleaner {

/// Whether the text ends in punctuation that finishes it, exactly as it stands.
[[nodiscard]] bool endsPunctuated(QStringView text);
/// Symbols, flags, addresses and separators that were spoken as words.
[[nodiscard]] QString spokenPunctuation(const QString& text, ContextProfile profile);
[[nodiscard]] QString stripFillers(const QString& text);
/// Self-corrections: "at five, no wait, six" becomes "at six".
[[nodiscard]] QString applyCorrections(const QString& text);
[[nodiscard]] QString tidy(const QString& text, bool endsPunctuated, ContextProfile profile);

/// The parts of spokenPunctuation that are for code: dashes and heads of commands, then the table of symbols.
[[nodiscard]] QString commandFlags(const QString& text);
[[nodiscard]] QString applyCodeSymbols(const QString& text);

} // namespace velorin::RuleCleaner
