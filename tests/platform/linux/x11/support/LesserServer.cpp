#include "tests/platform/linux/x11/support/LesserServer.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <poll.h>
#include <stdexcept>
#include <string_view>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace velorin {

namespace {

constexpr std::string_view sockets = "/tmp/.X11-unix/X";

sockaddr_un addressOf(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    return address;
}

int newSocket() { return socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0); }

int connectTo(const std::string& path) {
    const int descriptor = newSocket();
    const auto address = addressOf(path);
    if (connect(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        throw std::runtime_error("the server behind is gone");
    return descriptor;
}

void replaceAll(char* bytes, std::size_t count, std::string_view what, std::string_view with) {
    auto* const end = bytes + count;
    for (auto* at = bytes; (at = std::search(at, end, what.begin(), what.end())) != end; at += with.size())
        std::copy(with.begin(), with.end(), at);
}

} // namespace

LesserServer::LesserServer(const PrivateServer& server, Lack lack)
    : behind_(std::string(sockets) + server.display().substr(1)), lack_(lack), listener_(newSocket()),
      end_(eventfd(0, EFD_CLOEXEC)) {
    // Its number is far above those that servers take for themselves.
    const auto number = std::to_string(100'000 + getpid());
    path_ = std::string(sockets) + number;
    unlink(path_.c_str());
    const auto address = addressOf(path_);
    if (bind(listener_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        listen(listener_, 8) != 0)
        throw std::runtime_error("no socket for a display");
    setenv("DISPLAY", (":" + number).c_str(), 1);
    thread_ = std::thread([this] { serve(); });
}

LesserServer::~LesserServer() {
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = write(end_, &one, sizeof one);
    thread_.join();
    close(listener_);
    close(end_);
    unlink(path_.c_str());
}

void LesserServer::serve() {
    // Descriptors in pairs from the third on: the program's end and the server's.
    std::vector<pollfd> waiting{{listener_, POLLIN, 0}, {end_, POLLIN, 0}};
    std::array<char, 65536> bytes{};
    while (poll(waiting.data(), waiting.size(), -1) >= 0 && waiting[1].revents == 0) {
        for (std::size_t i = 2; i < waiting.size(); ++i) {
            if (waiting[i].revents == 0)
                continue;
            const bool isRequest = i % 2 == 0;
            const int to = waiting[isRequest ? i + 1 : i - 1].fd;
            const auto count = read(waiting[i].fd, bytes.data(), bytes.size());
            if (isRequest && count > 0)
                rewrite(bytes.data(), static_cast<std::size_t>(count));
            if (count <= 0 || write(to, bytes.data(), static_cast<std::size_t>(count)) != count) {
                shutdown(to, SHUT_RDWR);
                waiting[i].events = 0;
                waiting[i].fd = -waiting[i].fd - 1; // poll overlooks it; its number is kept for the end
            }
        }
        if (waiting[0].revents != 0) {
            waiting.push_back({accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC), POLLIN, 0});
            waiting.push_back({connectTo(behind_), POLLIN, 0});
        }
    }
    for (std::size_t i = 2; i < waiting.size(); ++i)
        close(waiting[i].fd < 0 ? -waiting[i].fd - 1 : waiting[i].fd);
}

void LesserServer::rewrite(char* bytes, std::size_t count) const {
    using namespace std::string_view_literals;
    if (lack_ == Lack::input)
        replaceAll(bytes, count, "XInputExtension"sv, "XInputIsNotHere"sv);
    else // the request for the version, from its number on: who asks for 2.1 gets it
        replaceAll(bytes, count, "\x2f\x02\x00\x02\x00\x02\x00"sv, "\x2f\x02\x00\x02\x00\x01\x00"sv);
}

} // namespace velorin
