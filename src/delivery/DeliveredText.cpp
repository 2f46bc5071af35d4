#include "delivery/DeliveredText.h"

#include <QChar>

#include <vector>

namespace velorin::DeliveredText {
namespace {

constexpr char16_t nextLine = 0x0085;

constexpr bool beginsEmbedding(char16_t unit) {
    return unit == 0x202a || unit == 0x202b || unit == 0x202d || unit == 0x202e;
}
constexpr bool beginsIsolate(char16_t unit) { return unit >= 0x2066 && unit <= 0x2068; }
constexpr bool endsEmbedding(char16_t unit) { return unit == 0x202c; }
constexpr bool endsIsolate(char16_t unit) { return unit == 0x2069; }

/// One line feed for each end of a line; no other control character but the tab. All of them are single
/// UTF-16 units.
QString withoutControls(const QString& text) {
    QString clear;
    clear.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar unit = text[i];
        if (unit == u'\r' || unit == QChar(nextLine)) {
            if (i + 1 == text.size() || text[i + 1] != u'\n')
                clear += u'\n';
        } else if (unit == u'\n' || unit == u'\t' || unit.category() != QChar::Other_Control) {
            clear += unit;
        }
    }
    return clear;
}

/// Where the overrides stand that their line does not close.
std::vector<qsizetype> openOverrides(const QString& text) {
    struct Open {
        qsizetype position;
        bool isIsolate;
    };
    std::vector<qsizetype> unclosed;
    std::vector<Open> open;
    const auto giveUp = [&](std::size_t from) {
        for (std::size_t i = from; i < open.size(); ++i)
            unclosed.push_back(open[i].position);
        open.resize(from);
    };
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t unit = text[i].unicode();
        if (beginsEmbedding(unit) || beginsIsolate(unit)) {
            open.push_back({i, beginsIsolate(unit)});
        } else if (endsEmbedding(unit)) {
            if (!open.empty() && !open.back().isIsolate)
                open.pop_back();
        } else if (endsIsolate(unit)) {
            std::size_t isolate = open.size();
            while (isolate > 0 && !open[isolate - 1].isIsolate)
                --isolate;
            if (isolate > 0) {
                giveUp(isolate); // what began within it ends with it
                open.pop_back();
            }
        } else if (unit == u'\n' || text[i] == QChar::ParagraphSeparator) {
            giveUp(0);
        }
    }
    giveUp(0);
    return unclosed;
}

} // namespace

QString cleared(const QString& text) {
    QString clear = withoutControls(text);
    const auto unclosed = openOverrides(clear);
    if (unclosed.empty())
        return clear;
    for (const auto position : unclosed)
        clear[position] = QChar::Null; // of which none is left by now
    return clear.remove(QChar::Null);
}

QString oneLine(const QString& text) { return cleared(text).simplified(); }

} // namespace velorin::DeliveredText
