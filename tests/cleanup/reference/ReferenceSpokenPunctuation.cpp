#include "Reference.h"

#include "cleanup/Tables.h"
#include "text/CaseMapping.h"
#include "text/Graphemes.h"
#include "text/Pattern.h"

#include <QStringList>

#include <numeric>
#include <vector>

namespace velorin::Reference {

using namespace Qt::Literals::StringLiterals;

namespace {

struct SymbolPattern {
    Pattern pattern;
    QStringView symbol;
};

Pattern symbolPattern(QStringView phrase) {
    QStringList pieces;
    for (const QStringView piece : phrase.split(u' '))
        pieces.append(Pattern::escaped(piece));
    const QString guarded = u"(?<![\\p{L}\\p{N}])"_s + pieces.join(u"\\s+"_s) + u"(?![\\p{L}\\p{N}])"_s;
    return Pattern(guarded);
}

std::vector<SymbolPattern> symbolPatterns() {
    std::vector<Tables::Substitution> table(Tables::codeSymbols.begin(), Tables::codeSymbols.end());
    std::stable_sort(table.begin(), table.end(), [](const auto& a, const auto& b) {
        return Graphemes::count(a.spoken) > Graphemes::count(b.spoken);
    });
    std::vector<SymbolPattern> patterns;
    for (const auto& [spoken, written] : table)
        patterns.push_back({symbolPattern(spoken), written});
    return patterns;
}

/// Replaces the matches that stand between whole characters by what `written` makes of them.
template <typename Written>
QString replacingMatches(const Pattern& pattern, const QString& text, Written written) {
    QString result;
    qsizetype copied = 0;
    for (const Pattern::Match& match : pattern.matches(text)) {
        if (!Graphemes::isBoundary(text, match.start()) || !Graphemes::isBoundary(text, match.end()))
            continue;
        result.append(QStringView(text).sliced(copied, match.start() - copied));
        result.append(written(match));
        copied = match.end();
    }
    return result.append(QStringView(text).sliced(copied));
}

QString symbolFor(const QString& spoken) {
    const QString key = CaseMapping::lower(spoken);
    for (const auto& [name, symbol] : Tables::spokenSeparators) {
        if (name == key)
            return symbol.toString();
    }
    return spoken;
}

QString joinSeparators(const QString& text) {
    static const Pattern pattern(Tables::spokenSeparator);
    QString current = text;
    for (int pass = 0; pass < Tables::separatorPasses; ++pass) {
        const QString joined = replacingMatches(pattern, current, [&](const Pattern::Match& match) {
            const QString left = match.groups[1].in(current).toString();
            const QString spoken = match.groups[2].in(current).toString();
            const QString right = match.groups[3].in(current).toString();
            if (Tables::contains(Tables::functionWords, CaseMapping::lower(left)))
                return QString(left + u' ' + spoken + u' ' + right);
            return QString(left + symbolFor(spoken) + right);
        });
        if (joined == current)
            break;
        current = joined;
    }
    return current;
}

QStringView firstWordOf(QStringView text) {
    qsizetype start = 0;
    while (start < text.size() && Graphemes::first(text.sliced(start)) == u" ")
        ++start;
    qsizetype end = start;
    while (end < text.size() && Graphemes::first(text.sliced(end)) != u" ")
        end = Graphemes::next(text, end);
    return text.sliced(start, end - start);
}

} // namespace

QString commandFlags(const QString& text) {
    static const std::array<Pattern, 3> patterns{Pattern(Tables::typesetFlags[0].spoken),
                                                 Pattern(Tables::typesetFlags[1].spoken),
                                                 Pattern(Tables::typesetFlags[2].spoken)};
    QString result = text;
    for (std::size_t i = 0; i < patterns.size(); ++i)
        result = patterns[i].replaceAll(result, Tables::typesetFlags[i].written);

    const QStringView word = firstWordOf(result);
    const QString lower = CaseMapping::lower(word);
    if (word == lower || !Tables::contains(Tables::commandNames, lower))
        return result;
    return lower + Graphemes::drop(result, Graphemes::count(word)).toString();
}

QString applyCodeSymbols(const QString& text) {
    static const std::vector<SymbolPattern> patterns = symbolPatterns();
    QString result = text;
    for (const SymbolPattern& each : patterns)
        result = replacingMatches(each.pattern, result, [&](const Pattern::Match&) { return each.symbol; });
    return result;
}

QString spokenPunctuation(const QString& text, ContextProfile profile) {
    static const Pattern address(Tables::spokenAddress);
    static const Pattern longFlag(Tables::spokenLongFlag);
    QString result = text;
    if (profile == ContextProfile::email)
        result = address.replaceAll(result, Tables::writtenAddress);
    result = longFlag.replaceAll(result, Tables::writtenLongFlag);
    if (usesCodeSymbols(profile))
        result = applyCodeSymbols(commandFlags(result));
    return joinSeparators(result);
}

} // namespace velorin::Reference
