/// Whether the cleanup that ships gives the same answer as its reference, unit by unit.
#pragma once

#include "cleanup/Personalization.h"
#include "delivery/ContextProfile.h"

#include <QString>

#include <optional>
#include <random>
#include <vector>

namespace velorin::agreement {

/// All that the cleanup is told.
struct Input {
    QString text;
    ContextProfile profile = ContextProfile::generic;
    QList<WordReplacement> replacements;
};

/// The first difference in what `clean` answers, in words and ASCII; nothing if both agree.
[[nodiscard]] std::optional<QString> differenceInClean(const Input& input);

/// The same for each stage by itself, on the text as it is.
[[nodiscard]] std::optional<QString> differenceInStages(const Input& input);

/// A text of up to some dozen pieces of the vocabulary, any profile, a few replacements or none.
[[nodiscard]] Input randomInput(std::mt19937_64& random);

} // namespace velorin::agreement
