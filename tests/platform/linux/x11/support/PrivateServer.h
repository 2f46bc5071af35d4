/// An X server of the test's own, on a display that nobody else has. `DISPLAY` points to it as long as it
/// lives. Starting it has a deadline; it is ended by its process id.
///
///     PrivateServer server;                     // throws when the server does not start
///     server.startWindowManager({"openbox"});   // ends with the server
#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include <sys/types.h>

namespace velorin {

/// What a process reads and writes; -1 for what we do.
struct ChildStreams {
    int input = -1;
    int output = -1;
    int error = -1;
};

/// A process that ends with its owner.
class ChildProcess final {
public:
    explicit ChildProcess(const std::vector<std::string>& command, ChildStreams streams = {});
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    [[nodiscard]] pid_t id() const { return id_; }
    void kill(int signal) const;
    /// Sends the signal and waits for the end.
    void end(int signal);
    /// Waits for it to end by itself, and gives its exit status; has a deadline.
    int wait();

private:
    pid_t id_;
};

class PrivateServer final {
public:
    explicit PrivateServer(const std::vector<std::string>& options = {});
    ~PrivateServer();
    PrivateServer(const PrivateServer&) = delete;
    PrivateServer& operator=(const PrivateServer&) = delete;

    [[nodiscard]] const std::string& display() const { return display_; }
    ChildProcess& start(const std::vector<std::string>& command);
    /// Also waits until it manages windows.
    void startWindowManager(const std::vector<std::string>& command);
    /// The server ends as if it had crashed.
    void kill();
    /// The server does nothing for so long.
    void holdUp(std::chrono::milliseconds time);

private:
    std::unique_ptr<ChildProcess> server_;
    std::vector<std::unique_ptr<ChildProcess>> clients_;
    std::string display_;
};

} // namespace velorin
