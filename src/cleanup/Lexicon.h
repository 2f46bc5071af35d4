/// Tells from the words of a text which passes can act on it at all, and where.
///
/// No pass of the cleanup can find anything without one word of a small vocabulary (or a punctuation mark,
/// which the passes concerned look for themselves). One walk over the text lists these words and gathers whom
/// they concern; passes that nobody called for are left out, the others go through the list.
#pragma once

#include "cleanup/Letters.h"

#include <QString>

#include <cstdint>
#include <vector>

namespace velorin::Lexicon {

/// A set of passes.
using Concerns = std::uint32_t;

enum Concern : Concerns {
    addressAt = 1U << 0,
    addressDot = 1U << 1,
    longFlags = 1U << 2,
    codeSymbols = 1U << 3,
    separators = 1U << 4,
    fillers = 1U << 5,
    likeFillers = 1U << 6,
    corrections = 1U << 7,
    paragraphCommands = 1U << 8,
    lineCommands = 1U << 9,
    newlineCommands = 1U << 10,
    bulletCommands = 1U << 11,
    /// Concerns a pass only beside another word that does, but is looked for as well.
    beginnings = 1U << 12,
};

inline constexpr Concerns layoutCommands =
    paragraphCommands | lineCommands | newlineCommands | bulletCommands;

/// A word that some pass looks for.
struct Trigger : Letters::Run {
    Concerns concerns = 0;

    [[nodiscard]] bool isFor(Concerns passes) const { return (concerns & passes) != 0; }
};

/// Those of a text, from left to right, and whom they concern together.
struct Triggers {
    std::vector<Trigger> words;
    Concerns concerns = 0;
};

/// Reads the words of the text anew.
void read(QStringView text, Triggers& triggers);

/// Splits at white space and joins with single spaces, and reads the words on the way.
[[nodiscard]] QString collapse(QStringView raw, Triggers& triggers);

} // namespace velorin::Lexicon
