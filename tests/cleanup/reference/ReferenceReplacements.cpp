#include "Reference.h"

#include "text/CaseMapping.h"
#include "text/Graphemes.h"
#include "text/Pattern.h"
#include "text/WhiteSpace.h"

#include <QHash>
#include <QStringList>

#include <algorithm>
#include <optional>
#include <vector>

namespace velorin::Reference {

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

/// The list as one pattern, and what to write for what it finds.
struct Compiled {
    std::optional<Pattern> pattern;
    QHash<QString, QString> written;
};

Compiled compiled(std::span<const WordReplacement> replacements) {
    Compiled result;
    QStringList alternatives;
    for (const Pair& pair : pairsOf(replacements)) {
        alternatives.append(u"(?<![\\p{L}\\p{N}])"_s + Pattern::escaped(pair.heard) +
                            u"(?![\\p{L}\\p{N}])"_s);
        result.written.insert(CaseMapping::lower(pair.heard), pair.replacement);
    }
    if (!alternatives.isEmpty())
        result.pattern = Pattern::compile(alternatives.join(u'|'));
    return result;
}

QString keyOf(std::span<const WordReplacement> replacements) {
    QString key;
    for (const auto& [id, heard, replacement] : replacements)
        key += u"%1 %2 "_s.arg(heard.size()).arg(replacement.size()) + heard + replacement;
    return key;
}

/// Each list is compiled once: it takes a thousand times as long as to use it.
const Compiled& compiledOnce(std::span<const WordReplacement> replacements) {
    constexpr qsizetype mostKept = 512;
    static thread_local QHash<QString, Compiled> known;
    const QString key = keyOf(replacements);
    auto found = known.find(key);
    if (found == known.end()) {
        if (known.size() == mostKept)
            known.clear();
        found = known.insert(key, compiled(replacements));
    }
    return *found;
}

} // namespace

QString applyReplacements(QStringView text, std::span<const WordReplacement> replacements) {
    const Compiled& table = compiledOnce(replacements);
    if (!table.pattern)
        return text.toString();
    QString result;
    qsizetype copied = 0;
    for (const Pattern::Match& match : table.pattern->matches(text)) {
        if (!Graphemes::isBoundary(text, match.start()) || !Graphemes::isBoundary(text, match.end()))
            continue;
        const QString piece = match.groups.front().in(text).toString();
        result.append(text.sliced(copied, match.start() - copied));
        result.append(inCaseOf(piece, table.written.value(CaseMapping::lower(piece), piece)));
        copied = match.end();
    }
    return result.append(text.sliced(copied));
}

} // namespace velorin::Reference
