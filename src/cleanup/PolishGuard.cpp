#include "cleanup/PolishGuard.h"

#include "text/CaseMapping.h"
#include "text/Characters.h"
#include "text/Graphemes.h"
#include "text/WhiteSpace.h"

#include <QSet>

#include <algorithm>
#include <array>

namespace velorin::PolishGuard {

using namespace Qt::Literals::StringLiterals;

namespace {

/// With these an answer begins.
constexpr std::array<QStringView, 11> answerOpeners{
    u"sure",    u"yes",    u"no",    u"certainly",    u"of course",      u"absolutely",
    u"here is", u"here's", u"i can", u"i'd be happy", u"great question",
};

QSet<QString> setOf(const QStringList& words) { return {words.begin(), words.end()}; }

qsizetype countIn(const QSet<QString>& set, const QStringList& words) {
    return std::count_if(words.begin(), words.end(), [&](const QString& word) { return set.contains(word); });
}

QString normalized(QStringView text) {
    return CaseMapping::lower(WhiteSpace::trimmed(text, WhiteSpace::Set::whitespacesAndNewlines));
}

bool startsWithWordCharacter(QStringView text) {
    return Characters::startsWithLetter(text) || Characters::startsWithNumber(text);
}

/// Begins with the opener as whole words, so that "nobody" is no "no".
bool opensWith(QStringView text, QStringView opener) {
    return Graphemes::beginsWith(text, opener) && !startsWithWordCharacter(text.sliced(opener.size()));
}

bool isAnswer(QStringView polished, QStringView original) {
    const auto* opener = std::find_if(answerOpeners.begin(), answerOpeners.end(),
                                      [&](QStringView each) { return opensWith(polished, each); });
    return opener != answerOpeners.end() && !opensWith(original, *opener);
}

} // namespace

QStringList words(QStringView text) {
    const QString lower = CaseMapping::lower(text);
    QStringList words;
    qsizetype start = 0;
    for (qsizetype i = 0; i < lower.size();) {
        const char32_t c = Characters::codePointAt(lower, i);
        const qsizetype end = i + Characters::length(c);
        if (!Characters::isAlphanumeric(c)) {
            if (i > start)
                words.append(lower.sliced(start, i - start));
            start = end;
        }
        i = end;
    }
    if (start < lower.size())
        words.append(lower.sliced(start));
    return words;
}

std::optional<QString> rejection(QStringView polished, QStringView original) {
    const QStringList originalWords = words(original);
    const QStringList polishedWords = words(polished);
    if (originalWords.isEmpty() || polishedWords.isEmpty())
        return u"empty"_s;
    if (polishedWords.size() > originalWords.size() * 13 / 10 + 3)
        return u"longer"_s;

    const qsizetype added = polishedWords.size() - countIn(setOf(originalWords), polishedWords);
    if (added > std::max<qsizetype>(2, polishedWords.size() * 35 / 100))
        return u"new words"_s;
    const qsizetype kept = countIn(setOf(polishedWords), originalWords);
    if (static_cast<double>(kept) / static_cast<double>(originalWords.size()) < 0.5)
        return u"dropped words"_s;

    const QString lowerOriginal = normalized(original);
    if (isAnswer(normalized(polished), lowerOriginal))
        return u"answer opener"_s;
    if (Graphemes::last(lowerOriginal) == u"?" && !polished.contains(u'?'))
        return u"question answered"_s;
    if (polished.contains(u'[') && !original.contains(u'['))
        return u"placeholder"_s;
    return std::nullopt;
}

} // namespace velorin::PolishGuard
