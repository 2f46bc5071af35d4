/// What the texts are made of on which the cleanup is compared with its reference.
///
/// A small vocabulary of pieces that holds each word which triggers anything, separators, punctuation,
/// numbers, determiners, and what is hard in Unicode. Pieces are put side by side as they are: words bring
/// the space before them, punctuation and marks stick to what stands before.
#pragma once

#include <QString>

#include <vector>

namespace velorin::agreement {

/// Made once, on first use.
[[nodiscard]] const std::vector<QString>& vocabulary();

} // namespace velorin::agreement
