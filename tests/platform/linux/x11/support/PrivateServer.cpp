#include "tests/platform/linux/x11/support/PrivateServer.h"

#include "platform/linux/x11/XConnection.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <poll.h>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <thread>
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

/// What arrives while a manager starts it may leave lying until the next event: a window of ours is mapped,
/// and the manager is nudged until it has seen it.
void awaitManagement(XConnection& connection, Deadline deadline) {
    auto* c = connection.get();
    const auto window = xcb_generate_id(c);
    xcb_create_window(c, XCB_COPY_FROM_PARENT, window, connection.root(), 0, 0, 10, 10, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_map_window(c, window);
    for (;;) {
        xcb_change_property(c, XCB_PROP_MODE_REPLACE, connection.root(), connection.atom("_VELORIN_NUDGE"),
                            XCB_ATOM_CARDINAL, 32, 0, nullptr);
        const auto attributes = connection.reply<xcb_get_window_attributes_reply_t>(
            xcb_get_window_attributes(c, window), deadline);
        if (!attributes || deadline.hasPassed())
            throw std::runtime_error("the window manager does not manage");
        if (attributes->map_state == XCB_MAP_STATE_VIEWABLE)
            break;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    xcb_destroy_window(c, window);
    connection.sync(deadline);
}

} // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& command, ChildStreams streams) {
    std::vector<char*> arguments;
    for (const auto& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    id_ = fork();
    if (id_ == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL); // also when the test itself is killed
        if (streams.input >= 0)
            dup2(streams.input, STDIN_FILENO);
        if (streams.output >= 0)
            dup2(streams.output, STDOUT_FILENO);
        if (streams.error >= 0)
            dup2(streams.error, STDERR_FILENO);
        for (int descriptor = 3; descriptor < 256; ++descriptor)
            close(descriptor);
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

int ChildProcess::wait() {
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(startDeadline);
    int status = 0;
    while (waitpid(id_, &status, WNOHANG) == 0) {
        if (std::chrono::steady_clock::now() > end)
            throw std::runtime_error("a process did not end");
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    id_ = 0;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

PrivateServer::PrivateServer(const std::vector<std::string>& options) {
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0)
        throw std::runtime_error("no pipe");
    // Through a shell that drops its complaint of each display that is taken.
    std::vector<std::string> command{"sh",       "-c",         "exec Xvfb \"$@\" 2>/dev/null",
                                     "sh",       "-displayfd", "1",
                                     "-noreset", "-nolisten",  "tcp",
                                     "-screen",  "0",          "800x600x24"};
    command.insert(command.end(), options.begin(), options.end());
    server_ = std::make_unique<ChildProcess>(command, ChildStreams{.output = ends[1]});
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

void PrivateServer::startWindowManager(const std::vector<std::string>& command) {
    start(command);
    const auto connection = XConnection::open();
    const Deadline deadline{std::chrono::milliseconds(startDeadline)};
    const auto hasManager = [&] {
        const auto manager = connection->reply<xcb_get_property_reply_t>(
            xcb_get_property(connection->get(), false, connection->root(),
                             connection->atom("_NET_SUPPORTING_WM_CHECK"), XCB_ATOM_WINDOW, 0, 1),
            deadline);
        return manager && xcb_get_property_value_length(manager.get()) == 4;
    };
    while (!hasManager()) {
        if (deadline.hasPassed())
            throw std::runtime_error("the window manager did not start");
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    awaitManagement(*connection, deadline);
}

void PrivateServer::holdUp(std::chrono::milliseconds time) {
    server_->kill(SIGSTOP);
    std::this_thread::sleep_for(time); // the habit itself, not a wait for anything
    server_->kill(SIGCONT);
}

void PrivateServer::kill() { server_->end(SIGKILL); }

} // namespace velorin
