// The road from sound to text, in real time, over the real recogniser: how long after the key came up the
// last word is there, how soon the first words are, and what all of it costs.
#include "app/transcribe/FileAudioInput.h"
#include "bench/speech/Spoken.h"
#include "platform/Gate.h"
#include "platform/linux/desktop/SystemClock.h"
#include "platform/linux/desktop/XdgFolders.h"
#include "platform/linux/recognition/SherpaRecognition.h"
#include "platform/linux/sound/SndfileWriter.h"
#include "platform/linux/sound/SoxrConverter.h"
#include "speech/SpeechEngine.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <ctime>

namespace {

using namespace velorin;
using Clock = std::chrono::steady_clock;

/// Between the key and the first word.
constexpr double breath = 0.2;

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
    double firstPreview = -1; ///< Seconds from the beginning of the first word.
    double processor = 0;     ///< Seconds of it for each second of the dictation.
};

double processorSeconds() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

double secondsSince(Clock::time_point begin) {
    return std::chrono::duration<double>(Clock::now() - begin).count();
}

QCoro::Task<Times> dictate(Road* road, QString file) {
    Gate hasPlayed(false);
    FileAudioInput input(file, FileAudioInput::inRealTime, [&hasPlayed] { hasPlayed.open(); });
    Times times;
    SpeechEngine engine(input, road->recognition, road->converters, road->files, road->folders, road->marks);
    const auto began = Clock::now();
    const double processorBefore = processorSeconds();
    engine.onResult = [&times, began](const QString&, bool) {
        if (times.firstPreview < 0)
            times.firstPreview = secondsSince(began) - breath;
    };
    if (!co_await engine.start(QStringLiteral("en-US")))
        co_return times;
    co_await hasPlayed.opened();
    co_await engine.stop();
    times.lastFinal = std::chrono::duration<double>(Clock::now() - input.end()).count();
    times.processor = (processorSeconds() - processorBefore) / secondsSince(began);
    co_return times;
}

/// The value that so much of the values are not above.
double quantile(std::vector<double> values, double part) {
    std::sort(values.begin(), values.end());
    const auto rank = static_cast<std::size_t>(std::ceil(part * static_cast<double>(values.size())));
    return values.at(std::max<std::size_t>(rank, 1) - 1);
}

void report(benchmark::State& state, const std::vector<Times>& all) {
    std::vector<double> finals;
    std::vector<double> previews;
    double processor = 0;
    for (const Times& times : all) {
        finals.push_back(times.lastFinal * 1000);
        previews.push_back(times.firstPreview * 1000);
        processor = std::max(processor, times.processor);
    }
    state.counters["dictations"] = static_cast<double>(all.size());
    state.counters["medianMs"] = quantile(finals, 0.5);
    state.counters["p95Ms"] = quantile(finals, 0.95);
    state.counters["firstPreviewMedianMs"] = quantile(previews, 0.5);
    state.counters["firstPreviewP95Ms"] = quantile(previews, 0.95);
    state.counters["mostProcessor"] = processor;
}

/// Dictates each sound once an iteration; the time is that from the end of the sound to the last result.
void dictateAll(benchmark::State& state, const std::vector<std::vector<float>>& sounds) {
    int argumentCount = 0;
    const QCoreApplication application(argumentCount, nullptr);
    const QTemporaryDir folder;
    QStringList files;
    for (const auto& sound : sounds) {
        files.append(folder.filePath(QStringLiteral("%1.wav").arg(files.size())));
        if (sound.empty() || !writeSound(files.last(), sound))
            return state.SkipWithError("a sound is missing");
    }
    Road road;
    // The first one loads the model.
    if (QCoro::waitFor(dictate(&road, files.first())).lastFinal < 0)
        return state.SkipWithError("the recogniser did not start");
    std::vector<Times> all;
    for (auto _ : state) {
        double sum = 0;
        for (const QString& file : files) {
            all.push_back(QCoro::waitFor(dictate(&road, file)));
            sum += all.back().lastFinal;
        }
        state.SetIterationTime(sum / static_cast<double>(files.size()));
    }
    report(state, all);
}

/// Sentences of about five seconds; the key comes up so many milliseconds after the last word.
void keyUpToLastFinal(benchmark::State& state) {
    std::vector<std::vector<float>> sounds;
    for (const char* name : {"letter", "mountains", "river", "neighbors", "leisure"})
        sounds.push_back(cutClose(spokenSentence(QLatin1StringView(name)), breath,
                                  static_cast<double>(state.range(0)) / 1000));
    dictateAll(state, sounds);
}
BENCHMARK(keyUpToLastFinal)
    ->ArgName("pauseMs")
    ->Arg(30)
    ->Arg(400)
    ->UseManualTime()
    ->Iterations(5)
    ->Unit(benchmark::kMillisecond);

/// By seconds of talk without an end.
void keyUpToLastFinalByLength(benchmark::State& state) {
    const auto sentence = cutClose(spokenSentence(QStringLiteral("leisure")), 0, 0);
    std::vector<float> sound(static_cast<std::size_t>(breath * spokenRate));
    const auto length = sound.size() + static_cast<std::size_t>(state.range(0)) * std::size_t{16000};
    while (!sentence.empty() && sound.size() < length)
        sound.insert(sound.end(), sentence.begin(), sentence.end());
    sound.resize(length);
    dictateAll(state, {sound});
}
BENCHMARK(keyUpToLastFinalByLength)
    ->ArgName("seconds")
    ->Arg(1)
    ->Arg(2)
    ->Arg(5)
    ->Arg(8)
    ->Arg(11)
    ->Arg(14)
    ->Arg(20)
    ->UseManualTime()
    ->Iterations(3)
    ->Unit(benchmark::kMillisecond);

} // namespace
