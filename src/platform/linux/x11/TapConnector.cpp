#include "platform/linux/x11/TapConnector.h"

#include "platform/linux/x11/Retries.h"
#include "platform/linux/x11/ThreadSetup.h"

#include <array>
#include <mutex>
#include <poll.h>
#include <thread>

namespace velorin {

namespace {

using Opened = tl::expected<std::unique_ptr<TapConnections>, TapRefusal>;

/// One attempt. May go before its thread does.
class Attempt final {
public:
    Attempt() : state_(std::make_shared<State>()) {
        std::thread([state = state_] {
            setUpThread("velorin-connect");
            auto opened = TapConnections::open(patience);
            const std::scoped_lock lock(state->mutex);
            state->opened = std::move(opened);
            state->isDone.wake();
        }).detach();
    }

    /// Readable when there is a result.
    [[nodiscard]] int fileDescriptor() const { return state_->isDone.fileDescriptor(); }
    [[nodiscard]] Opened take() {
        const std::scoped_lock lock(state_->mutex);
        return std::move(state_->opened);
    }

private:
    /// For each answer. No key waits for us yet.
    static constexpr std::chrono::milliseconds patience{2000};

    struct State {
        WakeUp isDone;
        std::mutex mutex;
        Opened opened = tl::unexpected(TapRefusal::late);
    };
    std::shared_ptr<State> state_;
};

} // namespace

Opened TapConnector::connect(int refusals, Meanwhile meanwhile) {
    Retries retries;
    for (;;) {
        Attempt attempt;
        if (!await(attempt.fileDescriptor(), -1, meanwhile))
            return tl::unexpected(TapRefusal::unwanted);
        auto opened = attempt.take();
        const bool isLate = !opened && opened.error() == TapRefusal::late;
        const bool isRefused = !opened && opened.error() == TapRefusal::noServer;
        if (!isLate && (!isRefused || --refusals <= 0))
            return opened;
        retries.begin(Retries::endless);
        if (!await(-1, retries.pollTimeout(), meanwhile))
            return tl::unexpected(TapRefusal::unwanted);
        retries.next();
    }
}

bool TapConnector::await(int fileDescriptor, int milliseconds, Meanwhile& meanwhile) {
    const Deadline deadline{std::chrono::milliseconds(milliseconds)};
    while (isWanted_()) {
        std::array<pollfd, 3> waiting{{{fileDescriptor, POLLIN, 0},
                                       {wakeUp_.fileDescriptor(), POLLIN, 0},
                                       {meanwhile.fileDescriptor, POLLIN, 0}}};
        const int changes =
            poll(waiting.data(), waiting.size(), milliseconds < 0 ? -1 : deadline.pollTimeout());
        if (changes == 0 || waiting[0].revents != 0)
            return true;
        if (waiting[1].revents != 0)
            wakeUp_.clear();
        if (waiting[2].revents != 0 && !meanwhile.serve())
            meanwhile.fileDescriptor = -1;
    }
    return false;
}

} // namespace velorin
