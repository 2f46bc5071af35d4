#include "app/modelcheck/Confinement.h"

#include <cerrno>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

namespace velorin {
namespace {

bool isRefused(long result) { return result == -1 && errno == EACCES; }

bool reachesNobody() {
    for (const int family : {AF_INET, AF_INET6, AF_UNIX, AF_NETLINK})
        if (!isRefused(socket(family, SOCK_STREAM, 0)))
            return false;
    return isRefused(execl("/bin/true", "true", nullptr));
}

TEST(ConfinementDeathTest, AfterLeavingTheNetworkNobodyIsReachedAndNothingStarted) {
    EXPECT_EXIT(
        {
            bool isConfined = Confinement::leaveTheNetwork() && reachesNobody();
            std::thread([&] { isConfined = isConfined && reachesNobody(); }).join();
            _exit(isConfined ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST(ConfinementDeathTest, MemoryHasTheEndThatItWasGiven) {
    EXPECT_EXIT(
        {
            rlimit limit{};
            const bool isSet = Confinement::limitMemory(1ULL << 50) && getrlimit(RLIMIT_AS, &limit) == 0;
            _exit(isSet && limit.rlim_cur == 1ULL << 50 && limit.rlim_max == 1ULL << 50 ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

} // namespace
} // namespace velorin
