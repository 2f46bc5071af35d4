#include "text/WhiteSpace.h"

namespace velorin::WhiteSpace {

namespace {

constexpr bool isSpaceSeparator(char32_t c) {
    return c == 0x20 || c == 0xA0 || c == 0x1680 || (c >= 0x2000 && c <= 0x200A) || c == 0x202F ||
           c == 0x205F || c == 0x3000;
}

constexpr bool isLineEnd(char32_t c) {
    return (c >= 0x0A && c <= 0x0D) || c == 0x85 || c == 0x2028 || c == 0x2029;
}

} // namespace

bool contains(Set set, char32_t codePoint) {
    if (codePoint == u'\t' || isSpaceSeparator(codePoint))
        return true;
    return set == Set::whitespacesAndNewlines && isLineEnd(codePoint);
}

QStringView trimmed(QStringView text, Set set) {
    while (!text.isEmpty() && contains(set, text.front().unicode()))
        text = text.sliced(1);
    while (!text.isEmpty() && contains(set, text.back().unicode()))
        text.chop(1);
    return text;
}

QList<QStringView> split(QStringView text, Set set) {
    QList<QStringView> pieces;
    qsizetype start = 0;
    for (qsizetype i = 0; i <= text.size(); ++i) {
        if (i < text.size() && !contains(set, text[i].unicode()))
            continue;
        if (i > start)
            pieces.append(text.sliced(start, i - start));
        start = i + 1;
    }
    return pieces;
}

QString collapsed(QStringView text, Set set) {
    QString result;
    result.reserve(text.size());
    for (const QStringView piece : split(text, set)) {
        if (!result.isEmpty())
            result.append(u' ');
        result.append(piece);
    }
    return result;
}

} // namespace velorin::WhiteSpace
