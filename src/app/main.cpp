#include "app/Program.h"
#include "platform/linux/ProcessLimits.h"
#include "platform/linux/desktop/SystemClock.h"

int main(int argc, char* argv[]) {
    velorin::ProcessLimits::forbidCoreDumps();
    velorin::SystemClock clock;
    return velorin::runProgram(argc, argv, clock);
}
