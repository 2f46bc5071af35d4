// say FILE.wav [SINK]: speaks a sound file into the microphone of a private desktop.
//
// Prints "began" and the time at which the first samples went to the sound server, in seconds of
// the monotonic clock, and "ended" with the time when the last one has been heard; then it ends.
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <pulse/error.h>
#include <pulse/simple.h>
#include <sndfile.h>
#include <unistd.h>

namespace {

// What the sound server may take longer than the sound itself.
constexpr unsigned graceSeconds = 10;

struct Close {
    void operator()(SNDFILE* file) const { sf_close(file); }
    void operator()(pa_simple* stream) const { pa_simple_free(stream); }
};

struct Sound {
    SF_INFO info{};
    std::vector<float> samples;
};

Sound read(const char* path) {
    Sound sound;
    const std::unique_ptr<SNDFILE, Close> file(sf_open(path, SFM_READ, &sound.info));
    if (!file)
        throw std::runtime_error(std::string("cannot read ") + path + ": " + sf_strerror(nullptr));
    sound.samples.resize(static_cast<size_t>(sound.info.frames * sound.info.channels));
    if (sf_readf_float(file.get(), sound.samples.data(), sound.info.frames) != sound.info.frames)
        throw std::runtime_error(std::string("cannot read all of ") + path);
    return sound;
}

std::unique_ptr<pa_simple, Close> connect(const SF_INFO& info, const char* sink) {
    const pa_sample_spec format{.format = PA_SAMPLE_FLOAT32NE,
                                .rate = static_cast<uint32_t>(info.samplerate),
                                .channels = static_cast<uint8_t>(info.channels)};
    // A long buffer, so that a busy machine tears no holes, that begins with its first sample (a
    // stream that begins with none is never told that it has run dry).
    constexpr auto byServer = static_cast<uint32_t>(-1);
    const pa_buffer_attr buffer{
        .maxlength = byServer, .tlength = byServer, .prebuf = 1, .minreq = byServer, .fragsize = byServer};
    int error = 0;
    std::unique_ptr<pa_simple, Close> stream(
        pa_simple_new(nullptr, "say", PA_STREAM_PLAYBACK, sink, "speech", &format, nullptr, &buffer, &error));
    if (!stream)
        throw std::runtime_error(std::string("the sound server is not there: ") + pa_strerror(error));
    return stream;
}

void tell(const char* what) {
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    std::printf("%s %.4f\n", what,
                static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9);
    std::fflush(stdout);
}

void giveUp(int) {
    constexpr char message[] = "say: the sound server did not play the sound in time\n";
    [[maybe_unused]] const auto written = write(STDERR_FILENO, message, sizeof message - 1);
    _exit(1);
}

void check(bool isFine, int error) {
    if (!isFine)
        throw std::runtime_error(std::string("the sound server stopped: ") + pa_strerror(error));
}

// The server says that all was played only when its buffer has been silent for a good while, so
// the end is reckoned from what is still to be heard.
void waitUntilHeard(pa_simple* stream) {
    int error = PA_OK;
    const auto latency = pa_simple_get_latency(stream, &error);
    check(error == PA_OK, error);
    constexpr pa_usec_t second = 1'000'000;
    timespec rest{.tv_sec = static_cast<time_t>(latency / second),
                  .tv_nsec = static_cast<long>(latency % second * 1000)};
    while (nanosleep(&rest, &rest) != 0) {
    }
}

void play(const Sound& sound, const char* sink) {
    std::signal(SIGALRM, giveUp);
    alarm(static_cast<unsigned>(sound.info.frames / sound.info.samplerate) + graceSeconds);
    const auto stream = connect(sound.info, sink);
    tell("began");
    int error = PA_OK;
    const auto size = sound.samples.size() * sizeof(float);
    check(pa_simple_write(stream.get(), sound.samples.data(), size, &error) == 0, error);
    waitUntilHeard(stream.get());
    tell("ended");
    check(pa_simple_drain(stream.get(), &error) == 0, error);
}

} // namespace

int main(int count, char** arguments) try {
    if (count < 2)
        throw std::runtime_error("which file?");
    play(read(arguments[1]), count > 2 ? arguments[2] : "velorin_voice");
    return 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "say: %s\n", error.what());
    return 1;
}
