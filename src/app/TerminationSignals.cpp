#include "app/TerminationSignals.h"

#include <QCoreApplication>

#include <csignal>

#include <sys/signalfd.h>
#include <unistd.h>

namespace velorin {

TerminationSignals::TerminationSignals() {
    // Blocked before any thread is made, so that every thread inherits it and the descriptor gets them.
    sigset_t signals;
    sigemptyset(&signals);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        sigaddset(&signals, signal);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    descriptor_ = signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK);
    if (descriptor_ < 0)
        return;
    notifier_ = std::make_unique<QSocketNotifier>(descriptor_, QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, qApp, [this] {
        signalfd_siginfo info{};
        if (read(descriptor_, &info, sizeof info) == sizeof info)
            QCoreApplication::quit();
    });
}

TerminationSignals::~TerminationSignals() {
    notifier_.reset();
    if (descriptor_ >= 0)
        close(descriptor_);
}

} // namespace velorin
