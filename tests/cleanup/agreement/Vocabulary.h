/// What the texts are made of on which the cleanup is compared with its reference.
///
/// Small vocabularies of pieces, one for each thing that the cleanup does; together they hold each word that
/// triggers anything, separators, punctuation, numbers, determiners, and what is hard in Unicode. Pieces are
/// put side by side as they are: words bring the space before them, punctuation and marks stick to what
/// stands before.
#pragma once

#include <QString>

#include <vector>

namespace velorin::agreement {

using Pieces = std::vector<QString>;

/// Those that meet in a pass. Made once, on first use.
[[nodiscard]] const std::vector<Pieces>& themes();

/// All pieces, each once.
[[nodiscard]] const Pieces& vocabulary();

} // namespace velorin::agreement
