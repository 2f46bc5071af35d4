#include "cleanup/CorrectionCues.h"

#include "cleanup/Letters.h"

#include <algorithm>

namespace velorin {

namespace {

using Letters::isAt;
using Letters::Run;

bool endsWord(QStringView text, qsizetype end) { return end > 0 && Letters::isWordBoundary(text, end); }

/// The end of the word if it stands behind exactly one space; 0 if not.
qsizetype endOfNext(QStringView text, qsizetype position, WordKey word) {
    if (!isAt(text, position, u' '))
        return 0;
    const Run run = Letters::runAt(text, position + 1);
    return run.key == word ? run.end : 0;
}

/// The end of two words that may have a comma and any white space before them.
qsizetype endBehindComma(QStringView text, qsizetype position, WordKey first, WordKey second) {
    if (isAt(text, position, u','))
        ++position;
    const qsizetype start = Letters::skipSpaces(text, position);
    if (start == position)
        return 0;
    const Run run = Letters::runAt(text, start);
    return run.key == first ? endOfNext(text, run.end, second) : 0;
}

/// The ends at which a cue that begins with this run may end, longer cues before their parts; 0 for those
/// that it is not.
QVarLengthArray<qsizetype, 4> endsOfCue(QStringView text, Run run) {
    const auto next = [&](WordKey word) { return endOfNext(text, run.end, word); };
    switch (run.key) {
    case wordKey(u"scratch"):
        return {next(wordKey(u"that"))};
    case wordKey(u"wait"):
        return {endBehindComma(text, run.end, wordKey(u"i"), wordKey(u"mean")), run.end};
    case wordKey(u"i"):
        return {next(wordKey(u"meant")), next(wordKey(u"mean"))};
    case wordKey(u"actually"):
        return {next(wordKey(u"no")), run.end};
    case wordKey(u"sorry"):
        return {next(wordKey(u"no")), run.end};
    case wordKey(u"no"):
        return {next(wordKey(u"wait")), next(wordKey(u"actually")),
                endBehindComma(text, run.end, wordKey(u"scratch"), wordKey(u"that")), run.end};
    case wordKey(u"make"):
        return {next(wordKey(u"that"))};
    default:
        return {};
    }
}

} // namespace

CorrectionCues correctionCuesIn(Draft& draft) {
    const QStringView text = draft.text();
    CorrectionCues cues;
    qsizetype limit = 0;
    for (const Lexicon::Trigger& run : draft.triggers().words) {
        if (run.start < limit)
            continue;
        const auto ends = endsOfCue(text, run);
        const auto* const end =
            std::ranges::find_if(ends, [&](qsizetype each) { return endsWord(text, each); });
        if (end == ends.end() || !Letters::isWordBoundary(text, run.start))
            continue;
        cues.append({run.start, *end});
        limit = *end;
    }
    return cues;
}

} // namespace velorin
