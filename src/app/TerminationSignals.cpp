#include "app/TerminationSignals.h"

#include <QCoreApplication>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>

#include <sys/eventfd.h>
#include <unistd.h>

namespace velorin {
namespace {

constexpr int handled[] = {SIGTERM, SIGINT, SIGHUP};

// All that a signal handler may reach.
std::atomic<int> wakeUp = -1;

void onSignal(int) {
    const int kept = errno;
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = write(wakeUp, &one, sizeof one);
    errno = kept;
}

void setHandler(void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    for (const int signal : handled)
        sigaction(signal, &action, nullptr);
}

} // namespace

// Handlers, not a blocked mask: programs that we start would inherit that and could not be ended.
TerminationSignals::TerminationSignals() : descriptor_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (descriptor_ < 0)
        return;
    wakeUp = descriptor_;
    notifier_ = std::make_unique<QSocketNotifier>(descriptor_, QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, qApp, [this] {
        notifier_->setEnabled(false);
        QCoreApplication::quit();
    });
    setHandler(&onSignal);
}

TerminationSignals::~TerminationSignals() {
    if (descriptor_ < 0)
        return;
    setHandler(SIG_DFL);
    notifier_.reset();
    wakeUp = -1;
    close(descriptor_);
}

} // namespace velorin
