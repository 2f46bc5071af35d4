/// Finds what announces a self-correction ("no wait", "I mean", …), as the pattern Tables::correctionCues
/// does.
#pragma once

#include "cleanup/Draft.h"

#include <QVarLengthArray>

namespace velorin {

struct CorrectionCue {
    qsizetype start = 0;
    qsizetype end = 0;
};

/// Few texts have more of them than fit without an allocation.
using CorrectionCues = QVarLengthArray<CorrectionCue, 32>;

/// From left to right, none overlapping.
[[nodiscard]] CorrectionCues correctionCuesIn(Draft& draft);

} // namespace velorin
