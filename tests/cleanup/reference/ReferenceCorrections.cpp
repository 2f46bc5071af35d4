#include "Reference.h"

#include "cleanup/Tables.h"
#include "text/Characters.h"
#include "text/Graphemes.h"
#include "text/Pattern.h"
#include "text/WhiteSpace.h"

#include <QHash>

#include <optional>

namespace velorin::Reference {

using namespace Qt::Literals::StringLiterals;

namespace {

bool isOneOf(QStringView character, QStringView set) {
    return character.size() == 1 && set.contains(character.front());
}

QStringView withoutTrailing(QStringView text, QStringView set) {
    while (isOneOf(Graphemes::last(text), set))
        text.chop(1);
    return text;
}

QStringView withoutLeading(QStringView text, QStringView set) {
    while (isOneOf(Graphemes::first(text), set))
        text = text.sliced(1);
    return text;
}

QStringView dropLastWord(QStringView text) {
    text = WhiteSpace::trimmed(withoutTrailing(WhiteSpace::trimmed(text), u".,!?、。"));
    while (!text.isEmpty() && Graphemes::last(text) != u" ")
        text.chop(Graphemes::last(text).size());
    return text.isEmpty() ? text : text.chopped(1);
}

/// The last match, if it stands between whole characters.
std::optional<qsizetype> lastMatch(const Pattern& pattern, QStringView text) {
    const auto matches = pattern.matches(text);
    if (matches.empty() || !Graphemes::isBoundary(text, matches.back().start()) ||
        !Graphemes::isBoundary(text, matches.back().end()))
        return std::nullopt;
    return matches.back().start();
}

/// The pattern of a preposition as a whole word.
const Pattern& wholeWord(const QString& preposition) {
    static const QHash<QString, Pattern> patterns = [] {
        QHash<QString, Pattern> made;
        for (const QStringView word : Tables::prepositions) {
            const QString whole = u"\\b"_s + Pattern::escaped(word) + u"\\b"_s;
            made.insert(word.toString(), Pattern(whole));
        }
        return made;
    }();
    return *patterns.find(preposition);
}

bool isNumber(QStringView word) {
    for (; !word.isEmpty(); word = Graphemes::drop(word, 1)) {
        if (!Characters::startsWithNumber(word))
            return false;
    }
    return true;
}

/// Whether the words after the cue begin the sentence anew.
bool isRestart(const QStringList& left, const QStringList& right) {
    if (left.size() < 2 || right.size() < 2)
        return false;
    if (left[0] == right[0] && left[1] == right[1])
        return true;
    return right.size() > 2 && left.size() >= 3 && left[0] == right[right.size() - 2] &&
           left[1] == right.back();
}

QString joined(QStringView base, QStringView separator, QStringView right) {
    static const Pattern firstWord(u"^\\S+\\s*");
    const QStringList baseWords = words(base);
    const QStringList rightWords = words(right);
    if (!baseWords.isEmpty() && !rightWords.isEmpty() && baseWords.back() == rightWords.front()) {
        const auto match = firstWord.firstMatch(right);
        if (match && Graphemes::isBoundary(right, match->end()))
            right = right.sliced(match->end());
    }
    if (right.isEmpty())
        return base.toString();
    if (base.isEmpty())
        return right.toString();
    return base.toString() + separator.toString() + right.toString();
}

/// What of the text before the cue stays, and what stands between it and the text after the cue.
struct Base {
    QStringView text;
    QStringView separator;
};

Base shortenedAtDeterminer(QStringView stem, qsizetype rightCount) {
    static const Pattern determiners(Tables::determinerWords);
    const auto position = lastMatch(determiners, stem);
    if (!position || words(stem.sliced(*position)).size() < rightCount)
        return {stem, u", "};
    return {WhiteSpace::trimmed(stem.first(*position)), u" "};
}

Base baseOf(QStringView left, QStringView stem, const QStringList& stemWords, const QStringList& rightWords) {
    if (stemWords.size() >= 2 && Tables::contains(Tables::units, stemWords.back()) &&
        isNumber(stemWords[stemWords.size() - 2]))
        return {dropLastWord(dropLastWord(stem)), u" "};
    if (left.back() != u',' || rightWords.size() < 3)
        return {dropLastWord(stem), u" "};
    if (!Tables::contains(Tables::determiners, rightWords.front()))
        return {stem, u", "};
    return shortenedAtDeterminer(stem, rightWords.size());
}

std::optional<QString> resolveCorrection(QStringView text, Pattern::Range cue) {
    const QStringView left = WhiteSpace::trimmed(text.first(cue.start));
    const QStringView right = WhiteSpace::trimmed(withoutLeading(text.sliced(cue.end), u" ,、。"));
    if (left.isEmpty() || right.isEmpty() || !isOneOf(Graphemes::last(left), u",.!?"))
        return std::nullopt;
    const QStringList rightWords = words(right);
    if (rightWords.isEmpty())
        return std::nullopt;
    const QString& firstWord = rightWords.front();
    if (isRestart(words(left), rightWords) || Tables::contains(Tables::pronouns, firstWord))
        return right.toString();

    const QStringView stem = withoutTrailing(left, u".,!?");
    const QStringList stemWords = words(stem);
    if (stemWords.isEmpty())
        return std::nullopt;
    if (Tables::contains(Tables::auxiliaries, stemWords.back()))
        return stem.toString() + u", "_s + right.toString();
    if (Tables::contains(Tables::prepositions, firstWord)) {
        if (const auto position = lastMatch(wholeWord(firstWord), stem)) {
            const QStringView prefix = WhiteSpace::trimmed(stem.first(*position));
            return prefix.isEmpty() ? right.toString() : QString(prefix.toString() + u' ' + right.toString());
        }
    }
    const Base base = baseOf(left, stem, stemWords, rightWords);
    return joined(base.text, base.separator, right);
}

} // namespace

QString applyCorrections(const QString& text) {
    static const Pattern cues(Tables::correctionCues);
    const auto matches = cues.matches(text);
    QString current = text;
    for (auto match = matches.rbegin(); match != matches.rend(); ++match) {
        // The offsets are those of the text as it came in; what has changed since is taken as it stands
        // there.
        if (!Graphemes::isBoundary(current, match->start()) || !Graphemes::isBoundary(current, match->end()))
            continue;
        if (auto resolved = resolveCorrection(current, match->groups.front()))
            current = *std::move(resolved);
    }
    return current;
}

} // namespace velorin::Reference
