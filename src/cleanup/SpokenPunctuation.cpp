#include "cleanup/Passes.h"

#include "cleanup/Letters.h"
#include "cleanup/Tables.h"
#include "text/Graphemes.h"
#include "text/Pattern.h"

namespace velorin::RuleCleaner {

namespace {

using Letters::isAt;
using Letters::Run;

/// "jo at acme dot org". Rare, and its conditions are many: here the pattern itself does the work.
void joinAddresses(Draft& draft) {
    static const Pattern pattern(Tables::spokenAddress);
    draft.string() = pattern.replaceAll(draft.string(), Tables::writtenAddress);
}

bool beginsLongFlag(WordKey key) {
    return key == wordKey(u"dash") || key == wordKey(u"double") || key == wordKey(u"hyphen");
}

/// What stands between the two words for dashes.
bool isFlagJoint(QChar c) { return c == u' ' || c == u'-'; }

qsizetype endOfFlagName(QStringView text, qsizetype position) {
    while (position < text.size() && (Letters::isPlainAlphanumeric(text[position].unicode()) ||
                                      text[position] == u'_' || text[position] == u'-'))
        ++position;
    return position;
}

/// "dash dash amend" becomes "--amend".
void joinLongFlags(Draft& draft) {
    const QStringView text = draft.text();
    qsizetype limit = 0;
    for (const Lexicon::Trigger& word : draft.triggers().words) {
        if (!word.isFor(Lexicon::longFlags) || word.start <= limit || !isFlagJoint(text[word.start - 1]))
            continue;
        const Run before = Letters::runBefore(text, word.start - 1, limit);
        if (!beginsLongFlag(before.key) || !Letters::isWordBoundary(text, before.start))
            continue;
        const qsizetype name = Letters::skipSpaces(text, word.end);
        if (name == word.end || name == text.size() || !Letters::isPlainAlphanumeric(text[name].unicode()))
            continue;
        draft.replace(before.start, name, u"--");
        limit = endOfFlagName(text, name);
    }
    draft.commit();
}

bool isIdentifierHead(char16_t unit) { return Letters::isPlainAlphanumeric(unit) || unit == u'_'; }

bool isIdentifierTail(char16_t unit) {
    return isIdentifierHead(unit) || unit == u'.' || unit == u'/' || unit == u'-';
}

/// A spoken separator between two identifiers, all of what one match takes in.
struct Join {
    qsizetype start = 0;
    qsizetype leftEnd = 0;
    Run separator;
    qsizetype rightStart = 0;
    qsizetype end = 0;
};

/// Reads the identifiers on both sides; the left one must not begin before the limit.
std::optional<Join> joinAround(QStringView text, Run separator, qsizetype limit) {
    Join join{.separator = separator};
    join.leftEnd = Letters::skipSpacesBack(text, separator.start, limit);
    join.rightStart = Letters::skipSpaces(text, separator.end);
    if (join.leftEnd == separator.start || join.rightStart == separator.end)
        return std::nullopt;
    join.end = join.rightStart;
    while (join.end < text.size() && isIdentifierTail(text[join.end].unicode()))
        ++join.end;
    if (join.end == join.rightStart || !isIdentifierHead(text[join.rightStart].unicode()))
        return std::nullopt;
    join.start = join.leftEnd;
    while (join.start > limit && isIdentifierTail(text[join.start - 1].unicode()))
        --join.start;
    while (join.start < join.leftEnd && !isIdentifierHead(text[join.start].unicode()))
        ++join.start;
    return join.start < join.leftEnd ? std::optional(join) : std::nullopt;
}

/// After a function word the separator is prose. Only plain letters count, whatever folding would make of
/// others.
bool isFunctionWord(QStringView word) {
    constexpr qsizetype longest = 5;
    if (word.size() > longest)
        return false;
    std::array<QChar, longest> lower;
    for (qsizetype i = 0; i < word.size(); ++i)
        lower[static_cast<std::size_t>(i)] = word[i].unicode() < 0x80 ? word[i].toLower() : word[i];
    return Tables::contains(Tables::functionWords, QStringView(lower.data(), word.size()));
}

/// A separator that was spelt with a long s stands for itself.
QStringView symbolFor(QStringView spoken) {
    for (const auto& [name, symbol] : Tables::spokenSeparators) {
        if (spoken.compare(name, Qt::CaseInsensitive) == 0 && !spoken.contains(QChar(u'\u017F')))
            return symbol;
    }
    return spoken;
}

void write(Draft& draft, const Join& join) {
    const QStringView text = draft.text();
    const QStringView spoken = text.sliced(join.separator.start, join.separator.end - join.separator.start);
    if (!isFunctionWord(text.sliced(join.start, join.leftEnd - join.start))) {
        draft.replace(join.leftEnd, join.rightStart, symbolFor(spoken));
    } else if (join.rightStart - join.leftEnd != spoken.size() + 2 || text[join.leftEnd] != u' ' ||
               text[join.separator.end] != u' ') {
        draft.replace(join.leftEnd, join.separator.start, u" ");
        draft.replace(join.separator.end, join.rightStart, u" ");
    }
}

/// Joins what stands side by side; whether anything was.
bool joinSeparatorsOnce(Draft& draft) {
    const QStringView text = draft.text();
    qsizetype limit = 0;
    for (const Lexicon::Trigger& word : draft.triggers().words) {
        if (!word.isFor(Lexicon::separators) || word.start < limit)
            continue;
        const std::optional<Join> join = joinAround(text, word, limit);
        if (!join)
            continue;
        limit = join->end;
        if (Graphemes::isBoundary(text, join->start) && Graphemes::isBoundary(text, join->end))
            write(draft, *join);
    }
    return draft.commit();
}

void joinSeparators(Draft& draft) {
    for (int pass = 0; pass < Tables::separatorPasses; ++pass) {
        if (!joinSeparatorsOnce(draft))
            return;
    }
}

} // namespace

void spokenPunctuation(Draft& draft, ContextProfile profile) {
    if (profile == ContextProfile::email && draft.concerns(Lexicon::addressAt) &&
        draft.concerns(Lexicon::addressDot))
        joinAddresses(draft);
    if (draft.concerns(Lexicon::longFlags))
        joinLongFlags(draft);
    if (usesCodeSymbols(profile)) {
        commandFlags(draft);
        applyCodeSymbols(draft);
    }
    if (draft.concerns(Lexicon::separators))
        joinSeparators(draft);
}

} // namespace velorin::RuleCleaner
