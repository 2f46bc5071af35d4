#include "tests/platform/linux/x11/support/PrivateServer.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace velorin {

namespace {

constexpr int startDeadline = 20'000;

std::string readLine(int descriptor, int deadline) {
    std::string line;
    for (;;) {
        pollfd waiting{descriptor, POLLIN, 0};
        char c = 0;
        if (poll(&waiting, 1, deadline) != 1 || read(descriptor, &c, 1) != 1)
            throw std::runtime_error("the X server did not start");
        if (c == '\n')
            return line;
        line += c;
    }
}

} // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& command, int inheritedDescriptor) {
    std::vector<char*> arguments;
    for (const auto& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    id_ = fork();
    if (id_ == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL); // also when the test itself is killed
        for (int descriptor = 3; descriptor < 256; ++descriptor)
            if (descriptor != inheritedDescriptor)
                close(descriptor);
        if (inheritedDescriptor >= 0) // a server: it complains of each display that is taken
            dup2(open("/dev/null", O_WRONLY), STDERR_FILENO);
        execvp(arguments[0], arguments.data());
        _exit(127);
    }
    if (id_ < 0)
        throw std::runtime_error("no process could be started");
}

ChildProcess::~ChildProcess() {
    if (id_ > 0)
        end(SIGKILL);
}

void ChildProcess::kill(int signal) const { ::kill(id_, signal); }

void ChildProcess::end(int signal) {
    kill(signal);
    int status = 0;
    while (waitpid(id_, &status, 0) < 0 && errno == EINTR) {
    }
    id_ = 0;
}

PrivateServer::PrivateServer(const std::vector<std::string>& options) {
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0)
        throw std::runtime_error("no pipe");
    std::vector<std::string> command{"Xvfb",     "-displayfd", std::to_string(ends[1]),
                                     "-noreset", "-nolisten",  "tcp",
                                     "-screen",  "0",          "800x600x24"};
    command.insert(command.end(), options.begin(), options.end());
    server_ = std::make_unique<ChildProcess>(command, ends[1]);
    close(ends[1]);
    display_ = ":" + readLine(ends[0], startDeadline);
    close(ends[0]);
    setenv("DISPLAY", display_.c_str(), 1);
    unsetenv("WAYLAND_DISPLAY");
    unsetenv("XDG_SESSION_TYPE");
}

PrivateServer::~PrivateServer() { unsetenv("DISPLAY"); }

ChildProcess& PrivateServer::start(const std::vector<std::string>& command) {
    return *clients_.emplace_back(std::make_unique<ChildProcess>(command));
}

void PrivateServer::kill() { server_->end(SIGKILL); }

} // namespace velorin
