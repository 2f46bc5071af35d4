/// What this program writes is for the user alone. What the programs write that it starts is as the user
/// wants it: they get the user's own file creation mask back.
///
///     UsersMask::setAside();                                       // first thing in main
///     process.setChildProcessModifier(&UsersMask::giveBack);       // QProcess
///     UsersMask::onThreadOfItsOwn([&] { posix_spawn(…); });        // what calls nothing in the child
///
/// Nothing changes in a process that has set none aside.
#pragma once

#include <sched.h>
#include <sys/stat.h>
#include <thread>

namespace velorin::UsersMask {

inline constexpr int none = -1;
inline int own = none; ///< Written once, before there is a second thread.

inline void setAside() { own = static_cast<int>(umask(S_IRWXG | S_IRWXO)); }

/// For a child between its birth and its program. Async-signal-safe.
inline void giveBack() {
    if (own != none)
        umask(static_cast<mode_t>(own));
}

/// Waits for the work, which a thread with the user's mask does: a mask belongs to all threads of a process
/// until one of them parts with it. Where the system forbids that, the work is done with ours.
template <typename Work>
void onThreadOfItsOwn(Work work) {
    std::thread([&work] {
        if (unshare(CLONE_FS) == 0)
            giveBack();
        work();
    }).join();
}

} // namespace velorin::UsersMask
