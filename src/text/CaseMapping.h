/// Lower and upper case by the full Unicode mapping, in the root locale: the same on every desktop.
///
/// Not QString::toUpper(), which knows single code points only: "ß" becomes "SS" here, and a sigma at the
/// end of a word the final one. Pure; any thread.
#pragma once

#include <QString>

namespace velorin::CaseMapping {

[[nodiscard]] QString lower(QStringView text);
[[nodiscard]] QString upper(QStringView text);

/// The part of the text as lower-casing the whole text would make it: a sigma looks at what stands next to
/// its word. Reads no more of the text than it must.
[[nodiscard]] QString lowerPart(QStringView text, qsizetype start, qsizetype end);

/// The form by which texts are compared when case does not count (full case folding).
[[nodiscard]] QString folded(QStringView text);
[[nodiscard]] bool equalIgnoringCase(QStringView a, QStringView b);

/// Whether a character (one grapheme cluster) is lower case: a single code point with the property
/// Lowercase, or a character that lower-casing leaves alone and upper-casing changes.
[[nodiscard]] bool isLower(QStringView character);
/// The same the other way round.
[[nodiscard]] bool isUpper(QStringView character);

} // namespace velorin::CaseMapping
