#include "cleanup/ReplacementTable.h"

#include "cleanup/Letters.h"
#include "text/CaseMapping.h"
#include "text/Characters.h"
#include "text/Graphemes.h"

#include <algorithm>

namespace velorin {

namespace {

/// Reads a text code point by code point in its folded form, where one may become several.
class FoldedReader final {
public:
    FoldedReader(QStringView text, qsizetype position) : text_(text), position_(position) {}

    /// The next code point, 0xFFFFFFFF at the end.
    char32_t next() {
        if (inExpansion_ < expansion_.size())
            return take();
        if (position_ >= text_.size())
            return atEnd;
        const char32_t c = Characters::codePointAt(text_, position_);
        const qsizetype start = position_;
        position_ += Characters::length(c);
        if (c < 0x80)
            return c >= U'A' && c <= U'Z' ? c + 0x20 : c;
        expansion_ = CaseMapping::folded(text_.sliced(start, position_ - start));
        inExpansion_ = 0;
        return take();
    }

    /// Within what one code point of the text became.
    [[nodiscard]] bool isInExpansion() const { return inExpansion_ < expansion_.size(); }
    [[nodiscard]] qsizetype position() const { return position_; }

    static constexpr char32_t atEnd = 0xFFFFFFFF;

private:
    char32_t take() {
        const char32_t c = Characters::codePointAt(expansion_, inExpansion_);
        inExpansion_ += Characters::length(c);
        return c;
    }

    QStringView text_;
    qsizetype position_;
    QString expansion_;
    qsizetype inExpansion_ = 0;
};

/// The end of the text that folds to `folded`; 0 if it does not.
qsizetype endOfFolded(QStringView text, qsizetype position, QStringView folded) {
    FoldedReader reader(text, position);
    for (qsizetype i = 0; i < folded.size();) {
        const char32_t wanted = Characters::codePointAt(folded, i);
        if (reader.next() != wanted)
            return 0;
        i += Characters::length(wanted);
    }
    return reader.isInExpansion() ? 0 : reader.position();
}

QString trimmed(const QString& text) {
    return WhiteSpace::trimmed(text, WhiteSpace::Set::whitespacesAndNewlines).toString();
}

} // namespace

ReplacementTable::ReplacementTable(std::span<const WordReplacement> replacements) {
    for (const WordReplacement& each : replacements) {
        if (!each.isUsable())
            continue;
        const QString heard = trimmed(each.heard);
        entries_.push_back(
            {CaseMapping::folded(heard), heard, trimmed(each.replacement), Graphemes::count(heard)});
    }
    std::ranges::stable_sort(entries_, std::ranges::greater{}, &Entry::length);
    for (std::size_t i = 0; i < entries_.size(); ++i) {
        const Entry& entry = entries_[i];
        const char32_t first = Characters::codePointAt(entry.folded, 0);
        byFirst_[first].push_back(i);
        if (first < 0x80)
            beginsWithAscii_[first] = true;
        // Of entries that differ only by case, the later one wins.
        written_.insert(CaseMapping::lower(entry.heard), entry.replacement);
    }
}

qsizetype ReplacementTable::matchAt(QStringView text, qsizetype position) const {
    const char32_t first = FoldedReader(text, position).next();
    if ((first < 0x80 && !beginsWithAscii_[first]) || !Letters::isFreeBefore(text, position))
        return 0;
    const auto candidates = byFirst_.find(first);
    if (candidates == byFirst_.end())
        return 0;
    for (const std::size_t i : *candidates) {
        const qsizetype end = endOfFolded(text, position, entries_[i].folded);
        if (end != 0 && Letters::isFreeBehind(text, end))
            return end;
    }
    return 0;
}

QString ReplacementTable::writtenFor(QStringView piece) const {
    const auto found = written_.find(CaseMapping::lower(piece));
    const QString chosen = found == written_.end() ? piece.toString() : *found;
    const QStringView head = Graphemes::first(chosen);
    if (!CaseMapping::isUpper(Graphemes::first(piece)) || !CaseMapping::isLower(head))
        return chosen;
    return CaseMapping::upper(head) + chosen.sliced(head.size());
}

} // namespace velorin
