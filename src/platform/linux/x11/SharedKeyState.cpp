#include "platform/linux/x11/SharedKeyState.h"

#include <cstdlib>
#include <new>
#include <sys/mman.h>
#include <unistd.h>

namespace velorin {

SharedKeyState::SharedKeyState() : descriptor_(memfd_create("velorin-keys", MFD_CLOEXEC)) {
    if (descriptor_ < 0 || ftruncate(descriptor_, sizeof(KeyState)) != 0)
        std::abort(); // a page of memory cannot be had
    map();
    new (state_) KeyState; // into the memory that is there
}

SharedKeyState::SharedKeyState(int descriptor) : descriptor_(descriptor) { map(); }

SharedKeyState::~SharedKeyState() {
    munmap(state_, sizeof(KeyState));
    close(descriptor_);
}

void SharedKeyState::map() {
    void* memory = mmap(nullptr, sizeof(KeyState), PROT_READ | PROT_WRITE, MAP_SHARED, descriptor_, 0);
    if (memory == MAP_FAILED)
        std::abort();
    state_ = static_cast<KeyState*>(memory);
}

} // namespace velorin
