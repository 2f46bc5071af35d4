/// A private PulseAudio server with a microphone of its own, for tests; our client library is pointed at it.
///
///     SoundServer server;                    // a null sink "voice", and a source "microphone" that hears it
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
    explicit SoundServer(std::string microphoneArguments = "");
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

    /// Plays into the microphone, and returns while it is played.
    void play(const std::vector<float>& samples);
    /// Whether a recording is going on: what the desktop's microphone mark shows.
    bool isRecordedFrom();

private:
    pid_t spawn(std::vector<std::string> command, int input);
    void endPlayers();

    std::filesystem::path folder_;
    std::string microphoneArguments_;
    pid_t server_ = 0;
    std::vector<pid_t> players_;
};

} // namespace velorin
