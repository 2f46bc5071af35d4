/// A display that stands before another one and passes on each request late, in their order, as the server of
/// a machine does on which everything starts at once. `DISPLAY` points to it as long as it lives.
///
///     PrivateServer server;
///     LateServer late(server, {.longest = 600ms, .seed = 1});
///     …                    // what connects now is answered 0 to 600 ms late
///     late.recover();      // what waits passes at once, and so does all that follows
#pragma once

#include "platform/linux/x11/WakeUp.h"
#include "tests/platform/linux/x11/support/DisplaySockets.h"
#include "tests/platform/linux/x11/support/PrivateServer.h"

#include <atomic>
#include <list>
#include <random>
#include <thread>

namespace velorin {

class LateServer final {
public:
    struct Habits {
        std::chrono::milliseconds longest{600};
        unsigned seed = 1;
        bool isStuck = false; ///< Nothing passes at all.
    };

    LateServer(const PrivateServer& server, Habits habits);
    ~LateServer();
    LateServer(const LateServer&) = delete;
    LateServer& operator=(const LateServer&) = delete;

    void recover();
    /// It is late again.
    void relapse() { isWell_ = false; }
    /// How many programs' connections there are.
    [[nodiscard]] int connections() const { return connections_; }

private:
    class Road;

    void serve();
    [[nodiscard]] std::chrono::milliseconds delay();

    std::string behind_;
    Habits habits_;
    std::mt19937 chance_;
    DisplaySocket socket_;
    std::list<Road> roads_;
    std::atomic<int> connections_ = 0;
    std::atomic<bool> isWell_ = false;
    std::atomic<bool> isEnding_ = false;
    WakeUp wakeUp_;
    std::thread thread_;
};

} // namespace velorin
