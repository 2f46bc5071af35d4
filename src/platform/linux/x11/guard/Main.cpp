// velorin-guard PROGRAM-PROCESS: started by the program, which hands it what it needs at fixed descriptors.
#include "platform/linux/x11/guard/Guard.h"
#include "platform/linux/x11/guard/GuardDescriptors.h"

#include <cstdlib>
#include <sys/mman.h>
#include <unistd.h>

int main(int argc, char* argv[]) {
    using namespace velorin;
    if (argc != 2)
        return EXIT_FAILURE;
    setsid();                           // what stops the program from its terminal must not stop this
    mlockall(MCL_CURRENT | MCL_FUTURE); // nor may it wait for the disk, where that is allowed
    const auto connection = XConnection::open();
    if (!connection)
        return EXIT_FAILURE;
    SharedKeyState shared(GuardDescriptors::keys);
    Guard guard(*connection, shared, std::strtoll(argv[1], nullptr, 10), GuardDescriptors::life,
                GuardDescriptors::tapWakeUp);
    return guard.run() ? EXIT_SUCCESS : EXIT_FAILURE;
}
