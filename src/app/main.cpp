#include "app/Program.h"
#include "platform/linux/desktop/SystemClock.h"

int main(int argc, char* argv[]) {
    velorin::SystemClock clock;
    return velorin::runProgram(argc, argv, clock);
}
