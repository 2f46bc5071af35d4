#include "SoundServer.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <thread>

#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace velorin {

namespace {

constexpr std::chrono::seconds startDeadline{20};
constexpr std::chrono::milliseconds betweenLooks{10};

std::filesystem::path newFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "velorin-sound-XXXXXX").string();
    if (!mkdtemp(name.data()))
        throw std::runtime_error("no temporary folder");
    return name;
}

bool succeeded(pid_t child) {
    int status = 0;
    return waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

} // namespace

SoundServer::SoundServer(std::string microphoneArguments)
    : folder_(newFolder()), microphoneArguments_(std::move(microphoneArguments)) {
    const std::string folder = folder_.string();
    setenv("PULSE_SERVER", ("unix:" + folder + "/native").c_str(), 1);
    setenv("PULSE_RUNTIME_PATH", folder.c_str(), 1);
    setenv("PULSE_STATE_PATH", folder.c_str(), 1);
    setenv("PULSE_COOKIE", (folder + "/cookie").c_str(), 1);
    start();
}

SoundServer::~SoundServer() {
    kill();
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

pid_t SoundServer::spawn(std::vector<std::string> command, int input) {
    std::vector<char*> arguments;
    for (std::string& argument : command)
        arguments.push_back(argument.data());
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
    const std::string log = (folder_ / "log").string();
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, log.c_str(), O_WRONLY | O_CREAT | O_APPEND,
                                     0600);
    posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);
    pid_t child = 0;
    const int error = posix_spawnp(&child, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0)
        throw std::runtime_error("cannot run " + command[0]);
    return child;
}

void SoundServer::start() {
    const int nothing = open("/dev/null", O_RDWR | O_CLOEXEC);
    server_ =
        spawn({"pulseaudio", "-n", "--daemonize=no", "--use-pid-file=no", "--exit-idle-time=-1",
               "--disable-shm=yes", "-L",
               "module-native-protocol-unix auth-anonymous=1 socket=" + (folder_ / "native").string(), "-L",
               "module-null-sink sink_name=voice", "-L",
               "module-remap-source source_name=microphone master=voice.monitor " + microphoneArguments_},
              nothing);
    const auto deadline = std::chrono::steady_clock::now() + startDeadline;
    while (!control("set-default-source microphone")) {
        if (std::chrono::steady_clock::now() > deadline)
            throw std::runtime_error("the sound server does not start");
        std::this_thread::sleep_for(betweenLooks);
    }
    // An idle null sink wakes up every two seconds; a reader with small fragments keeps it at 10 ms.
    players_.push_back(spawn({"parec", "--latency-msec=10", "--device=voice.monitor", "/dev/null"}, nothing));
    close(nothing);
    while (!control("list short source-outputs | grep -q protocol-native"))
        std::this_thread::sleep_for(betweenLooks);
}

void SoundServer::kill() {
    if (server_ == 0)
        return;
    ::kill(server_, SIGKILL);
    waitpid(server_, nullptr, 0);
    server_ = 0;
    endPlayers();
}

void SoundServer::endPlayers() {
    for (const pid_t player : players_) {
        ::kill(player, SIGKILL);
        waitpid(player, nullptr, 0);
    }
    players_.clear();
}

void SoundServer::freeze() { ::kill(server_, SIGSTOP); }

void SoundServer::thaw() { ::kill(server_, SIGCONT); }

bool SoundServer::control(const std::string& command) {
    const int nothing = open("/dev/null", O_RDWR | O_CLOEXEC);
    const pid_t child = spawn({"sh", "-c", "timeout 5 pactl " + command}, nothing);
    close(nothing);
    return succeeded(child);
}

void SoundServer::play(const std::vector<float>& samples) {
    const std::string path = (folder_ / ("sound" + std::to_string(players_.size()))).string();
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(samples.data()),
               static_cast<std::streamsize>(samples.size() * sizeof(float)));
    const int input = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    players_.push_back(spawn({"pacat", "--playback", "--raw", "--format=float32le", "--rate=16000",
                              "--channels=1", "--latency-msec=20", "--device=voice"},
                             input));
    close(input);
}

bool SoundServer::isRecordedFrom() {
    // The reader that keeps the sink quick listens to the sink's monitor, and the source to that as well.
    return control("list source-outputs | grep -q 'application.id = \"dev.orrin.velorin\"'");
}

} // namespace velorin
