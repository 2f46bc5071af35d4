#include "cleanup/Passes.h"

#include "cleanup/CorrectedText.h"
#include "cleanup/CorrectionCues.h"
#include "cleanup/Tables.h"
#include "text/CaseMapping.h"
#include "text/Characters.h"
#include "text/Graphemes.h"
#include "text/WhiteSpace.h"

#include <algorithm>

namespace velorin::RuleCleaner {

namespace {

using Range = CorrectedText::Range;

constexpr QStringView clauseEndings = u",.!?";

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

/// Without what trails, then up to the last space; empty if there is none.
QStringView dropLastWord(QStringView text) {
    text = WhiteSpace::trimmed(withoutTrailing(WhiteSpace::trimmed(text), u".,!?、。"));
    for (qsizetype end = text.size(); end > 0;) {
        const qsizetype space = text.first(end).lastIndexOf(u' ');
        if (space < 0)
            break;
        if (Graphemes::isBoundary(text, space) && Graphemes::isBoundary(text, space + 1))
            return text.first(space);
        end = space;
    }
    return {};
}

/// Without the first row of characters that are no white space, and the white space behind it.
QStringView dropFirstChunk(QStringView text) {
    const auto isSpace = [](QChar c) { return WhiteSpace::isWhitespaceOrNewline(c.unicode()); };
    const auto* const chunkEnd = std::ranges::find_if(text, isSpace);
    const qsizetype end = std::find_if_not(chunkEnd, text.end(), isSpace) - text.begin();
    return chunkEnd != text.begin() && Graphemes::isBoundary(text, end) ? text.sliced(end) : text;
}

bool isNumber(QStringView word) {
    for (; !word.isEmpty(); word = Graphemes::drop(word, 1)) {
        if (!Characters::startsWithNumber(word))
            return false;
    }
    return true;
}

bool isAscii(QStringView text) {
    return std::ranges::all_of(text, [](QChar c) { return c.unicode() < 0x80; });
}

/// A word within its text, which decides how it is lower-cased.
struct Word {
    QStringView text;
    Range range;

    [[nodiscard]] QStringView view() const { return text.sliced(range.start, range.end - range.start); }
    [[nodiscard]] QString lower() const { return CaseMapping::lowerPart(text, range.start, range.end); }
};

bool areEqual(const Word& a, const Word& b) {
    if (isAscii(a.view()) && isAscii(b.view()))
        return a.view().compare(b.view(), Qt::CaseInsensitive) == 0;
    return a.lower() == b.lower();
}

/// The place of the word in the table, or that of its end.
template <std::size_t size>
std::size_t indexIn(const std::array<QStringView, size>& table, const Word& word) {
    const QString foreign = isAscii(word.view()) ? QString() : word.lower();
    const QStringView view = foreign.isEmpty() ? word.view() : QStringView(foreign);
    const auto* const found = std::ranges::find_if(table, [&](QStringView each) {
        return each.size() == view.size() && isAscii(view) && each.compare(view, Qt::CaseInsensitive) == 0;
    });
    return static_cast<std::size_t>(found - table.begin());
}

template <std::size_t size>
bool isIn(const std::array<QStringView, size>& table, const Word& word) {
    return indexIn(table, word) < size;
}

/// One cue and the text on both sides of it.
class Correction final {
public:
    Correction(CorrectedText& text, const CorrectionCue& cue);

    /// Decides what of the text before the cue is replaced by that behind it, and makes it so. False if the
    /// cue stays.
    bool make();

private:
    [[nodiscard]] Word leftWord(std::size_t number) const { return {stem_, text_.headWords()[number]}; }
    [[nodiscard]] Word leftWordFromEnd(std::size_t number) const { return leftWord(leftCount_ - 1 - number); }
    [[nodiscard]] Word rightWord(std::size_t number) const;

    [[nodiscard]] bool isRestart() const;
    [[nodiscard]] bool endsInNumberWithUnit() const;
    [[nodiscard]] bool isWhole(Range word) const;
    [[nodiscard]] QStringView stem() const { return stem_.sliced(leftStart_); }

    bool keepOnly(QStringView right);
    bool keep(QStringView base, QStringView separator, QStringView right);
    bool join(QStringView base, QStringView separator);
    bool replacePrepositionPhrase();
    bool replaceDeterminerPhrase();
    bool replaceEnd();

    CorrectedText& text_;
    /// What is left of the cue without its closing punctuation, from the very start of the text on, so that
    /// positions in it are positions in the head.
    QStringView stem_;
    /// How much white space that begins with.
    qsizetype leftStart_ = 0;
    /// The punctuation before the cue; 0 if there is none, and the cue is none.
    char16_t leftEnding_ = 0;
    QStringView right_;
    std::size_t leftCount_ = 0;
    std::size_t rightCount_ = 0;
};

Correction::Correction(CorrectedText& text, const CorrectionCue& cue) : text_(text) {
    text.moveGap(cue.end);
    const QStringView head = text.head().first(cue.start);
    const QStringView left = WhiteSpace::trimmed(head);
    if (isOneOf(Graphemes::last(left), clauseEndings))
        leftEnding_ = left.back().unicode();
    leftStart_ = left.begin() - head.begin();
    stem_ = head.first(leftStart_ + withoutTrailing(left, clauseEndings).size());
    right_ = WhiteSpace::trimmed(withoutLeading(text.tail(), u" ,、。"));
    rightCount_ = text.tailWordCount();
}

Word Correction::rightWord(std::size_t number) const {
    const Range word = text_.tailWord(number);
    const qsizetype skipped = right_.begin() - text_.tail().begin();
    return {right_, {word.start - skipped, word.end - skipped}};
}

bool Correction::make() {
    if (leftEnding_ == 0 || right_.isEmpty() || rightCount_ == 0)
        return false;
    text_.readHead(stem_.size());
    leftCount_ = text_.headWords().size();
    if (isRestart() || isIn(Tables::pronouns, rightWord(0)))
        return keepOnly(right_);
    if (leftCount_ == 0)
        return false;
    if (isIn(Tables::auxiliaries, leftWordFromEnd(0)))
        return keep(stem(), u", ", right_);
    return replacePrepositionPhrase() || replaceEnd();
}

/// The sentence begins anew: its first two words are said again, or stand at the end of what follows.
bool Correction::isRestart() const {
    if (leftCount_ < 2 || rightCount_ < 2)
        return false;
    const auto isSaidAgainAt = [&](std::size_t number) {
        return areEqual(leftWord(0), rightWord(number)) && areEqual(leftWord(1), rightWord(number + 1));
    };
    return isSaidAgainAt(0) || (rightCount_ > 2 && leftCount_ >= 3 && isSaidAgainAt(rightCount_ - 2));
}

bool Correction::endsInNumberWithUnit() const {
    return leftCount_ >= 2 && isIn(Tables::units, leftWordFromEnd(0)) && isNumber(leftWordFromEnd(1).view());
}

bool Correction::isWhole(Range word) const {
    return Graphemes::isBoundary(stem_, word.start) && Graphemes::isBoundary(stem_, word.end);
}

/// The new phrase replaces the last one that began with the same preposition.
bool Correction::replacePrepositionPhrase() {
    const std::size_t number = indexIn(Tables::prepositions, rightWord(0));
    if (number == Tables::prepositions.size())
        return false;
    const Range* const last = text_.lastPreposition(number);
    if (!last || !isWhole(*last))
        return false;
    return keep(WhiteSpace::trimmed(stem_.first(last->start)), u" ", right_);
}

/// A number with its unit, the last word, or a phrase; or nothing, and both parts are kept.
bool Correction::replaceEnd() {
    if (endsInNumberWithUnit())
        return join(dropLastWord(dropLastWord(stem())), u" ");
    if (leftEnding_ != u',' || rightCount_ < 3)
        return join(dropLastWord(stem()), u" ");
    if (isIn(Tables::determiners, rightWord(0)))
        return replaceDeterminerPhrase();
    return join(stem(), u", ");
}

/// The phrase from the last determiner on is replaced, unless it is shorter than what follows.
bool Correction::replaceDeterminerPhrase() {
    const Range* const last = text_.lastDeterminer();
    if (!last || !isWhole(*last))
        return join(stem(), u", ");
    const auto& words = text_.headWords();
    const auto firstWord = std::ranges::upper_bound(words, last->start, {}, &Range::end);
    if (static_cast<std::size_t>(words.end() - firstWord) < rightCount_)
        return join(stem(), u", ");
    return join(WhiteSpace::trimmed(stem_.first(last->start)), u" ");
}

/// A word that ends one part and begins the other appears once.
bool Correction::join(QStringView base, QStringView separator) {
    if (base.isEmpty())
        return keepOnly(right_);
    const QStringView whole = text_.head().first(base.end() - text_.head().begin());
    text_.readHead(whole.size());
    const bool isRepeated =
        !text_.headWords().empty() && areEqual({whole, text_.headWords().back()}, rightWord(0));
    return keep(base, separator, isRepeated ? dropFirstChunk(right_) : right_);
}

bool Correction::keepOnly(QStringView right) { return keep({}, {}, right); }

bool Correction::keep(QStringView base, QStringView separator, QStringView right) {
    const auto rangeWithin = [](QStringView part, QStringView whole) {
        return part.isEmpty() ? Range{} : Range{part.begin() - whole.begin(), part.end() - whole.begin()};
    };
    const bool areBoth = !base.isEmpty() && !right.isEmpty();
    text_.keep(rangeWithin(base, text_.head()), areBoth ? separator : QStringView(),
               rangeWithin(right, text_.tail()));
    return true;
}

/// A cue counts only right behind punctuation; most do not, and are told here at once.
bool isBehindPunctuation(const CorrectedText& text, qsizetype position) {
    while (position > 0 && WhiteSpace::isWhitespace(text.at(position - 1)))
        --position;
    return position > 0 && clauseEndings.contains(QChar(text.at(position - 1)));
}

} // namespace

void applyCorrections(Draft& draft) {
    if (!draft.concerns(Lexicon::corrections))
        return;
    const CorrectionCues cues = correctionCuesIn(draft);
    CorrectedText text(draft.text());
    bool hasChanged = false;
    for (auto cue = cues.rbegin(); cue != cues.rend(); ++cue) {
        // The offsets are those of the text as it came in; what has changed since is taken as it stands
        // there.
        if (cue->end > text.size() || !isBehindPunctuation(text, cue->start) ||
            !text.isBoundary(cue->start) || !text.isBoundary(cue->end))
            continue;
        hasChanged |= Correction(text, *cue).make();
    }
    if (hasChanged)
        draft.string() = text.toString();
}

} // namespace velorin::RuleCleaner
