#include "tests/platform/linux/x11/support/TapSubject.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <poll.h>
#include <stdexcept>
#include <unistd.h>

namespace velorin {

TapSubject::TapSubject(const std::string& program, const std::string& configuration, int log) {
    std::array<int, 2> in{};
    std::array<int, 2> out{};
    if (pipe(in.data()) != 0 || pipe(out.data()) != 0)
        throw std::runtime_error("no pipe");
    std::vector<std::string> command{program};
    if (!configuration.empty())
        command.push_back(configuration);
    process_ = std::make_unique<ChildProcess>(command, ChildStreams{in[0], out[1], log});
    close(in[0]);
    close(out[1]);
    input_ = in[1];
    output_ = out[0];
    if (!lineWith("ready", 20'000))
        throw std::runtime_error("the subject did not start");
}

TapSubject::~TapSubject() {
    close(input_);
    close(output_);
}

pid_t TapSubject::guard() const {
    const auto children = childrenOf(id());
    return children.empty() ? 0 : children.front();
}

void TapSubject::command(const std::string& line) const {
    const auto text = line + '\n';
    if (write(input_, text.data(), text.size()) != static_cast<ssize_t>(text.size()))
        throw std::runtime_error("the subject is gone");
}

std::optional<std::string> TapSubject::line(int milliseconds) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
    for (;;) {
        if (const auto newline = unread_.find('\n'); newline != std::string::npos) {
            auto text = unread_.substr(0, newline);
            unread_.erase(0, newline + 1);
            return text;
        }
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        pollfd waiting{output_, POLLIN, 0};
        if (left.count() <= 0 || poll(&waiting, 1, static_cast<int>(left.count())) != 1)
            return std::nullopt;
        std::array<char, 4096> bytes{};
        const auto count = read(output_, bytes.data(), bytes.size());
        if (count <= 0)
            return std::nullopt;
        unread_.append(bytes.data(), static_cast<std::size_t>(count));
    }
}

std::optional<std::string> TapSubject::lineWith(const std::string& beginning, int milliseconds) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(milliseconds);
    for (;;) {
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        auto text = line(static_cast<int>(std::max<long>(left.count(), 0)));
        if (!text || text->starts_with(beginning))
            return text;
    }
}

std::vector<pid_t> childrenOf(pid_t process) {
    std::vector<pid_t> children;
    std::error_code error;
    const auto folder = "/proc/" + std::to_string(process) + "/task";
    for (const auto& thread : std::filesystem::directory_iterator(folder, error)) {
        std::ifstream file(thread.path() / "children");
        for (pid_t child = 0; file >> child;)
            children.push_back(child);
    }
    return children;
}

long voluntarySwitchesOf(pid_t process, const std::string& threads) {
    long total = 0;
    std::error_code error;
    const auto folder = "/proc/" + std::to_string(process) + "/task";
    for (const auto& thread : std::filesystem::directory_iterator(folder, error)) {
        std::string name;
        std::getline(std::ifstream(thread.path() / "comm"), name);
        if (!threads.empty() && name != threads)
            continue;
        std::ifstream file(thread.path() / "status");
        for (std::string word; file >> word;)
            if (long count = 0; word == "voluntary_ctxt_switches:" && file >> count)
                total += count;
    }
    return total;
}

} // namespace velorin
