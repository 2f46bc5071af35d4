/// Which keys the server delivers to some other program, read with the RECORD extension: that of programs
/// which know nothing of a test. Core events only: others cannot be recorded.
#pragma once

#include "platform/linux/x11/XConnection.h"
#include "tests/platform/linux/x11/support/TestWindow.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

namespace velorin::tap {

class DeliveredKeys final {
public:
    /// `resource`: anything that the program made in the server, like its window.
    explicit DeliveredKeys(xcb_window_t resource);
    ~DeliveredKeys();
    DeliveredKeys(const DeliveredKeys&) = delete;
    DeliveredKeys& operator=(const DeliveredKeys&) = delete;

    /// What came since the last call, up to the release of this key, for which it waits.
    [[nodiscard]] std::vector<TestWindow::Key> through(int key);

private:
    void run();
    void take(const std::uint8_t* event);

    std::unique_ptr<XConnection> control_;
    std::unique_ptr<XConnection> data_;
    std::uint32_t context_ = 0;
    std::thread thread_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<TestWindow::Key> keys_;
};

} // namespace velorin::tap
