/// The user's choice of a ContextProfile: one that is fixed, or whatever the application in front calls for.
///
///     profile(ContextMode::email)   // ContextProfile::email
///     profile(ContextMode::auto_)   // nothing: it is detected
#pragma once

#include "delivery/ContextProfile.h"

#include <QString>

#include <array>
#include <optional>

namespace velorin {

/// `auto_` is the case "auto", which is a word of the language.
enum class ContextMode { auto_, generic, code, terminal, email, chat, document };

inline constexpr std::array allContextModes{ContextMode::auto_,    ContextMode::generic, ContextMode::code,
                                            ContextMode::terminal, ContextMode::email,   ContextMode::chat,
                                            ContextMode::document};

/// What the user reads in a list of the modes.
[[nodiscard]] QString label(ContextMode mode);
/// The profile that the mode fixes; nothing for `auto_`.
[[nodiscard]] std::optional<ContextProfile> profile(ContextMode mode);

/// The form in which it is stored.
[[nodiscard]] QString rawString(ContextMode mode);
[[nodiscard]] std::optional<ContextMode> contextModeFromRawString(QStringView raw);

} // namespace velorin
