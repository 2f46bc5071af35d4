/// Text that a stranger gave for a name or a title, made fit for a log line and for people.
///
///     ForeignText::oneLine(u"Editor\n\x1b[2J"_s, 128)  // "Editor  [2J"
#pragma once

#include <QString>

namespace velorin::ForeignText {

/// Of names of applications. In UTF-16 units.
inline constexpr qsizetype longestName = 128;

/// One line of at most `most` UTF-16 units: controls and line ends become blanks, what turns the direction of
/// the text beside it is left out, halves of characters are replaced. Joiners stay. Never fails; linear in
/// `most`, however long the text is.
[[nodiscard]] QString oneLine(QStringView text, qsizetype most);

} // namespace velorin::ForeignText
