/// Turns the raw transcript of a dictation into the text that is inserted.
///
/// Fillers go, spoken punctuation, self-corrections and layout commands are carried out, the user's own
/// replacements are made, by fixed rules that can never add words. Deterministic and offline: the same
/// transcript, replacements and profile always give the same text. It runs over the whole transcript at
/// every partial result, so it must stay far below a frame for thousands of words.
///
///     RuleCleaner::clean(u"um hello world.", {}, ContextProfile::generic)     // "Hello world."
///     RuleCleaner::clean(u"Git commit — amend.", {}, ContextProfile::code)    // "git commit --amend"
///
/// Nothing here fails: any UTF-16 is taken, unpaired surrogates included. Pure; any thread.
#pragma once

#include "cleanup/Personalization.h"
#include "delivery/ContextProfile.h"

#include <QString>

#include <span>

namespace velorin::RuleCleaner {

[[nodiscard]] QString clean(QStringView raw, std::span<const WordReplacement> replacements,
                            ContextProfile profile);

/// Writes the replacement wherever `heard` stands and no letter or digit touches it. Longer entries win over
/// their parts, of entries that differ only by case the later one; what was written is not searched again.
[[nodiscard]] QString applyReplacements(QStringView text, std::span<const WordReplacement> replacements);

struct LayoutResult {
    QString text;
    /// Whether any command was found; only then does the text want normalizeLayout().
    bool hasChanged = false;
};

/// "new line", "new paragraph", "bullet point" and their kin become line ends and bullets.
[[nodiscard]] LayoutResult applyLayoutCommands(QStringView text);

/// No spaces around line ends, one empty line at most, none at the ends, single spaces; with `capitalize`
/// each line, or the text of its bullet, begins with a capital.
[[nodiscard]] QString normalizeLayout(QStringView text, bool capitalize);

} // namespace velorin::RuleCleaner
