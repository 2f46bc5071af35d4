#include "text/ForeignText.h"

#include <QChar>

namespace velorin::ForeignText {

namespace {

bool turnsTheDirection(char32_t character) {
    return (character >= 0x202a && character <= 0x202e) || (character >= 0x2066 && character <= 0x2069);
}

bool isNoPartOfALine(char32_t character) {
    switch (QChar::category(character)) {
    case QChar::Other_Control:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return true;
    default:
        return false;
    }
}

} // namespace

QString oneLine(QStringView text, qsizetype most) {
    const auto isCutInHalf = text.size() > most && most > 0 && text[most - 1].isHighSurrogate();
    const auto cut = text.first(std::min(text.size(), isCutInHalf ? most - 1 : most));
    QString line;
    line.reserve(cut.size());
    for (qsizetype i = 0; i < cut.size(); ++i) {
        const bool isPair = cut[i].isHighSurrogate() && i + 1 < cut.size() && cut[i + 1].isLowSurrogate();
        const char32_t character =
            isPair ? QChar::surrogateToUcs4(cut[i], cut[i + 1]) : char32_t{cut[i].unicode()};
        i += isPair ? 1 : 0;
        if (QChar::isSurrogate(character))
            line += QChar::ReplacementCharacter;
        else if (isNoPartOfALine(character))
            line += u' ';
        else if (!turnsTheDirection(character))
            line += QChar::fromUcs4(character);
    }
    return line;
}

} // namespace velorin::ForeignText
