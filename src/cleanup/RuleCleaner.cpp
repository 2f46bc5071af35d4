#include "cleanup/RuleCleaner.h"

#include "cleanup/Passes.h"
#include "cleanup/Stages.h"
#include "cleanup/Tables.h"
#include "text/Graphemes.h"

namespace velorin::RuleCleaner {

namespace {

constexpr Lexicon::Concerns everything = ~Lexicon::Concerns{0};

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
    QString collapsed;
    Lexicon::Concerns concerns = collapse(raw, collapsed);
    Draft draft(std::move(collapsed));
    spokenPunctuation(draft, profile, concerns);
    if (stripFillers(draft, concerns))
        concerns = Lexicon::concernsOf(draft.text());
    bool hasNewWords = (concerns & Lexicon::corrections) != 0 && applyCorrections(draft);
    hasNewWords |= applyReplacements(draft, replacements);
    tidy(draft, wasPunctuated, profile);
    if (hasNewWords)
        concerns = Lexicon::concernsOf(draft.text());
    if ((concerns & Lexicon::layoutCommands) && applyLayoutCommands(draft, concerns))
        normalizeLayout(draft, capitalizesSentences(profile));
    return draft.take();
}

QString applyReplacements(QStringView text, std::span<const WordReplacement> replacements) {
    return staged(text, [&](Draft& draft) { applyReplacements(draft, replacements); });
}

LayoutResult applyLayoutCommands(QStringView text) {
    LayoutResult result;
    result.text = staged(text, [&](Draft& draft) {
        result.hasChanged = applyLayoutCommands(draft, Lexicon::concernsOf(text));
    });
    return result;
}

QString normalizeLayout(QStringView text, bool capitalize) {
    return staged(text, [&](Draft& draft) { normalizeLayout(draft, capitalize); });
}

bool endsPunctuated(QStringView text) {
    return Tables::contains(Tables::finishedEndings, Graphemes::last(text));
}

Lexicon::Concerns collapse(QStringView raw, QString& collapsed) {
    Lexicon::Concerns concerns = 0;
    collapsed.resize(raw.size());
    QChar* end = collapsed.data();
    QChar* const begin = end;
    for (qsizetype i = 0; i < raw.size();) {
        if (WhiteSpace::isWhitespaceOrNewline(raw[i].unicode())) {
            ++i;
            continue;
        }
        if (end != begin)
            *end++ = u' ';
        while (i < raw.size() && !WhiteSpace::isWhitespaceOrNewline(raw[i].unicode())) {
            const Letters::Run run = Letters::runAt(raw, i);
            if (run) {
                concerns |= Lexicon::concernsOf(run.key);
                end = std::copy(raw.begin() + run.start, raw.begin() + run.end, end);
                i = run.end;
            } else {
                if (Letters::mayBeginForeignFiller(raw[i].unicode()))
                    concerns |= Lexicon::fillers;
                *end++ = raw[i++];
            }
        }
    }
    collapsed.resize(end - begin);
    return concerns;
}

QString spokenPunctuation(const QString& text, ContextProfile profile) {
    return staged(text, [&](Draft& draft) { spokenPunctuation(draft, profile, everything); });
}

QString commandFlags(const QString& text) {
    return staged(text, [](Draft& draft) { commandFlags(draft); });
}

QString applyCodeSymbols(const QString& text) {
    return staged(text, [](Draft& draft) { applyCodeSymbols(draft); });
}

QString stripFillers(const QString& text) {
    return staged(text, [](Draft& draft) { stripFillers(draft, everything); });
}

QString applyCorrections(const QString& text) {
    return staged(text, [](Draft& draft) { applyCorrections(draft); });
}

QString tidy(const QString& text, bool wasPunctuated, ContextProfile profile) {
    return staged(text, [&](Draft& draft) { tidy(draft, wasPunctuated, profile); });
}

} // namespace velorin::RuleCleaner
