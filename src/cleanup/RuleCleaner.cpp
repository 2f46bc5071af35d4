#include "cleanup/RuleCleaner.h"

#include "cleanup/Passes.h"
#include "cleanup/Stages.h"
#include "cleanup/Tables.h"
#include "text/Graphemes.h"

namespace velorin::RuleCleaner {

namespace {

/// Runs one stage by itself on a text.
template <typename Stage>
QString staged(QStringView text, Stage stage) {
    Draft draft(text.toString());
    stage(draft);
    return draft.take();
}

} // namespace

QString clean(QStringView raw, std::span<const WordReplacement> replacements, ContextProfile profile) {
    const bool wasPunctuated = endsPunctuated(raw);
    Lexicon::Triggers triggers;
    QString collapsed = Lexicon::collapse(raw, triggers);
    Draft draft(std::move(collapsed), std::move(triggers));
    spokenPunctuation(draft, profile);
    stripFillers(draft);
    applyCorrections(draft);
    applyReplacements(draft, replacements);
    tidy(draft, wasPunctuated, profile);
    if (applyLayoutCommands(draft))
        normalizeLayout(draft, capitalizesSentences(profile));
    return draft.take();
}

QString applyReplacements(QStringView text, std::span<const WordReplacement> replacements) {
    return staged(text, [&](Draft& draft) { applyReplacements(draft, replacements); });
}

LayoutResult applyLayoutCommands(QStringView text) {
    LayoutResult result;
    result.text = staged(text, [&](Draft& draft) { result.hasChanged = applyLayoutCommands(draft); });
    return result;
}

QString normalizeLayout(QStringView text, bool capitalize) {
    return staged(text, [&](Draft& draft) { normalizeLayout(draft, capitalize); });
}

bool endsPunctuated(QStringView text) {
    return Tables::contains(Tables::finishedEndings, Graphemes::last(text));
}

QString spokenPunctuation(const QString& text, ContextProfile profile) {
    return staged(text, [&](Draft& draft) { spokenPunctuation(draft, profile); });
}

QString commandFlags(const QString& text) {
    return staged(text, [](Draft& draft) { commandFlags(draft); });
}

QString applyCodeSymbols(const QString& text) {
    return staged(text, [](Draft& draft) { applyCodeSymbols(draft); });
}

QString stripFillers(const QString& text) {
    return staged(text, [](Draft& draft) { stripFillers(draft); });
}

QString applyCorrections(const QString& text) {
    return staged(text, [](Draft& draft) { applyCorrections(draft); });
}

QString tidy(const QString& text, bool wasPunctuated, ContextProfile profile) {
    return staged(text, [&](Draft& draft) { tidy(draft, wasPunctuated, profile); });
}

} // namespace velorin::RuleCleaner
