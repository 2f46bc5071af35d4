#include "cleanup/Passes.h"

#include "cleanup/Letters.h"
#include "cleanup/Stages.h"
#include "text/CaseMapping.h"
#include "text/Graphemes.h"

#include <algorithm>

namespace velorin::RuleCleaner {

namespace {

// Below, the text is collapsed: its only white space is single spaces between other characters.

constexpr bool isOneOf(char16_t unit, QStringView set) {
    for (qsizetype i = 0; i < set.size(); ++i) {
        if (set.utf16()[i] == unit)
            return true;
    }
    return false;
}

constexpr bool isTightBefore(char16_t unit) { return isOneOf(unit, u",.;:!?"); }
constexpr bool isTightBehind(char16_t unit) { return unit == u'、' || unit == u'。'; }
constexpr bool isOpening(char16_t unit) { return unit == u'(' || unit == u'['; }
constexpr bool isClosing(char16_t unit) { return unit == u')' || unit == u']'; }

bool isCollapsed(QStringView text) {
    bool isBehindSpace = true; // none may stand at the start
    for (const QChar c : text) {
        const bool isSpace = WhiteSpace::isWhitespaceOrNewline(c.unicode());
        if (isSpace && (isBehindSpace || c != u' '))
            return false;
        isBehindSpace = isSpace;
    }
    return text.isEmpty() || !isBehindSpace;
}

/// Takes out the spaces between a character that `isBefore` and any, and between any and one that `isBehind`.
template <typename IsBefore, typename IsBehind>
void dropSpaces(QString& text, IsBefore isBefore, IsBehind isBehind) {
    QChar* const units = text.data();
    qsizetype size = 0;
    char16_t previous = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t unit = units[i].unicode();
        const bool isTight = isBefore(previous) || (i + 1 < text.size() && isBehind(units[i + 1].unicode()));
        if (unit != u' ' || !isTight)
            units[size++] = units[i];
        previous = unit;
    }
    text.resize(size);
}

/// Of two commas side by side one goes; a third one waits for a partner of its own.
void mergeCommas(QString& text) {
    QChar* const units = text.data();
    qsizetype size = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        units[size++] = units[i];
        if (units[i] == u',' && i + 1 < text.size() && units[i + 1] == u',')
            ++i;
    }
    text.resize(size);
}

void dropLeadingSeparators(Draft& draft) {
    const QStringView text = draft.text();
    const auto* const end =
        std::ranges::find_if_not(text, [](QChar c) { return isOneOf(c.unicode(), u",;: "); });
    if (end != text.begin())
        draft.string().remove(0, end - text.begin());
}

/// What there is to do about the spacing of punctuation.
struct Untidiness {
    bool spaces = false;
    bool commas = false;
};

Untidiness untidinessOf(QStringView text) {
    Untidiness found;
    char16_t previous = 0;
    for (const QChar c : text) {
        const char16_t unit = c.unicode();
        if (previous == u' ')
            found.spaces |= isTightBefore(unit);
        else if (unit == u' ')
            found.spaces |= isTightBehind(previous);
        else if (unit == u',')
            found.commas |= previous == u',';
        previous = unit;
    }
    return found;
}

void spacePunctuation(Draft& draft) {
    const Untidiness found = untidinessOf(draft.text());
    if (found.spaces)
        dropSpaces(draft.string(), isTightBehind, isTightBefore);
    if (found.spaces || found.commas)
        mergeCommas(draft.string());
    dropLeadingSeparators(draft);
}

/// The operator that is written at the position, the longer ones first; empty if there is none.
QStringView operatorAt(QStringView text, qsizetype position) {
    const char16_t unit = text[position].unicode();
    if (unit != u'=' && unit != u'!' && unit != u'&' && unit != u'|')
        return {};
    constexpr std::array<QStringView, 7> operators{u"===", u"!==", u"==", u"!=", u"=>", u"&&", u"||"};
    const auto* const found = std::ranges::find_if(
        operators, [&](QStringView each) { return text.sliced(position).startsWith(each); });
    return found == operators.end() ? QStringView() : *found;
}

/// One space on each side of an operator; two of them side by side get two spaces between them.
void spaceOperators(Draft& draft) {
    const QStringView text = draft.text();
    qsizetype limit = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QStringView found = operatorAt(text, i);
        if (found.isEmpty())
            continue;
        const qsizetype end = i + found.size();
        draft.replace(i > limit && text[i - 1] == u' ' ? i - 1 : i, i, u" ");
        limit = Letters::isAt(text, end, u' ') ? end + 1 : end;
        draft.replace(end, limit, u" ");
        i = limit - 1;
    }
    draft.commit();
}

/// As collapse() does: nothing but spaces can stand side by side or at the ends here.
void collapseIfNeeded(Draft& draft) {
    if (!draft.isCollapsed() && !isCollapsed(draft.text()))
        draft.string() = WhiteSpace::collapsed(draft.text());
}

void spaceCode(Draft& draft) {
    dropSpaces(draft.string(), isOpening, isClosing);
    spaceOperators(draft);
    collapseIfNeeded(draft);
}

void dropFinalPeriod(Draft& draft) {
    const QStringView text = draft.text();
    if (text.endsWith(u'.'))
        draft.truncate(Letters::skipSpacesBack(text, text.size() - 1, 0));
}

void capitalizeHead(Draft& draft) {
    const QStringView head = Graphemes::first(draft.text());
    if (!CaseMapping::isLower(head))
        return;
    const QString upper = CaseMapping::upper(head);
    if (head.size() == 1 && head.front().unicode() < 0x80) {
        draft.overwrite(0, upper.front());
    } else {
        draft.replace(0, head.size(), upper);
        draft.commit();
    }
}

} // namespace

void tidy(Draft& draft, bool wasPunctuated, ContextProfile profile) {
    collapseIfNeeded(draft);
    spacePunctuation(draft);
    if (usesCodeSymbols(profile))
        spaceCode(draft);
    if (capitalizesSentences(profile))
        capitalizeHead(draft);
    if (!addsTerminalPunctuation(profile))
        dropFinalPeriod(draft);
    else if (wasPunctuated && !draft.text().isEmpty() && !endsPunctuated(draft.text()))
        draft.append(u'.');
}

} // namespace velorin::RuleCleaner
