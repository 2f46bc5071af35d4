#include "tests/platform/linux/x11/support/LateServer.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <deque>
#include <functional>
#include <optional>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace velorin {

using Clock = std::chrono::steady_clock;

namespace {

template <typename Number>
std::size_t numberAt(const std::string& bytes, std::size_t place) {
    Number number = 0;
    std::memcpy(&number, bytes.data() + place, sizeof number);
    return number;
}

std::size_t padded(std::size_t bytes) { return (bytes + 3) / 4 * 4; }

/// Of the greeting, with which a program begins: two strings follow, the key of the display.
std::optional<std::size_t> sizeOfGreeting(const std::string& bytes) {
    constexpr std::size_t head = 12;
    if (bytes.size() < head)
        return std::nullopt;
    return head + padded(numberAt<std::uint16_t>(bytes, 6)) + padded(numberAt<std::uint16_t>(bytes, 8));
}

/// In words of four bytes; one that is too large for its field has 0 there and a field more.
std::optional<std::size_t> sizeOfRequest(const std::string& bytes) {
    if (bytes.size() < 4)
        return std::nullopt;
    if (const auto words = numberAt<std::uint16_t>(bytes, 2); words != 0)
        return words * 4;
    return bytes.size() < 8 ? std::nullopt : std::optional(numberAt<std::uint32_t>(bytes, 4) * 4);
}

bool writeAll(int descriptor, const std::string& bytes) {
    std::size_t written = 0;
    while (written < bytes.size()) {
        const auto count = send(descriptor, bytes.data() + written, bytes.size() - written, MSG_NOSIGNAL);
        if (count <= 0)
            return false;
        written += static_cast<std::size_t>(count);
    }
    return true;
}

} // namespace

/// One program's connection and the one behind it.
class LateServer::Road final {
public:
    Road(int program, int server) : program_(program), server_(server) {}
    ~Road() {
        close(program_);
        close(server_);
    }
    Road(const Road&) = delete;
    Road& operator=(const Road&) = delete;

    [[nodiscard]] std::array<pollfd, 2> ends() const {
        return {{{program_, POLLIN, 0}, {server_, POLLIN, 0}}};
    }
    /// False at the end of either.
    bool takeRequests(const std::function<std::chrono::milliseconds()>& delay) {
        if (!take(program_, unread_))
            return false;
        for (;;) {
            const auto size = isGreeted_ ? sizeOfRequest(unread_) : sizeOfGreeting(unread_);
            if (!size || unread_.size() < *size)
                return true;
            isGreeted_ = true;
            const auto earliest = waiting_.empty() ? Clock::now() : waiting_.back().due;
            waiting_.push_back({std::max(earliest, Clock::now() + delay()), unread_.substr(0, *size)});
            unread_.erase(0, *size);
        }
    }
    bool passAnswers() {
        std::string bytes;
        return take(server_, bytes) && writeAll(program_, bytes);
    }
    bool passRequests(bool isAll) {
        while (!waiting_.empty() && (isAll || waiting_.front().due <= Clock::now())) {
            if (!writeAll(server_, waiting_.front().bytes))
                return false;
            waiting_.pop_front();
        }
        return true;
    }
    [[nodiscard]] std::optional<Clock::time_point> due() const {
        return waiting_.empty() ? std::nullopt : std::optional(waiting_.front().due);
    }

private:
    struct Request {
        Clock::time_point due;
        std::string bytes;
    };

    static bool take(int descriptor, std::string& bytes) {
        std::array<char, 65536> buffer{};
        const auto count = read(descriptor, buffer.data(), buffer.size());
        if (count > 0)
            bytes.append(buffer.data(), static_cast<std::size_t>(count));
        return count > 0;
    }

    int program_;
    int server_;
    bool isGreeted_ = false;
    std::string unread_;
    std::deque<Request> waiting_;
};

LateServer::LateServer(const PrivateServer& server, Habits habits)
    : behind_(server.display()), habits_(habits), chance_(habits.seed), thread_([this] { serve(); }) {}

LateServer::~LateServer() {
    isEnding_ = true;
    wakeUp_.wake();
    thread_.join();
}

void LateServer::recover() {
    isWell_ = true;
    wakeUp_.wake();
}

std::chrono::milliseconds LateServer::delay() {
    if (isWell_)
        return std::chrono::milliseconds(0);
    if (habits_.isStuck)
        return std::chrono::hours(1);
    std::uniform_int_distribution<long> delays(0, habits_.longest.count());
    return std::chrono::milliseconds(delays(chance_));
}

void LateServer::serve() {
    while (!isEnding_) {
        std::vector<pollfd> waiting{{socket_.fileDescriptor(), POLLIN, 0},
                                    {wakeUp_.fileDescriptor(), POLLIN, 0}};
        auto due = Clock::now() + std::chrono::hours(1);
        for (const auto& road : roads_) {
            for (const auto& end : road.ends())
                waiting.push_back(end);
            due = std::min(due, road.due().value_or(due));
        }
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(due - Clock::now()).count();
        poll(waiting.data(), waiting.size(), static_cast<int>(std::max<long>(left, 0)));
        wakeUp_.clear();
        auto end = waiting.begin() + 2;
        for (auto road = roads_.begin(); road != roads_.end(); end += 2) {
            const bool isOpen = (end[0].revents == 0 || road->takeRequests([this] { return delay(); })) &&
                                (end[1].revents == 0 || road->passAnswers()) && road->passRequests(isWell_);
            road = isOpen ? std::next(road) : roads_.erase(road);
        }
        if (waiting[0].revents != 0)
            roads_.emplace_back(socket_.accept(), connectToDisplay(behind_));
        connections_ = static_cast<int>(roads_.size());
    }
}

} // namespace velorin
