/// What a model is told: the system text of each task, and the user message with its payload in tags.
///
/// The texts are the program's voice; they are not translated. Pure, any thread.
#pragma once

#include "ai/AIProvider.h"
#include "delivery/ContextProfile.h"

#include <QString>

#include <optional>

namespace velorin {

struct Prompt {
    QString system;
    QString user;
};

namespace Prompts {

[[nodiscard]] Prompt polish(const QString& transcript, ContextProfile profile);
[[nodiscard]] Prompt edit(const QString& selection, const QString& instruction, ContextProfile profile);
[[nodiscard]] Prompt connectionTest();

[[nodiscard]] QString generateSystem(ContextProfile profile, const QString& userName);
/// The context is trimmed and cut to its first 12,000 characters, 6,000 for the machine's own model; a
/// blank one is left out.
[[nodiscard]] QString generateUser(const QString& instruction, const std::optional<QString>& context,
                                   AIProvider provider);

} // namespace Prompts
} // namespace velorin
