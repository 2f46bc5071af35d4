/// The texts that the cleanup is measured on.
#pragma once

#include <QString>

namespace velorin::bench {

/// Ordinary sentences, as a recogniser typesets them.
[[nodiscard]] QString plainProse(qsizetype words);
/// A command, filler or correction in every clause.
[[nodiscard]] QString denseProse(qsizetype words);
/// Code, spoken.
[[nodiscard]] QString codeDictation(qsizetype words);

} // namespace velorin::bench
