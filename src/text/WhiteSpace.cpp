#include "text/WhiteSpace.h"

namespace velorin::WhiteSpace {

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
