/// The text that self-corrections are being made in, parted where the present cue stands.
///
/// Cues are walked from the last to the first. The text before the gap (the head) and behind it (the tail)
/// each stand in one piece, with their words listed, so that a decision reads the words next to the cue and
/// at both ends of the text without going over the rest again; a text full of cues costs little more than
/// one reading. Positions are those of the whole text, gap left out, unless said otherwise.
#pragma once

#include "cleanup/WordKey.h"

#include <QString>

#include <array>
#include <vector>

namespace velorin {

class CorrectedText final {
public:
    struct Range {
        qsizetype start = 0;
        qsizetype end = 0;
    };

    /// The text must outlive this.
    explicit CorrectedText(QStringView text);

    [[nodiscard]] qsizetype size() const { return headSize_ + (end_ - tailStart_); }
    [[nodiscard]] char16_t at(qsizetype position) const;

    /// Whether a character begins or ends there; false past the end. May move the gap.
    [[nodiscard]] bool isBoundary(qsizetype position);

    /// Puts the gap at the position, which must not split a pair of surrogates.
    void moveGap(qsizetype position);
    [[nodiscard]] QStringView head() const { return {head_, headSize_}; }
    [[nodiscard]] QStringView tail() const { return {units_.data() + tailStart_, end_ - tailStart_}; }

    /// Lists the words of the head up to its position `size`; the lists below are of this part.
    void readHead(qsizetype size);
    /// The words of the head; ranges within head().
    [[nodiscard]] const std::vector<Range>& headWords() const { return headWords_; }
    /// The last whole word in the head among the determiners, or a certain preposition; nullptr if none.
    [[nodiscard]] const Range* lastDeterminer() const;
    [[nodiscard]] const Range* lastPreposition(std::size_t number) const;

    [[nodiscard]] std::size_t tailWordCount() const { return tailWords_.size(); }
    /// The word of the tail with this number, as a range within tail().
    [[nodiscard]] Range tailWord(std::size_t number) const;

    /// The text becomes: what of the head stands in the range, the separator, what of the tail stands in the
    /// range (within tail()). The first range must end a cue's length before the gap.
    void keep(Range ofHead, QStringView separator, Range ofTail);

    [[nodiscard]] QString toString() const { return head().toString().append(tail()); }

private:
    void own();
    void forgetHead(qsizetype from);
    void listTailWords(Range moved);
    void dropTailWordsBefore(qsizetype position);

    /// The text as it was given, until something moves; then the start of units_.
    const char16_t* head_;
    qsizetype headSize_;
    std::vector<char16_t> units_;
    /// The tail stands at [tailStart_, end_) of units_.
    qsizetype tailStart_;
    qsizetype end_;

    qsizetype headRead_ = 0;
    std::vector<Range> headWords_;
    std::vector<Range> determiners_;
    std::array<std::vector<Range>, 17> prepositions_;
    /// From the last word to the first, as ranges of units_.
    std::vector<Range> tailWords_;
};

} // namespace velorin
