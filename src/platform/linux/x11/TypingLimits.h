/// What a program makes of typed characters that it has no room for.
#pragma once

#include "platform/RunningApplication.h"

#include <QStringList>

namespace velorin {

/// Whether the program is known to take of a typed character only the lower sixteen bits, while the same
/// character arrives whole in what it pastes. False where nothing is known of it.
[[nodiscard]] bool cutsTypedCharacters(const RunningApplication& application);

/// Whether any of them has a code point that does not fit into sixteen bits, as emoji have.
[[nodiscard]] bool hasLargeCodePoints(const QStringList& characters);

} // namespace velorin
