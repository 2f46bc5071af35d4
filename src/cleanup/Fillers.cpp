#include "cleanup/Passes.h"

#include "cleanup/Letters.h"

namespace velorin::RuleCleaner {

namespace {

using Letters::isAt;
using Letters::Run;

/// From the comma before the filler, if there is one, on.
qsizetype startOfFiller(QStringView text, qsizetype filler, qsizetype limit) {
    const qsizetype start = Letters::skipSpacesBack(text, filler, limit);
    return start > limit && text[start - 1] == u',' ? start - 1 : start;
}

/// With the comma of either kind behind the filler, and the space around it.
qsizetype endOfFiller(QStringView text, qsizetype fillerEnd) {
    const qsizetype end = Letters::skipSpaces(text, fillerEnd);
    return isAt(text, end, u',') || isAt(text, end, u'、') ? Letters::skipSpaces(text, end + 1) : end;
}

void removeFillerWords(Draft& draft) {
    const QStringView text = draft.text();
    qsizetype limit = 0;
    for (const Lexicon::Trigger& word : draft.triggers().words) {
        if (!word.isFor(Lexicon::fillers) || !Letters::isWordBoundary(text, word.start) ||
            !Letters::isWordBoundary(text, word.end))
            continue;
        const qsizetype start = startOfFiller(text, word.start, limit);
        limit = endOfFiller(text, word.end);
        draft.replace(start, limit, u" ");
    }
    draft.commit();
}

/// The end of "like" or "you know"; 0 if it is neither.
qsizetype endOfLike(QStringView text, Run run) {
    if (run.key == wordKey(u"like"))
        return run.end;
    if (run.key != wordKey(u"you") || !isAt(text, run.end, u' '))
        return 0;
    const Run second = Letters::runAt(text, run.end + 1);
    return second.key == wordKey(u"know") ? second.end : 0;
}

/// Only between two commas, so that "like" as an ordinary word stays.
void removeLikes(Draft& draft) {
    const QStringView text = draft.text();
    qsizetype limit = 0;
    for (const Lexicon::Trigger& word : draft.triggers().words) {
        const qsizetype end = endOfLike(text, word);
        if (end == 0 || word.start < limit)
            continue;
        const qsizetype start = Letters::skipSpacesBack(text, word.start, limit);
        const qsizetype comma = Letters::skipSpaces(text, end);
        if (start == limit || text[start - 1] != u',' || !isAt(text, comma, u','))
            continue;
        limit = comma + 1;
        draft.replace(start - 1, limit, u"");
    }
    draft.commit();
}

} // namespace

void stripFillers(Draft& draft) {
    if (draft.concerns(Lexicon::fillers))
        removeFillerWords(draft);
    if (draft.concerns(Lexicon::likeFillers))
        removeLikes(draft);
}

} // namespace velorin::RuleCleaner
