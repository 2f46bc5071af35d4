/// The spoken word that turns a dictation into an instruction for the AI.
#pragma once

#include <QString>

#include <optional>

namespace velorin::GenerateTrigger {

/// What stands behind the trigger word when the transcript begins with it; only the trigger's first word
/// counts, in any case. The empty text is an instruction as well: the word was said alone.
[[nodiscard]] std::optional<QString> instruction(QStringView transcript, QStringView trigger);

/// The trigger word as it is typed, or "generate" when none is.
[[nodiscard]] QString display(QStringView trigger);

} // namespace velorin::GenerateTrigger
