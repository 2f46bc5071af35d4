#include "HostileTexts.h"

namespace velorin::agreement {

using namespace Qt::Literals::StringLiterals;

std::vector<HostileText> hostileTexts(qsizetype size) {
    const auto over = [size](QStringView piece) { return piece.toString().repeated(size / piece.size()); };
    // High and low ones in turn, parted so that none makes a pair.
    static constexpr char16_t surrogates[] = {0xD800, u' ', 0xDC00, u' '};
    return {
        {u"one-word"_s, over(u"a")},
        {u"commas"_s, over(u",")},
        {u"no-wait"_s, over(u"no wait ")},
        {u"comma-no-wait"_s, over(u"x, no wait ")},
        {u"dot-com"_s, over(u"dot com ")},
        {u"emoji"_s, over(u"🙂").first(size / 2)},
        {u"marks"_s, u"e"_s + QString(size / 2, QChar(u'\u0301'))},
        {u"nested-scratch-that"_s, over(u"so, scratch that ")},
        {u"additions"_s, over(u"so, scratch that one two three ")},
        {u"prepositions"_s, over(u"go by x, no to y ")},
        {u"line-feeds"_s, over(u"\n")},
        {u"surrogates"_s, over(QStringView(surrogates, std::size(surrogates)))},
        {u"commands"_s, over(u"new line ")},
        {u"fillers"_s, over(u"um, ")},
        {u"flags"_s, over(u"dash dash ")},
        {u"dashes"_s, over(u"— - ")},
        {u"operators"_s, over(u"== ")},
        {u"one-correction"_s, u"so 🙂"_s + over(u"🙂") + u", no wait a"_s},
    };
}

} // namespace velorin::agreement
