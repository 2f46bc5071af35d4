#include "cleanup/Passes.h"

#include "cleanup/Letters.h"

namespace velorin::RuleCleaner {

namespace {

using Letters::isAt;
using Letters::Run;

bool isFiller(WordKey key) {
    switch (key) {
    case wordKey(u"umm"):
    case wordKey(u"uhh"):
    case wordKey(u"mmm"):
    case wordKey(u"hmm"):
    case wordKey(u"erm"):
    case wordKey(u"euh"):
    case wordKey(u"um"):
    case wordKey(u"uh"):
    case wordKey(u"er"):
    case wordKey(u"ah"):
    case wordKey(u"eh"):
    case Letters::foreignFiller:
        return true;
    default:
        return false;
    }
}

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
    for (const Run& run : draft.triggers().runs) {
        if (!isFiller(run.key) || !Letters::isWordBoundary(text, run.start) ||
            !Letters::isWordBoundary(text, run.end))
            continue;
        const qsizetype start = startOfFiller(text, run.start, limit);
        limit = endOfFiller(text, run.end);
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
    for (const Run& run : draft.triggers().runs) {
        const qsizetype end = endOfLike(text, run);
        if (end == 0 || run.start < limit)
            continue;
        const qsizetype start = Letters::skipSpacesBack(text, run.start, limit);
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
