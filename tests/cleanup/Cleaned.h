/// The cleanup as its tests ask for it: a text and a profile, answers that print.
#pragma once

#include "cleanup/RuleCleaner.h"

#include <string>

namespace velorin {

[[nodiscard]] inline std::string cleaned(QStringView raw, ContextProfile profile = ContextProfile::generic,
                                         const QList<WordReplacement>& replacements = {}) {
    return RuleCleaner::clean(raw, replacements, profile).toStdString();
}

} // namespace velorin
