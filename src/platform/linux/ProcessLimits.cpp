#include "platform/linux/ProcessLimits.h"

#include <array>
#include <fcntl.h>
#include <string_view>
#include <sys/resource.h>
#include <unistd.h>

namespace velorin::ProcessLimits {

namespace {

/// Which kinds of memory go into a dump. Children inherit it, also through exec.
constexpr char filterFile[] = "/proc/self/coredump_filter";

struct Usual {
    rlimit cores{};
    std::array<char, 32> filter{};
    ssize_t filterLength = 0;
    bool isKnown = false;
};

Usual& usual() {
    static Usual limits;
    return limits;
}

void writeFilter(std::string_view value) {
    const int file = open(filterFile, O_WRONLY | O_CLOEXEC);
    if (file < 0)
        return;
    [[maybe_unused]] const auto written = write(file, value.data(), value.size());
    close(file);
}

void readFilter(Usual& limits) {
    const int file = open(filterFile, O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return;
    // The kernel takes and gives a hexadecimal number, but takes it for one only with its mark.
    limits.filter = {'0', 'x'};
    const auto length = read(file, limits.filter.data() + 2, limits.filter.size() - 2);
    limits.filterLength = length > 0 ? length + 2 : 0;
    close(file);
}

} // namespace

void forbidCoreDumps() {
    auto& limits = usual();
    if (limits.isKnown || getrlimit(RLIMIT_CORE, &limits.cores) != 0)
        return;
    readFilter(limits);
    limits.isKnown = true;
    const rlimit none{0, limits.cores.rlim_max}; // a child may have it back
    setrlimit(RLIMIT_CORE, &none);
    writeFilter("0");
}

void restoreInChild() {
    const auto& limits = usual();
    if (!limits.isKnown)
        return;
    setrlimit(RLIMIT_CORE, &limits.cores);
    if (limits.filterLength > 0)
        writeFilter({limits.filter.data(), static_cast<std::size_t>(limits.filterLength)});
}

} // namespace velorin::ProcessLimits
