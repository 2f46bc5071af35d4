#include "cleanup/Passes.h"

#include "cleanup/Letters.h"
#include "cleanup/Tables.h"
#include "text/CaseMapping.h"
#include "text/Graphemes.h"

#include <algorithm>
#include <vector>

namespace velorin::RuleCleaner {

namespace {

using Letters::Run;

constexpr char16_t hyphen = u'-';
constexpr char16_t enDash = u'–';
constexpr char16_t emDash = u'—';

bool isDash(char16_t unit) { return unit == hyphen || unit == enDash || unit == emDash; }

bool isDashAt(QStringView text, qsizetype position) {
    return position < text.size() && isDash(text[position].unicode());
}

bool beginsWord(QStringView text, qsizetype position, qsizetype limit) {
    return position == 0 ||
           (position > limit && WhiteSpace::isWhitespaceOrNewline(text[position - 1].unicode()));
}

/// Dashes at the head of a word, and the letter behind them: the way a recogniser typesets a flag.
template <typename IsFirst>
void writeFlags(Draft& draft, IsFirst isFirst, bool takesSecondDash, QStringView written) {
    const QStringView text = draft.text();
    qsizetype limit = 0;
    for (qsizetype dash = 0; dash < text.size(); ++dash) {
        if (!isFirst(text[dash].unicode()) || !beginsWord(text, dash, limit))
            continue;
        qsizetype letter = Letters::skipSpaces(text, dash + 1);
        if (takesSecondDash) {
            if (!isDashAt(text, letter))
                continue;
            letter = Letters::skipSpaces(text, letter + 1);
        }
        if (letter == text.size() || !Letters::isPlainLetter(text[letter].unicode()))
            continue;
        draft.replace(dash, letter, written);
        limit = letter + 1;
        dash = letter;
    }
    draft.commit();
}

qsizetype firstCharacter(QStringView text, qsizetype position, bool isSpace) {
    while (position < text.size()) {
        const qsizetype next = Graphemes::next(text, position);
        if ((text.sliced(position, next - position) == u" ") == isSpace)
            return position;
        position = next;
    }
    return position;
}

constexpr qsizetype longestCommand = 7;

/// "Git status" becomes "git status", as it was meant.
void lowerCommandName(Draft& draft) {
    const QStringView text = draft.text();
    const qsizetype start = firstCharacter(text, 0, false);
    // What is longer than any command, in all of its forms, need not be read to its end.
    const QStringView rest = text.sliced(start);
    const QStringView head = rest.first(std::min(rest.size(), longestCommand + 2));
    const qsizetype size = firstCharacter(head, 0, true);
    if (size > longestCommand || (size < rest.size() && !Graphemes::isBoundary(text, start + size + 1)))
        return;
    const QStringView word = head.first(size);
    const QString lower = CaseMapping::lower(word);
    if (word == lower || !Tables::contains(Tables::commandNames, lower))
        return;
    draft.replace(0, Graphemes::prefix(text, Graphemes::count(word)).size(), lower);
    draft.commit();
}

/// A phrase of up to three words and its symbol.
struct Phrase {
    std::vector<WordKey> words;
    QStringView symbol;
    qsizetype length = 0;
};

/// By the first word, longer phrases first. No phrase begins with the end of another, so a walk from left to
/// right that prefers the longer one finds what one pass a phrase would find.
using Phrases = WordMap<std::vector<Phrase>>;

Phrases phrasesByFirstWord() {
    std::vector<Phrase> all;
    for (const auto& [spoken, symbol] : Tables::codeSymbols) {
        Phrase phrase{{}, symbol, spoken.size()};
        for (const QStringView word : spoken.split(u' '))
            phrase.words.push_back(wordKey(word));
        all.push_back(std::move(phrase));
    }
    std::ranges::stable_sort(all, std::ranges::greater{}, &Phrase::length);
    Phrases phrases;
    for (Phrase& phrase : all)
        phrases[phrase.words.front()].push_back(std::move(phrase));
    return phrases;
}

/// The end of the phrase that begins with this run; 0 if it goes on otherwise.
qsizetype endOfPhrase(QStringView text, Run run, const Phrase& phrase) {
    for (std::size_t i = 1; i < phrase.words.size(); ++i) {
        const qsizetype next = Letters::skipSpaces(text, run.end);
        if (next == run.end)
            return 0;
        run = Letters::runAt(text, next);
        if (run.key != phrase.words[i])
            return 0;
    }
    return Letters::isFreeBehind(text, run.end) ? run.end : 0;
}

} // namespace

void commandFlags(Draft& draft) {
    if (std::ranges::any_of(draft.text(), [](QChar c) { return isDash(c.unicode()); })) {
        writeFlags(draft, isDash, true, u"--");
        writeFlags(
            draft, [](char16_t unit) { return unit == emDash; }, false, u"--");
        writeFlags(
            draft, [](char16_t unit) { return unit == enDash; }, false, u"-");
    }
    lowerCommandName(draft);
}

void applyCodeSymbols(Draft& draft) {
    static const Phrases phrases = phrasesByFirstWord();
    if (!draft.concerns(Lexicon::codeSymbols))
        return;
    const QStringView text = draft.text();
    qsizetype limit = 0;
    for (const Lexicon::Trigger& run : draft.triggers().words) {
        if (!run.isFor(Lexicon::codeSymbols) || run.start < limit ||
            !Letters::isFreeBefore(text, run.start) || !Graphemes::isBoundary(text, run.start))
            continue;
        for (const Phrase& phrase : *phrases.find(run.key)) {
            const qsizetype end = endOfPhrase(text, run, phrase);
            if (end == 0 || !Graphemes::isBoundary(text, end))
                continue;
            draft.replace(run.start, end, phrase.symbol);
            limit = end;
            break;
        }
    }
    draft.commit();
}

} // namespace velorin::RuleCleaner
