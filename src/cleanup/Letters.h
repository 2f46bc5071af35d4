/// Reads text the way the patterns of the cleanup do, without their engine: which characters are letters of
/// the plain alphabet when case does not count, where whole words begin and end.
///
/// Case folding brings two foreigners into the alphabet, the long s and the Kelvin sign, and the ligatures
/// of s and t spell two letters at once. Fillers in scripts without case are found as runs, too. Tests
/// compare each function with ICU over all code points.
#pragma once

#include "cleanup/WordKey.h"
#include "text/WhiteSpace.h"

#include <QStringView>

namespace velorin::Letters {

/// The key of the fillers that are written in a script of their own; no word has it.
inline constexpr WordKey foreignFiller = ~WordKey{0};

/// The longest row of plain letters at its place. The key is 0 if it has too many letters to be of interest.
struct Run {
    qsizetype start = 0;
    qsizetype end = 0;
    WordKey key = 0;

    explicit operator bool() const { return end > start; }
};

/// The first run that starts at the position or behind it; an empty one if there is none.
[[nodiscard]] Run nextRun(QStringView text, qsizetype position);

/// The run that starts exactly here. Empty if there is no letter.
[[nodiscard]] Run runAt(QStringView text, qsizetype position);

/// The run that ends exactly here, as far as it does not begin before the limit.
[[nodiscard]] Run runBefore(QStringView text, qsizetype position, qsizetype limit);

inline constexpr char16_t longS = 0x17F;
inline constexpr char16_t kelvinSign = 0x212A;

/// The number of the letter, 1 to 26, or 0.
[[nodiscard]] constexpr unsigned plainLetter(char16_t unit) {
    if (unit < 0x80) {
        const unsigned letter = (unit | 0x20U) - u'a';
        return letter < 26 ? letter + 1 : 0;
    }
    if (unit == longS)
        return u's' - u'a' + 1;
    return unit == kelvinSign ? u'k' - u'a' + 1 : 0;
}
/// a to z, without regard to case.
[[nodiscard]] inline bool isPlainLetter(char16_t unit) { return plainLetter(unit) != 0; }
/// a to z, 0 to 9.
[[nodiscard]] inline bool isPlainAlphanumeric(char16_t unit) {
    return (unit >= u'0' && unit <= u'9') || isPlainLetter(unit);
}

/// Where `\b` matches.
[[nodiscard]] bool isWordBoundary(QStringView text, qsizetype position);

/// `(?<![\p{L}\p{N}])` and `(?![\p{L}\p{N}])`.
[[nodiscard]] bool isFreeBefore(QStringView text, qsizetype position);
[[nodiscard]] bool isFreeBehind(QStringView text, qsizetype position);

/// Past the white space that begins at the position.
[[nodiscard]] inline qsizetype skipSpaces(QStringView text, qsizetype position) {
    while (position < text.size() && WhiteSpace::isWhitespaceOrNewline(text[position].unicode()))
        ++position;
    return position;
}

/// Before the white space that ends at the position, but not before the limit.
[[nodiscard]] inline qsizetype skipSpacesBack(QStringView text, qsizetype position, qsizetype limit) {
    while (position > limit && WhiteSpace::isWhitespaceOrNewline(text[position - 1].unicode()))
        --position;
    return position;
}

[[nodiscard]] inline bool isAt(QStringView text, qsizetype position, char16_t unit) {
    return position >= 0 && position < text.size() && text[position] == unit;
}

} // namespace velorin::Letters
