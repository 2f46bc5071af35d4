/// Whether an application is a web page in a program's clothes: it then says of its text fields what is not
/// so.
#pragma once

#include "platform/RunningApplication.h"

namespace velorin {

/// By what lies beside the program's file, looked at afresh at each call. False where that file is unknown.
[[nodiscard]] bool isElectron(const RunningApplication& application);

} // namespace velorin
