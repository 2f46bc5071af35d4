#include "platform/linux/x11/WakeUp.h"

#include <cstdint>
#include <sys/eventfd.h>
#include <unistd.h>

namespace velorin {

WakeUp::WakeUp() : descriptor_(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {}

WakeUp::~WakeUp() { close(descriptor_); }

void WakeUp::wake() const {
    const std::uint64_t one = 1;
    // Can fail only when nobody has cleared it 2^64 times: it is readable then as well.
    [[maybe_unused]] const auto written = write(descriptor_, &one, sizeof one);
}

void WakeUp::clear() const {
    std::uint64_t count = 0;
    [[maybe_unused]] const auto got = read(descriptor_, &count, sizeof count);
}

} // namespace velorin
