/// Tells from the words of a text which passes can act on it at all.
///
/// No pass of the cleanup can find anything without one word of a small vocabulary (or a punctuation mark,
/// which the passes concerned look for themselves). One walk over the words gathers whom they concern;
/// stages that nobody called for are left out.
#pragma once

#include "cleanup/Letters.h"

#include <cstdint>

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
};

inline constexpr Concerns layoutCommands =
    paragraphCommands | lineCommands | newlineCommands | bulletCommands;

/// Whom a word concerns.
[[nodiscard]] Concerns concernsOf(WordKey key);
/// Whom the words of a text concern.
[[nodiscard]] Concerns concernsOf(QStringView text);

} // namespace velorin::Lexicon
