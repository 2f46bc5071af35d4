/// Turns SIGTERM, SIGINT and SIGHUP into a clean end of the event loop. One instance; main thread.
#pragma once

#include <QSocketNotifier>

#include <memory>

namespace velorin {

class TerminationSignals final {
public:
    TerminationSignals();
    ~TerminationSignals();
    TerminationSignals(const TerminationSignals&) = delete;
    TerminationSignals& operator=(const TerminationSignals&) = delete;

private:
    int descriptor_ = -1;
    std::unique_ptr<QSocketNotifier> notifier_;
};

} // namespace velorin
