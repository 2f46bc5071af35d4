// The road from sound to text, in real time, over the real recogniser: how long after the key came up the
// last word is there, and how soon the first words are.
#include "app/transcribe/FileAudioInput.h"
#include "platform/Gate.h"
#include "platform/linux/desktop/SystemClock.h"
#include "platform/linux/desktop/XdgFolders.h"
#include "platform/linux/recognition/SherpaRecognition.h"
#include "platform/linux/sound/SndfileWriter.h"
#include "platform/linux/sound/SoxrConverter.h"
#include "speech/SpeechEngine.h"

#include <QCoreApplication>

#include <benchmark/benchmark.h>

namespace {

using namespace velorin;
using Clock = std::chrono::steady_clock;

struct Road {
    SystemClock clock;
    XdgFolders folders;
    SoxrConverterFactory converters;
    SndfileFactory files;
    LatencyMarks marks;
    SherpaRecognition recognition{clock, ModelStore::programFolders(),
                                  folders.dataFolder() + QStringLiteral("/models")};
};

struct Times {
    double lastFinal = -1;    ///< Seconds from the end of the sound.
    double firstPreview = -1; ///< Seconds from the beginning of the sound.
};

QCoro::Task<Times> dictate(Road* road, QString file) {
    Gate hasPlayed(false);
    FileAudioInput input(file, true, [&hasPlayed] { hasPlayed.open(); });
    Times times;
    SpeechEngine engine(input, road->recognition, road->converters, road->files, road->folders, road->marks);
    const auto began = Clock::now();
    engine.onResult = [&times, began](const QString&, bool) {
        if (times.firstPreview < 0)
            times.firstPreview = std::chrono::duration<double>(Clock::now() - began).count();
    };
    if (!co_await engine.start(QStringLiteral("en-US")))
        co_return times;
    co_await hasPlayed.opened();
    co_await engine.stop();
    times.lastFinal = std::chrono::duration<double>(Clock::now() - input.end()).count();
    co_return times;
}

void keyUpToLastFinal(benchmark::State& state, const char* sentence) {
    int argumentCount = 0;
    const QCoreApplication application(argumentCount, nullptr);
    Road road;
    const QString file = QStringLiteral(VELORIN_SENTENCES "/%1.wav").arg(QLatin1StringView(sentence));
    // The first one loads the model.
    if (QCoro::waitFor(dictate(&road, file)).lastFinal < 0) {
        state.SkipWithError("the recogniser did not start");
        return;
    }
    double previews = 0;
    for (auto _ : state) {
        const Times times = QCoro::waitFor(dictate(&road, file));
        state.SetIterationTime(times.lastFinal);
        previews += times.firstPreview;
    }
    state.counters["firstPreviewMs"] =
        benchmark::Counter(previews * 1000, benchmark::Counter::kAvgIterations);
}

BENCHMARK_CAPTURE(keyUpToLastFinal, 5s, "mountains")
    ->UseManualTime()
    ->Iterations(5)
    ->Unit(benchmark::kMillisecond);

} // namespace
