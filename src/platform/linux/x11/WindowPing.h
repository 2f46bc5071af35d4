/// Whether an application has read what was sent to its window so far.
#pragma once

#include "platform/RunningApplication.h"
#include "platform/linux/x11/XConnection.h"

namespace velorin {

/// Asks the window, where it takes such questions, and waits for the answer; where it does not, a process
/// that runs counts as having read. True for windows and processes that are gone.
[[nodiscard]] bool hasReadItsEvents(XConnection& connection, const RunningApplication& application,
                                    Deadline deadline);

} // namespace velorin
