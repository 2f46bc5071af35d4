#include "Reference.h"

#include "cleanup/Tables.h"
#include "text/CaseMapping.h"
#include "text/Characters.h"
#include "text/Graphemes.h"
#include "text/Pattern.h"
#include "text/WhiteSpace.h"

#include <QStringList>

#include <vector>

namespace velorin::Reference {

using namespace Qt::Literals::StringLiterals;

namespace {

/// A table of substitutions, its patterns compiled; the rows apply one after the other.
class Passes final {
public:
    template <std::size_t size>
    explicit Passes(const std::array<Tables::Substitution, size>& table) {
        for (const auto& [spoken, written] : table)
            rows_.emplace_back(Pattern(spoken), written);
    }

    [[nodiscard]] QString applied(const QString& text) const {
        QString result = text;
        for (const auto& [pattern, written] : rows_)
            result = pattern.replaceAll(result, written);
        return result;
    }

private:
    std::vector<std::pair<Pattern, QStringView>> rows_;
};

QString withUpperHead(const QString& text) {
    const QStringView head = Graphemes::first(text);
    return CaseMapping::upper(head) + text.sliced(head.size());
}

QString capitalizeFirst(const QString& text) {
    const QStringView head = Graphemes::first(text);
    return Characters::startsWithLetter(head) && CaseMapping::isLower(head) ? withUpperHead(text) : text;
}

QString capitalizedLine(const QString& line) {
    if (Graphemes::beginsWith(line, u"- "))
        return u"- "_s + capitalizeFirst(line.sliced(2));
    return capitalizeFirst(line);
}

/// The pieces between the characters that equal the separator.
QStringList splitAt(QStringView text, QStringView separator) {
    QStringList pieces;
    qsizetype start = 0;
    for (qsizetype i = 0; i < text.size();) {
        const qsizetype end = Graphemes::next(text, i);
        if (text.sliced(i, end - i) == separator) {
            pieces.append(text.sliced(start, i - start).toString());
            start = end;
        }
        i = end;
    }
    pieces.append(text.sliced(start).toString());
    return pieces;
}

QString singleSpaced(const QString& line) {
    QStringList pieces = splitAt(line, u" ");
    pieces.removeAll(QString());
    return pieces.join(u' ');
}

} // namespace

bool endsPunctuated(QStringView text) {
    return Tables::contains(Tables::finishedEndings, Graphemes::last(text));
}

QString stripFillers(const QString& text) {
    static const Passes passes(Tables::fillers);
    return passes.applied(text);
}

QString tidy(const QString& text, bool wasPunctuated, ContextProfile profile) {
    static const Passes punctuation(Tables::punctuationSpacing);
    static const Passes code(Tables::codeSpacing);
    static const Pattern finalPeriod(Tables::finalPeriod.spoken);
    QString result = punctuation.applied(WhiteSpace::collapsed(text));
    if (usesCodeSymbols(profile))
        result = WhiteSpace::trimmed(code.applied(result)).toString();
    if (capitalizesSentences(profile) && CaseMapping::isLower(Graphemes::first(result)))
        result = withUpperHead(result);
    if (addsTerminalPunctuation(profile))
        return wasPunctuated && !result.isEmpty() && !endsPunctuated(result) ? QString(result + u'.')
                                                                             : result;
    return finalPeriod.replaceAll(result, Tables::finalPeriod.written);
}

LayoutResult applyLayoutCommands(QStringView text) {
    static const Passes commands(Tables::layoutCommands);
    const QString before = text.toString();
    const QString after = commands.applied(before);
    return {after, after != before};
}

QString normalizeLayout(QStringView text, bool capitalize) {
    static const Passes spacing(Tables::lineSpacing);
    const QString spaced = spacing.applied(text.toString());
    QStringList lines = splitAt(WhiteSpace::trimmed(spaced, WhiteSpace::Set::whitespacesAndNewlines), u"\n");
    for (QString& line : lines) {
        line = singleSpaced(line);
        if (capitalize)
            line = capitalizedLine(line);
    }
    return lines.join(u'\n');
}

QStringList words(QStringView text) {
    const QString lower = CaseMapping::lower(text);
    QStringList words;
    QString word;
    for (qsizetype i = 0; i < lower.size();) {
        const char32_t c = Characters::codePointAt(lower, i);
        const qsizetype size = Characters::length(c);
        if (Characters::isAlphanumeric(c))
            word.append(QStringView(lower).sliced(i, size));
        else if (!word.isEmpty())
            words.append(std::exchange(word, QString()));
        i += size;
    }
    if (!word.isEmpty())
        words.append(word);
    return words;
}

QString clean(QStringView raw, std::span<const WordReplacement> replacements, ContextProfile profile) {
    const bool wasPunctuated = endsPunctuated(raw);
    QString text = WhiteSpace::collapsed(raw);
    text = spokenPunctuation(text, profile);
    text = stripFillers(text);
    text = applyCorrections(text);
    text = applyReplacements(text, replacements);
    text = tidy(text, wasPunctuated, profile);
    const LayoutResult layout = applyLayoutCommands(text);
    return layout.hasChanged ? normalizeLayout(layout.text, capitalizesSentences(profile)) : text;
}

} // namespace velorin::Reference
