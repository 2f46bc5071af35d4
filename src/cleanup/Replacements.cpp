#include "cleanup/RuleCleaner.h"

#include "text/CaseMapping.h"
#include "text/Graphemes.h"
#include "text/Pattern.h"
#include "text/WhiteSpace.h"

#include <QHash>
#include <QStringList>

#include <algorithm>
#include <vector>

namespace velorin::RuleCleaner {

using namespace Qt::Literals::StringLiterals;

namespace {

struct Pair {
    QString heard;
    QString replacement;
    qsizetype length = 0;
};

/// The usable entries, longer ones first.
std::vector<Pair> pairsOf(std::span<const WordReplacement> replacements) {
    constexpr auto set = WhiteSpace::Set::whitespacesAndNewlines;
    std::vector<Pair> pairs;
    for (const WordReplacement& entry : replacements) {
        if (!entry.isUsable())
            continue;
        const QString heard = WhiteSpace::trimmed(entry.heard, set).toString();
        pairs.push_back(
            {heard, WhiteSpace::trimmed(entry.replacement, set).toString(), Graphemes::count(heard)});
    }
    std::stable_sort(pairs.begin(), pairs.end(),
                     [](const Pair& a, const Pair& b) { return a.length > b.length; });
    return pairs;
}

/// Carries the capital of a sentence head over.
QString inCaseOf(QStringView piece, const QString& chosen) {
    const QStringView head = Graphemes::first(chosen);
    if (!CaseMapping::isUpper(Graphemes::first(piece)) || !CaseMapping::isLower(head))
        return chosen;
    return CaseMapping::upper(head) + chosen.sliced(head.size());
}

} // namespace

QString applyReplacements(QStringView text, std::span<const WordReplacement> replacements) {
    const std::vector<Pair> pairs = pairsOf(replacements);
    if (pairs.empty())
        return text.toString();
    QStringList alternatives;
    QHash<QString, QString> written;
    for (const Pair& pair : pairs) {
        alternatives.append(u"(?<![\\p{L}\\p{N}])"_s + Pattern::escaped(pair.heard) +
                            u"(?![\\p{L}\\p{N}])"_s);
        written.insert(CaseMapping::lower(pair.heard), pair.replacement);
    }
    const Pattern pattern(alternatives.join(u'|'));

    QString result;
    qsizetype copied = 0;
    for (const Pattern::Match& match : pattern.matches(text)) {
        if (!Graphemes::isBoundary(text, match.start()) || !Graphemes::isBoundary(text, match.end()))
            continue;
        const QString piece = match.groups.front().in(text).toString();
        result.append(text.sliced(copied, match.start() - copied));
        result.append(inCaseOf(piece, written.value(CaseMapping::lower(piece), piece)));
        copied = match.end();
    }
    return result.append(text.sliced(copied));
}

} // namespace velorin::RuleCleaner
