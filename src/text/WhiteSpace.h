/// The two sets of white space that texts are trimmed by. Both are sets of code points and hold the tab;
/// neither holds U+200B. Every member is a single UTF-16 unit, so views can be tested unit by unit.
///
///     WhiteSpace::trimmed(u" \t dot com\n")                                          // "dot com\n"
///     WhiteSpace::trimmed(u" dot com\n", WhiteSpace::Set::whitespacesAndNewlines)    // "dot com"
///
/// Everything here is pure and may run on any thread.
#pragma once

#include <QStringList>
#include <QStringView>

namespace velorin::WhiteSpace {

enum class Set {
    /// General category Zs and the tab.
    whitespaces,
    /// General categories Zs, Zl and Zp, the tab, U+000A to U+000D and U+0085.
    whitespacesAndNewlines,
};

/// White space without line ends, the shape in which it stands within a line.
[[nodiscard]] constexpr bool isWhitespace(char32_t c) {
    if (c < 0x80)
        return c == U' ' || c == U'\t';
    return c == 0xA0 || c == 0x1680 || (c >= 0x2000 && c <= 0x200A) || c == 0x202F || c == 0x205F ||
           c == 0x3000;
}

[[nodiscard]] constexpr bool isWhitespaceOrNewline(char32_t c) {
    if (c < 0x80)
        return c == U' ' || (c >= 0x09 && c <= 0x0D);
    return c == 0x85 || c == 0x2028 || c == 0x2029 || isWhitespace(c);
}

[[nodiscard]] constexpr bool contains(Set set, char32_t codePoint) {
    return set == Set::whitespaces ? isWhitespace(codePoint) : isWhitespaceOrNewline(codePoint);
}

/// The view without the members of the set at both ends.
[[nodiscard]] QStringView trimmed(QStringView text, Set set = Set::whitespaces);

/// The non-empty pieces between members of the set, as views into the text.
[[nodiscard]] QList<QStringView> split(QStringView text, Set set = Set::whitespacesAndNewlines);

/// The pieces of split(), joined with one space each.
[[nodiscard]] QString collapsed(QStringView text, Set set = Set::whitespacesAndNewlines);

} // namespace velorin::WhiteSpace
