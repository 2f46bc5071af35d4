/// What stands between the birth of a process that we start and its program: what we have set for ourselves
/// alone (who may read what we write, no core files) is the user's own again.
///
///     process.setChildProcessModifier(&beAsTheUserStartsIt);
#pragma once

#include "platform/UsersMask.h"
#include "platform/linux/ProcessLimits.h"

namespace velorin {

/// In the child. Calls nothing that may not be called there.
inline void beAsTheUserStartsIt() {
    UsersMask::giveBack();
    ProcessLimits::restoreInChild();
}

} // namespace velorin
