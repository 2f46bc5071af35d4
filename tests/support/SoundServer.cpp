#include "SoundServer.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
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

void waitFor(const std::function<bool()>& done) {
    const auto deadline = std::chrono::steady_clock::now() + startDeadline;
    while (!done()) {
        if (std::chrono::steady_clock::now() > deadline)
            throw std::runtime_error("the sound server does not start");
        std::this_thread::sleep_for(betweenLooks);
    }
}

bool succeeded(pid_t child) {
    int status = 0;
    return waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

} // namespace

SoundServer::SoundServer(std::string microphoneArguments, Kind kind)
    : nothing_(open("/dev/null", O_RDWR | O_CLOEXEC)), folder_(newFolder()),
      microphoneArguments_(std::move(microphoneArguments)), kind_(kind) {
    const std::string folder = folder_.string();
    for (const auto& [name, value] : std::map<std::string, std::string>{
             {"PULSE_SERVER", "unix:" + folder + "/pulse/native"},
             {"PULSE_RUNTIME_PATH", folder + "/pulse"},
             {"PULSE_STATE_PATH", folder},
             {"PULSE_COOKIE", folder + "/cookie"},
             // PipeWire's own, which remembers defaults from one start to the next.
             {"PIPEWIRE_RUNTIME_DIR", folder},
             {"XDG_STATE_HOME", folder + "/state"},
             {"XDG_RUNTIME_DIR", folder},
             {"DBUS_SESSION_BUS_ADDRESS", "unix:path=" + folder + "/bus"}})
        setenv(name.c_str(), value.c_str(), 1);
    std::filesystem::create_directory(folder_ / "pulse");
    start();
}

SoundServer::~SoundServer() {
    kill();
    close(nothing_);
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

std::string SoundServer::microphoneModule() const {
    return "module-remap-source source_name=microphone master=voice.monitor " + microphoneArguments_;
}

void SoundServer::startPulseAudio() {
    const std::string socket = (folder_ / "pulse/native").string();
    servers_.push_back(
        spawn({"pulseaudio", "-n", "--daemonize=no", "--use-pid-file=no", "--exit-idle-time=-1",
               "--disable-shm=yes", "-L", "module-native-protocol-unix auth-anonymous=1 socket=" + socket,
               "-L", "module-null-sink sink_name=voice", "-L", microphoneModule()},
              nothing_));
}

/// Its session manager ends without a session bus, and connects once only.
void SoundServer::startPipeWire() {
    const auto start = [this](std::vector<std::string> command, const char* socket) {
        std::filesystem::remove(folder_ / socket);
        servers_.push_back(spawn(std::move(command), nothing_));
        waitFor([&] { return std::filesystem::exists(folder_ / socket); });
    };
    start({"dbus-daemon", "--session", "--nofork", "--nopidfile",
           "--address=unix:path=" + (folder_ / "bus").string()},
          "bus");
    start({"pipewire"}, "pipewire-0");
    servers_.push_back(spawn({"wireplumber"}, nothing_));
    start({"pipewire-pulse"}, "pulse/native");
    // Without the session manager nothing is connected to anything, and there is no default.
    waitFor([this] { return control("info | grep -q 'Default Sink: auto_null'"); });
    waitFor([this] { return control("load-module module-null-sink sink_name=voice"); });
    waitFor([this] { return control("load-module " + microphoneModule()); });
}

void SoundServer::start() {
    kind_ == Kind::pulseAudio ? startPulseAudio() : startPipeWire();
    waitFor([this] { return control("set-default-source microphone"); });
    waitFor([this] { return control("get-default-source | grep -qx microphone"); });
    // An idle null sink wakes up every two seconds; a reader with small fragments keeps it at 10 ms.
    players_.push_back(
        spawn({"parec", "--latency-msec=10", "--device=voice.monitor", "/dev/null"}, nothing_));
    waitFor([this] { return control("list source-outputs | grep -q 'application.name = \"parec\"'"); });
}

void SoundServer::kill() {
    for (const pid_t server : servers_) {
        ::kill(server, SIGKILL);
        waitpid(server, nullptr, 0);
    }
    servers_.clear();
    endPlayers();
}

void SoundServer::endPlayers() {
    for (const pid_t player : players_) {
        ::kill(player, SIGKILL);
        waitpid(player, nullptr, 0);
    }
    players_.clear();
}

void SoundServer::freeze() { signalAll(SIGSTOP); }

void SoundServer::thaw() { signalAll(SIGCONT); }

void SoundServer::signalAll(int signal) {
    for (const pid_t server : servers_)
        ::kill(server, signal);
}

bool SoundServer::control(const std::string& command) {
    return succeeded(spawn({"sh", "-c", "timeout 5 pactl " + command}, nothing_));
}

std::string SoundServer::answer(const std::string& command) {
    const std::filesystem::path path = folder_ / "answer";
    control(command + " >" + path.string());
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

void SoundServer::play(const std::vector<float>& samples, const std::string& sink) {
    const std::string path = (folder_ / ("sound" + std::to_string(players_.size()))).string();
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(samples.data()),
               static_cast<std::streamsize>(samples.size() * sizeof(float)));
    const int input = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    players_.push_back(spawn({"pacat", "--playback", "--raw", "--format=float32le", "--rate=16000",
                              "--channels=1", "--latency-msec=20", "--device=" + sink},
                             input));
    close(input);
}

bool SoundServer::isRecordedFrom() {
    // The reader that keeps the sink quick listens to the sink's monitor, and the source to that as well.
    return control("list source-outputs | grep -q 'application.id = \"dev.orrin.velorin\"'");
}

} // namespace velorin
