#include "tests/platform/linux/x11/support/DisplaySockets.h"

#include <cstdlib>
#include <stdexcept>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace velorin {

namespace {

constexpr auto sockets = "/tmp/.X11-unix/X";

sockaddr_un addressOf(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    return address;
}

int newSocket() { return socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0); }

} // namespace

DisplaySocket::DisplaySocket() : listener_(newSocket()) {
    // Its number is far above those that servers take for themselves.
    const auto number = std::to_string(100'000 + getpid());
    path_ = sockets + number;
    unlink(path_.c_str());
    const auto address = addressOf(path_);
    if (bind(listener_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        listen(listener_, 8) != 0)
        throw std::runtime_error("no socket for a display");
    if (const char* previous = std::getenv("DISPLAY"))
        previous_ = previous;
    setenv("DISPLAY", (":" + number).c_str(), 1);
}

DisplaySocket::~DisplaySocket() {
    close(listener_);
    unlink(path_.c_str());
    setenv("DISPLAY", previous_.c_str(), 1);
}

int DisplaySocket::accept() const { return accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC); }

int connectToDisplay(const std::string& display) {
    const int descriptor = newSocket();
    const auto address = addressOf(sockets + display.substr(1));
    if (connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        throw std::runtime_error("the server behind is gone");
    return descriptor;
}

} // namespace velorin
