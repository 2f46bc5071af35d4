#include "platform/linux/recognition/SampleStream.h"

#include <sys/eventfd.h>
#include <unistd.h>

namespace velorin {

SampleStream::SampleStream() : wakeUp_(eventfd(0, EFD_CLOEXEC)) {}

SampleStream::~SampleStream() { close(wakeUp_); }

void SampleStream::write(std::vector<float> samples) {
    if (isFinished_.load(std::memory_order_relaxed))
        return;
    queue_.put(std::move(samples));
    wake();
}

void SampleStream::finish() {
    isFinished_.store(true, std::memory_order_release);
    wake();
}

void SampleStream::wake() { eventfd_write(wakeUp_, 1); }

void SampleStream::wait() {
    eventfd_t count = 0;
    eventfd_read(wakeUp_, &count);
}

} // namespace velorin
