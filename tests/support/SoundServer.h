/// A private sound server with a microphone of its own, for tests; our client library is pointed at it. It is
/// PulseAudio, or PipeWire, which speaks PulseAudio's language through a server beside it.
///
///     SoundServer server;                    // a null sink "voice", and a source "microphone" that hears it
///     SoundServer other("rate=8000 channels=1", SoundServer::Kind::pipeWire);
///     server.play(samples);                  // 16 kHz, mono
///     server.control("unload-module module-remap-source");
///     server.kill();  server.start();
///
/// Standard primitives only, for tests under ThreadSanitizer.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

namespace velorin {

class SoundServer final {
public:
    enum class Kind { pulseAudio, pipeWire };

    explicit SoundServer(std::string microphoneArguments = "", Kind kind = Kind::pulseAudio);
    SoundServer(const SoundServer&) = delete;
    SoundServer& operator=(const SoundServer&) = delete;
    ~SoundServer();

    /// Starts it (again), on the same socket, and waits until its microphone is there.
    void start();
    /// Ends it as a crash would.
    void kill();
    /// Stops it from running, or lets it go on.
    void freeze();
    void thaw();

    /// Runs a command of pactl and waits for it; false when it failed.
    bool control(const std::string& command);

    /// What the command prints.
    std::string answer(const std::string& command);

    /// Plays into the microphone, and returns while it is played.
    void play(const std::vector<float>& samples, const std::string& sink = "voice");
    /// Whether a recording is going on: what the desktop's microphone mark shows.
    bool isRecordedFrom();

private:
    void startPulseAudio();
    void startPipeWire();
    void signalAll(int signal);
    [[nodiscard]] std::string microphoneModule() const;
    pid_t spawn(std::vector<std::string> command, int input);
    void endPlayers();

    int nothing_; ///< What has no input reads from it.
    std::filesystem::path folder_;
    std::string microphoneArguments_;
    Kind kind_;
    std::vector<pid_t> servers_; ///< In the order of their start.
    std::vector<pid_t> players_;
};

} // namespace velorin
