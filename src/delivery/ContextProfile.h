/// The kind of place that a text goes to. The same words come out differently in a terminal, a code editor
/// and a mail; the cleanup steers by the four flags below, the prompts by the profile itself.
///
///     usesCodeSymbols(ContextProfile::terminal)          // true
///     contextProfileFromRawString(u"chat")                // ContextProfile::chat
#pragma once

#include <QString>

#include <array>
#include <optional>

namespace velorin {

enum class ContextProfile { generic, code, terminal, email, chat, document };

inline constexpr std::array allContextProfiles{ContextProfile::generic,  ContextProfile::code,
                                               ContextProfile::terminal, ContextProfile::email,
                                               ContextProfile::chat,     ContextProfile::document};

[[nodiscard]] constexpr bool isCodeLike(ContextProfile profile) {
    return profile == ContextProfile::code || profile == ContextProfile::terminal;
}
/// Whether spoken names of symbols become the symbols.
[[nodiscard]] constexpr bool usesCodeSymbols(ContextProfile profile) { return isCodeLike(profile); }
/// Whether the first letter of the text and of its lines is made upper case.
[[nodiscard]] constexpr bool capitalizesSentences(ContextProfile profile) { return !isCodeLike(profile); }
/// Whether a final period that was lost on the way is put back.
[[nodiscard]] constexpr bool addsTerminalPunctuation(ContextProfile profile) {
    return capitalizesSentences(profile);
}

/// The form in which it is stored and logged: the name of the enumerator.
[[nodiscard]] QString rawString(ContextProfile profile);
[[nodiscard]] std::optional<ContextProfile> contextProfileFromRawString(QStringView raw);

} // namespace velorin
