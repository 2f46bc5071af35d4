#include "tests/platform/linux/atspi/support/PrivateBus.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace velorin {

PrivateBus::PrivateBus() {
    std::array<int, 2> pipe{};
    if (::pipe(pipe.data()) != 0)
        throw std::runtime_error("no pipe");
    process_ = fork();
    if (process_ == 0) {
        dup2(pipe[1], STDOUT_FILENO);
        execlp("dbus-daemon", "dbus-daemon", "--session", "--nofork", "--print-address=1", nullptr);
        _exit(127);
    }
    close(pipe[1]);
    for (char c = 0; read(pipe[0], &c, 1) == 1 && c != '\n';)
        address_ += c;
    close(pipe[0]);
    if (address_.empty())
        throw std::runtime_error("no bus");
    setenv("DBUS_SESSION_BUS_ADDRESS", address_.c_str(), 1);
}

PrivateBus::~PrivateBus() {
    kill();
    unsetenv("DBUS_SESSION_BUS_ADDRESS");
}

void PrivateBus::kill() {
    if (process_ <= 0)
        return;
    ::kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
    process_ = -1;
}

} // namespace velorin
