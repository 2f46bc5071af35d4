#include "platform/linux/x11/ThreadSetup.h"

#include <csignal>
#include <initializer_list>
#include <pthread.h>

namespace velorin {

void setUpThread(const char* name) {
    pthread_setname_np(pthread_self(), name);
    sigset_t all;
    sigfillset(&all);
    for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT}) // a fault of ours must show as one
        sigdelset(&all, fault);
    pthread_sigmask(SIG_BLOCK, &all, nullptr);
}

} // namespace velorin
