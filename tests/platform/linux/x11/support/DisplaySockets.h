/// What a display that stands before another one needs: a socket where programs look for displays, and
/// connections to the one behind.
#pragma once

#include <string>

namespace velorin {

/// Where programs look for it; `DISPLAY` points to it as long as this lives.
class DisplaySocket final {
public:
    DisplaySocket();
    ~DisplaySocket();
    DisplaySocket(const DisplaySocket&) = delete;
    DisplaySocket& operator=(const DisplaySocket&) = delete;

    /// Readable when a program wants to connect.
    [[nodiscard]] int fileDescriptor() const { return listener_; }
    [[nodiscard]] int accept() const;

private:
    std::string previous_;
    std::string path_;
    int listener_;
};

/// To the display of this name, such as ":7".
[[nodiscard]] int connectToDisplay(const std::string& display);

} // namespace velorin
