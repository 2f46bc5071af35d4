/// Characters as people see them: extended grapheme clusters, so that an emoji of several code points or a
/// letter with its marks counts once.
///
/// Positions are UTF-16 offsets; results are views into the text that was given. Plain letters cost a
/// comparison each; only where marks, emoji and the like stand is ICU asked, on the text in place.
///
///     Graphemes::count(u"e\u0301 👩‍👧")      // 3
///     Graphemes::drop(u"e\u0301tude", 1)       // "tude"
///
/// Pure; any thread.
#pragma once

#include <QStringView>

namespace velorin::Graphemes {

[[nodiscard]] qsizetype count(QStringView text);

/// Empty for an empty text.
[[nodiscard]] QStringView first(QStringView text);
[[nodiscard]] QStringView last(QStringView text);

/// The first `count` characters, or all if there are fewer.
[[nodiscard]] QStringView prefix(QStringView text, qsizetype count);
/// What prefix() leaves.
[[nodiscard]] QStringView drop(QStringView text, qsizetype count);

/// Whether a character begins or ends at the position. Both ends of the text are boundaries, positions
/// outside of it are not.
[[nodiscard]] bool isBoundary(QStringView text, qsizetype position);

/// The nearest boundary behind or before the position, which must lie within the text and not at its end or
/// its start, nor split a pair of surrogates.
[[nodiscard]] qsizetype next(QStringView text, qsizetype position);
[[nodiscard]] qsizetype previous(QStringView text, qsizetype position);

/// Whether the text begins with the whole characters of `start`: "e\u0301" does not begin with "e".
[[nodiscard]] bool beginsWith(QStringView text, QStringView start);

} // namespace velorin::Graphemes
