/// What is left of this process when it crashes: nothing that was said, written or kept secret.
///
/// No core file is written, and a handler of crashes that is given the memory all the same (the limit does
/// not hold for those that the kernel feeds through a pipe) gets none of what the program has allocated:
/// sound, texts and keys, wherever they are. The process itself stays open to the user's other programs:
/// portals and window managers read in /proc who asks them for something.
///
///     int main(…) {
///         ProcessLimits::forbidCoreDumps();                                   // first of all
///     …
///     process.setChildProcessModifier(&ProcessLimits::restoreInChild);        // whatever we start is as
///     before
#pragma once

namespace velorin::ProcessLimits {

/// Once, before there are other threads.
void forbidCoreDumps();

/// Gives a child the limits with which we were started. Between fork and exec: calls nothing that may not be
/// called there. Does nothing where nothing was forbidden.
void restoreInChild();

} // namespace velorin::ProcessLimits
