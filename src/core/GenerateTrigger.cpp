#include "core/GenerateTrigger.h"

#include "text/CaseMapping.h"
#include "text/Characters.h"
#include "text/WhiteSpace.h"

using namespace Qt::Literals::StringLiterals;

namespace velorin::GenerateTrigger {
namespace {

QString firstWord(QStringView trigger) {
    const auto words = WhiteSpace::split(trigger);
    return words.isEmpty() ? QString() : words.first().toString();
}

bool isSeparator(char32_t codePoint) {
    return WhiteSpace::isWhitespaceOrNewline(codePoint) || Characters::isPunctuation(codePoint);
}

QStringView trimmedOfSeparators(QStringView text) {
    while (!text.isEmpty() && isSeparator(Characters::codePointAt(text, 0)))
        text = text.sliced(Characters::length(Characters::codePointAt(text, 0)));
    while (!text.isEmpty() && isSeparator(Characters::codePointBefore(text, text.size())))
        text.chop(Characters::length(Characters::codePointBefore(text, text.size())));
    return text;
}

} // namespace

std::optional<QString> instruction(QStringView transcript, QStringView trigger) {
    const QStringView text = WhiteSpace::trimmed(transcript, WhiteSpace::Set::whitespacesAndNewlines);
    const QString word = CaseMapping::lower(firstWord(trigger));
    if (text.isEmpty() || word.isEmpty())
        return std::nullopt;
    qsizetype end = 0;
    while (end < text.size() && !isSeparator(Characters::codePointAt(text, end)))
        end += Characters::length(Characters::codePointAt(text, end));
    if (CaseMapping::lower(text.first(end)) != word)
        return std::nullopt;
    return trimmedOfSeparators(text.sliced(end)).toString();
}

QString display(QStringView trigger) {
    const QString word = firstWord(trigger);
    return word.isEmpty() ? u"generate"_s : word;
}

} // namespace velorin::GenerateTrigger
