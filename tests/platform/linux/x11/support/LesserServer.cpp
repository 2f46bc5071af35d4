#include "tests/platform/linux/x11/support/LesserServer.h"

#include <algorithm>
#include <array>
#include <poll.h>
#include <string_view>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

namespace velorin {

namespace {

void replaceAll(char* bytes, std::size_t count, std::string_view what, std::string_view with) {
    auto* const end = bytes + count;
    for (auto* at = bytes; (at = std::search(at, end, what.begin(), what.end())) != end; at += with.size())
        std::copy(with.begin(), with.end(), at);
}

} // namespace

LesserServer::LesserServer(const PrivateServer& server, Lack lack)
    : behind_(server.display()), lack_(lack), end_(eventfd(0, EFD_CLOEXEC)) {
    thread_ = std::thread([this] { serve(); });
}

LesserServer::~LesserServer() {
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = write(end_, &one, sizeof one);
    thread_.join();
    close(end_);
}

void LesserServer::serve() {
    // Descriptors in pairs from the third on: the program's end and the server's.
    std::vector<pollfd> waiting{{socket_.fileDescriptor(), POLLIN, 0}, {end_, POLLIN, 0}};
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
            waiting.push_back({socket_.accept(), POLLIN, 0});
            waiting.push_back({connectToDisplay(behind_), POLLIN, 0});
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
