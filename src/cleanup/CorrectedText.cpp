#include "cleanup/CorrectedText.h"

#include "cleanup/Letters.h"
#include "cleanup/Tables.h"
#include "text/Characters.h"
#include "text/Graphemes.h"

#include <QChar>

#include <algorithm>

namespace velorin {

namespace {

using Range = CorrectedText::Range;

bool isPlain(char16_t unit) { return unit >= u' ' && unit < 0x7F; }

/// Calls `found` with the range of each word of letters, marks and numbers.
template <typename Found>
void forEachWord(QStringView text, qsizetype from, Found found) {
    qsizetype start = -1;
    for (qsizetype i = from; i < text.size();) {
        const char32_t c = Characters::codePointAt(text, i);
        const bool isPart =
            c < 0x80 ? Letters::isPlainAlphanumeric(static_cast<char16_t>(c)) : Characters::isAlphanumeric(c);
        if (isPart && start < 0)
            start = i;
        if (!isPart && start >= 0)
            found(Range{std::exchange(start, -1), i});
        i += Characters::length(c);
    }
    if (start >= 0)
        found(Range{start, text.size()});
}

/// 0 for a determiner, the number of a preposition plus 1, or -1.
int markOf(WordKey key) {
    static const WordMap<int> numbers = [] {
        WordMap<int> map;
        for (const QStringView word : Tables::determiners)
            map[wordKey(word)] = 1;
        int number = 2;
        for (const QStringView word : Tables::prepositions)
            map[wordKey(word)] = number++;
        return map;
    }();
    const int* const number = numbers.find(key);
    return number ? *number - 1 : -1;
}

void shrink(std::vector<Range>& ranges, qsizetype size) {
    while (!ranges.empty() && ranges.back().end > size)
        ranges.pop_back();
}

const Range* lastOf(const std::vector<Range>& ranges) { return ranges.empty() ? nullptr : &ranges.back(); }

} // namespace

CorrectedText::CorrectedText(QStringView text)
    : head_(text.utf16()), headSize_(text.size()), tailStart_(text.size()), end_(text.size()) {}

char16_t CorrectedText::at(qsizetype position) const {
    return position < headSize_ ? head_[position]
                                : units_[static_cast<std::size_t>(position - headSize_ + tailStart_)];
}

bool CorrectedText::isBoundary(qsizetype position) {
    if (position <= 0 || position >= size())
        return position == 0 || position == size();
    const char16_t before = at(position - 1);
    const char16_t behind = at(position);
    if (isPlain(before) && isPlain(behind))
        return true;
    if (QChar::isHighSurrogate(before) && QChar::isLowSurrogate(behind))
        return false;
    // What stands before the position decides, and the one code point behind it.
    const bool isPair =
        position + 1 < size() && QChar::isHighSurrogate(behind) && QChar::isLowSurrogate(at(position + 1));
    const qsizetype needed = position + (isPair ? 2 : 1);
    if (headSize_ < needed)
        moveGap(needed);
    return Graphemes::isBoundary(head(), position);
}

void CorrectedText::own() {
    if (!units_.empty() || headSize_ == 0)
        return;
    units_.assign(head_, head_ + headSize_);
    head_ = units_.data();
}

void CorrectedText::moveGap(qsizetype position) {
    own();
    if (position < headSize_) {
        const qsizetype moved = headSize_ - position;
        std::copy_backward(units_.begin() + position, units_.begin() + headSize_,
                           units_.begin() + tailStart_);
        listTailWords({tailStart_ - moved, tailStart_});
        tailStart_ -= moved;
        headSize_ = position;
        forgetHead(position);
    } else {
        const qsizetype moved = position - headSize_;
        std::copy(units_.begin() + tailStart_, units_.begin() + tailStart_ + moved,
                  units_.begin() + headSize_);
        tailStart_ += moved;
        headSize_ += moved;
        dropTailWordsBefore(tailStart_);
    }
}

void CorrectedText::listTailWords(Range moved) {
    std::vector<Range> words;
    forEachWord(QStringView(units_.data(), moved.end), moved.start,
                [&](Range word) { words.push_back(word); });
    // A word that the gap stood in is one again.
    if (!words.empty() && !tailWords_.empty() && words.back().end == tailWords_.back().start) {
        tailWords_.back().start = words.back().start;
        words.pop_back();
    }
    tailWords_.insert(tailWords_.end(), words.rbegin(), words.rend());
}

void CorrectedText::dropTailWordsBefore(qsizetype position) {
    while (!tailWords_.empty() && tailWords_.back().end <= position)
        tailWords_.pop_back();
    if (!tailWords_.empty())
        tailWords_.back().start = std::max(tailWords_.back().start, position);
}

void CorrectedText::forgetHead(qsizetype from) {
    headRead_ = std::min(headRead_, from);
    while (!headWords_.empty() && headWords_.back().start >= from)
        headWords_.pop_back();
    if (!headWords_.empty())
        headWords_.back().end = std::min(headWords_.back().end, from);
    shrink(determiners_, from);
    for (std::vector<Range>& positions : prepositions_)
        shrink(positions, from);
}

void CorrectedText::readHead(qsizetype size) {
    forgetHead(size);
    // The last word may go on now.
    if (!headWords_.empty() && headWords_.back().end == headRead_)
        forgetHead(headWords_.back().start);
    const QStringView text = head().first(size);
    forEachWord(text, headRead_, [&](Range word) { headWords_.push_back(word); });
    for (auto run = Letters::nextRun(text, headRead_); run; run = Letters::nextRun(text, run.end)) {
        const int mark = markOf(run.key);
        if (mark < 0 || !Letters::isWordBoundary(text, run.start) || !Letters::isWordBoundary(text, run.end))
            continue;
        (mark == 0 ? determiners_ : prepositions_[static_cast<std::size_t>(mark - 1)])
            .push_back({run.start, run.end});
    }
    headRead_ = size;
}

const Range* CorrectedText::lastDeterminer() const { return lastOf(determiners_); }

const Range* CorrectedText::lastPreposition(std::size_t number) const {
    return lastOf(prepositions_[number]);
}

Range CorrectedText::tailWord(std::size_t number) const {
    const Range word = tailWords_[tailWords_.size() - 1 - number];
    return {word.start - tailStart_, word.end - tailStart_};
}

void CorrectedText::keep(Range ofHead, QStringView separator, Range ofTail) {
    forgetHead(ofHead.start == 0 ? ofHead.end : 0);
    if (ofHead.start > 0)
        std::copy(units_.begin() + ofHead.start, units_.begin() + ofHead.end, units_.begin());
    headSize_ = ofHead.end - ofHead.start;
    std::copy(separator.utf16(), separator.utf16() + separator.size(), units_.begin() + headSize_);
    headSize_ += separator.size();
    end_ = tailStart_ + ofTail.end;
    tailStart_ += ofTail.start;
    dropTailWordsBefore(tailStart_);
    if (tailStart_ == end_)
        tailWords_.clear();
}

} // namespace velorin
