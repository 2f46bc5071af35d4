/// The user's replacements, made ready for finding them in a text in one walk.
///
/// Finds what one pattern of all entries would find: at each place the longest entry, compared by case
/// folding, with no letter or digit touching it. Entries are looked up by their first code point, so that a
/// thousand of them cost little more than one.
#pragma once

#include "cleanup/Personalization.h"

#include <QHash>
#include <QString>

#include <array>
#include <span>
#include <vector>

namespace velorin {

class ReplacementTable final {
public:
    explicit ReplacementTable(std::span<const WordReplacement> replacements);

    [[nodiscard]] bool isEmpty() const { return entries_.empty(); }

    /// The end of the longest entry that stands at the position; 0 if there is none.
    [[nodiscard]] qsizetype matchAt(QStringView text, qsizetype position) const;

    /// What to write for a piece of text that matched, in the case of its first character.
    [[nodiscard]] QString writtenFor(QStringView piece) const;

private:
    struct Entry {
        QString folded;
        QString heard;
        QString replacement;
        qsizetype length = 0;
    };

    std::vector<Entry> entries_;
    /// Numbers of entries by the first code point of their folded form, longer ones first.
    QHash<char32_t, std::vector<std::size_t>> byFirst_;
    std::array<bool, 128> beginsWithAscii_{};
    QHash<QString, QString> written_;
};

} // namespace velorin
