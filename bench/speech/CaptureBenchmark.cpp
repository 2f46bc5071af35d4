// How soon after the key the first sound is there, from a sound server of our own that is warm.
#include "platform/linux/desktop/SystemClock.h"
#include "platform/linux/desktop/XdgFolders.h"
#include "platform/linux/pulse/PulseAudioInput.h"
#include "platform/linux/recognition/SherpaRecognition.h"
#include "platform/linux/sound/SndfileWriter.h"
#include "platform/linux/sound/SoxrConverter.h"
#include "speech/SpeechEngine.h"
#include "tests/support/SoundServer.h"
#include "tests/support/WaitUntil.h"

#include <QCoreApplication>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <atomic>

namespace {

using namespace velorin;
using Clock = std::chrono::steady_clock;

double milliseconds(Clock::duration time) { return std::chrono::duration<double, std::milli>(time).count(); }

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}

/// From the engine's start to its first buffer; beside it, what the server alone needs from the opening of a
/// stream to a buffer's worth of sound.
void keyDownToFirstSample(benchmark::State& state, SoundServer::Kind kind) {
    int argumentCount = 0;
    const QCoreApplication application(argumentCount, nullptr);
    SoundServer server("", kind);
    SystemClock clock;
    XdgFolders folders;
    SoxrConverterFactory converters;
    SndfileFactory files;
    LatencyMarks marks;
    SherpaRecognition recognition{clock, ModelStore::programFolders(),
                                  folders.dataFolder() + QStringLiteral("/models")};
    PulseAudioInput input;
    SpeechEngine engine(input, recognition, converters, files, folders, marks);
    std::atomic<Clock::rep> first = 0;
    const auto mark = [&first] {
        Clock::rep none = 0;
        first.compare_exchange_strong(none, Clock::now().time_since_epoch().count());
    };
    engine.onAudioLevel = [mark](float) { mark(); };
    const auto firstAt = [&first] { return Clock::time_point(Clock::duration(first.load())); };
    const auto hasSound = [&first] { return first != 0; };
    std::vector<double> all;
    std::vector<double> servers;
    // The first one connects and loads the model.
    const auto dictation = [&] {
        first = 0; // what came at the end of the one before is none of it
        const auto begin = Clock::now();
        const bool isStarted = QCoro::waitFor(engine.start(QStringLiteral("en-US"))).has_value();
        const bool hasHeard = isStarted && waitUntil(hasSound);
        const double time = milliseconds(firstAt() - begin);
        QCoro::waitFor(engine.stop());
        return hasHeard ? time : -1;
    };
    if (dictation() < 0)
        return state.SkipWithError("nothing was heard");
    const AudioFormat format = QCoro::waitFor(input.inputFormat());
    for (auto _ : state) {
        const double time = dictation();
        first = 0;
        const auto begin = Clock::now();
        const auto started = QCoro::waitFor(input.start(
            format, 1024, [mark](const AudioBuffer&) { mark(); }, nullptr));
        if (time < 0 || !started || !waitUntil(hasSound))
            return state.SkipWithError("nothing was heard");
        all.push_back(time);
        servers.push_back(milliseconds(firstAt() - begin));
        QCoro::waitFor(input.stop());
        state.SetIterationTime(time / 1000);
    }
    state.counters["medianMs"] = median(all);
    state.counters["mostMs"] = *std::max_element(all.begin(), all.end());
    state.counters["serverMedianMs"] = median(servers);
    state.counters["ownMedianMs"] = median(all) - median(servers);
}
BENCHMARK_CAPTURE(keyDownToFirstSample, PulseAudio, SoundServer::Kind::pulseAudio)
    ->UseManualTime()
    ->Iterations(20)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(keyDownToFirstSample, PipeWire, SoundServer::Kind::pipeWire)
    ->UseManualTime()
    ->Iterations(20)
    ->Unit(benchmark::kMillisecond);

} // namespace
