/// What a process that tries a stranger's file takes from itself before: it reaches no network and starts no
/// program, and its memory has an end. What cannot be had on this system is told, and the process goes on.
#pragma once

#include <cstdint>

namespace velorin::Confinement {

/// Of addresses, which the run time takes more of than of memory. False where the system refuses.
[[nodiscard]] bool limitMemory(std::uint64_t bytes);

/// From here on, for this thread and those that it starts: no socket, no program, no look into other
/// processes. False where the kernel has no filters of system calls.
[[nodiscard]] bool leaveTheNetwork();

} // namespace velorin::Confinement
