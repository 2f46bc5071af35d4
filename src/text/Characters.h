/// What kind of character a code point is, by its Unicode general category.
///
/// An unpaired surrogate is a code point of its own and of no kind. Pure; any thread.
#pragma once

#include <QStringView>

namespace velorin::Characters {

/// L*, M* or N*: what words are made of.
[[nodiscard]] bool isAlphanumeric(char32_t codePoint);
/// L*.
[[nodiscard]] bool isLetter(char32_t codePoint);
/// N*.
[[nodiscard]] bool isNumber(char32_t codePoint);
/// P*.
[[nodiscard]] bool isPunctuation(char32_t codePoint);

/// The code point at the position; a surrogate without its partner stands for itself.
[[nodiscard]] char32_t codePointAt(QStringView text, qsizetype position);
/// The code point that ends at the position, which must not be 0.
[[nodiscard]] char32_t codePointBefore(QStringView text, qsizetype position);
/// UTF-16 units that the code point takes.
[[nodiscard]] constexpr qsizetype length(char32_t codePoint) { return codePoint > 0xFFFF ? 2 : 1; }

/// Characters as people see them are judged by their first code point; an empty one is of no kind.
[[nodiscard]] bool startsWithLetter(QStringView character);
[[nodiscard]] bool startsWithNumber(QStringView character);

} // namespace velorin::Characters
