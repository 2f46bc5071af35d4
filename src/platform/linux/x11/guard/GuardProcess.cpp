#include "platform/linux/x11/guard/GuardProcess.h"

#include "platform/UsersMask.h"
#include "platform/linux/x11/guard/GuardDescriptors.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace velorin {

namespace {

constexpr int startDeadline = 2000; // milliseconds
constexpr int quickEndsAllowed = 3;
constexpr auto quick = std::chrono::seconds(5);

/// What posix_spawn does to the descriptors and signals of the new process.
class SpawnPlan final {
public:
    SpawnPlan() {
        posix_spawn_file_actions_init(&actions_);
        posix_spawnattr_init(&attributes_);
        // The thread that starts it may have signals blocked, which would be inherited.
        sigset_t none;
        sigemptyset(&none);
        posix_spawnattr_setsigmask(&attributes_, &none);
        posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGMASK);
    }
    ~SpawnPlan() {
        posix_spawn_file_actions_destroy(&actions_);
        posix_spawnattr_destroy(&attributes_);
    }
    SpawnPlan(const SpawnPlan&) = delete;
    SpawnPlan& operator=(const SpawnPlan&) = delete;

    void hand(int from, int to) { posix_spawn_file_actions_adddup2(&actions_, from, to); }
    [[nodiscard]] pid_t spawn(const std::string& program, const std::string& argument) const {
        std::array<char*, 3> arguments{const_cast<char*>(program.c_str()),
                                       const_cast<char*>(argument.c_str()), nullptr};
        pid_t process = 0;
        int error = 0;
        UsersMask::onThreadOfItsOwn([&] {
            error =
                posix_spawn(&process, program.c_str(), &actions_, &attributes_, arguments.data(), environ);
        });
        return error == 0 ? process : 0;
    }

private:
    posix_spawn_file_actions_t actions_{};
    posix_spawnattr_t attributes_{};
};

/// A copy above all places of the guard, so that handing one over does not close another.
class OutOfTheWay final {
public:
    explicit OutOfTheWay(int descriptor) : copy_(fcntl(descriptor, F_DUPFD_CLOEXEC, 10)) {}
    ~OutOfTheWay() { close(copy_); }
    OutOfTheWay(const OutOfTheWay&) = delete;
    OutOfTheWay& operator=(const OutOfTheWay&) = delete;
    [[nodiscard]] int get() const { return copy_; }

private:
    int copy_;
};

} // namespace

std::string guardProgram() {
    std::error_code error;
    const auto folder = std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
    for (const auto& place : {folder / "velorin-guard", folder / "../libexec/velorin/velorin-guard"})
        if (std::filesystem::exists(place, error))
            return place.string();
    return {};
}

GuardProcess::GuardProcess(std::string program, const SharedKeyState& shared, const WakeUp& tapWakeUp)
    : program_(std::move(program)), shared_(shared), tapWakeUp_(tapWakeUp) {}

GuardProcess::~GuardProcess() { reap(); }

bool GuardProcess::start() {
    if (program_.empty())
        return false;
    std::array<int, 2> ends{};
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0)
        return false;
    {
        const OutOfTheWay theirs(ends[1]);
        const OutOfTheWay keys(shared_.fileDescriptor());
        const OutOfTheWay wakeUp(tapWakeUp_.fileDescriptor());
        SpawnPlan plan;
        plan.hand(keys.get(), GuardDescriptors::keys);
        plan.hand(theirs.get(), GuardDescriptors::life);
        plan.hand(wakeUp.get(), GuardDescriptors::tapWakeUp);
        process_ = plan.spawn(program_, std::to_string(getpid()));
    }
    close(ends[1]);
    life_ = ends[0];
    startedAt_ = std::chrono::steady_clock::now();
    if (process_ == 0)
        reap();
    return process_ != 0;
}

bool GuardProcess::awaitReady() {
    pollfd waiting{life_, POLLIN, 0};
    if (poll(&waiting, 1, startDeadline) == 1 && !lives())
        reap();
    return process_ != 0;
}

bool GuardProcess::lives() const {
    char ready = 0; // it is told once; after that there is the end alone
    const auto count = recv(life_, &ready, sizeof ready, MSG_DONTWAIT);
    return count > 0 || (count < 0 && (errno == EAGAIN || errno == EINTR));
}

void GuardProcess::startIfNone() {
    if (process_ != 0)
        return;
    quickEnds_ = 0;
    start();
}

bool GuardProcess::startAgain() {
    quickEnds_ = std::chrono::steady_clock::now() - startedAt_ < quick ? quickEnds_ + 1 : 0;
    reap();
    return quickEnds_ <= quickEndsAllowed && start();
}

void GuardProcess::reap() {
    if (life_ >= 0)
        close(std::exchange(life_, -1)); // it ends by itself when it sees this
    const auto process = std::exchange(process_, 0);
    if (process == 0)
        return;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(1);
    while (waitpid(process, nullptr, WNOHANG) == 0) {
        if (std::chrono::steady_clock::now() > deadline)
            kill(process, SIGKILL);
        usleep(1000);
    }
}

} // namespace velorin
