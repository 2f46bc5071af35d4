/// The whole program, from the command line to its end.
#pragma once

namespace velorin {

class Clock;

/// Runs until the user quits or the session ends; gives the process's exit code. Main thread, once a process.
///
/// The clock is the machine's own, or one that lets tests see what happens after ten minutes.
int runProgram(int& argc, char** argv, Clock& clock);

} // namespace velorin
