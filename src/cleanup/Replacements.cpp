#include "cleanup/Passes.h"

#include "cleanup/ReplacementTable.h"
#include "cleanup/RuleCleaner.h"
#include "text/Characters.h"
#include "text/Graphemes.h"

#include <algorithm>

namespace velorin::RuleCleaner {

namespace {

/// The table of a list, and the list that it was made of.
struct Prepared {
    QList<WordReplacement> list;
    ReplacementTable table;
};

/// The list changes when the user edits it, the text many times a second: each thread keeps the last table.
const ReplacementTable& tableOf(std::span<const WordReplacement> replacements) {
    static thread_local Prepared last{{}, ReplacementTable({})};
    if (!std::equal(replacements.begin(), replacements.end(), last.list.cbegin(), last.list.cend()))
        last = {{replacements.begin(), replacements.end()}, ReplacementTable(replacements)};
    return last.table;
}

} // namespace

void applyReplacements(Draft& draft, std::span<const WordReplacement> replacements) {
    const ReplacementTable& table = tableOf(replacements);
    if (table.isEmpty())
        return;
    const QStringView text = draft.text();
    for (qsizetype position = 0; position < text.size();) {
        const qsizetype end = table.matchAt(text, position);
        if (end == 0) {
            position += Characters::length(Characters::codePointAt(text, position));
            continue;
        }
        if (Graphemes::isBoundary(text, position) && Graphemes::isBoundary(text, end))
            draft.replace(position, end, table.writtenFor(text.sliced(position, end - position)));
        position = end;
    }
    draft.commit();
}

} // namespace velorin::RuleCleaner
