// What recognition gets wrong, with the model that comes with the program: as benchmarks, since it has
// budgets like they have. `scripts/speech-proof` measures the same at length.
#include "bench/speech/Spoken.h"
#include "platform/linux/recognition/BackgroundDecoder.h"
#include "platform/linux/recognition/ModelStore.h"
#include "platform/linux/recognition/Recognizer.h"
#include "platform/linux/recognition/SileroVoiceActivity.h"
#include "platform/linux/recognition/StreamingTranscriber.h"

#include <QFile>
#include <QFileInfo>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>

namespace velorin {

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr auto recordings = "/usr/share/pocketsphinx/test/data/librivox/";

struct Recognition {
    std::unique_ptr<VoiceActivity> voiceActivity;
    std::unique_ptr<Recognizer> recognizer;

    Recognition() {
        const ModelStore store(
            {QFileInfo(QFile::symLinkTarget(u"/proc/self/exe"_s)).path() + u"/../../../third_party/models"_s},
            {});
        const Model& model = *ModelCatalog::modelFor(u"en-US"_s);
        const Model& activity = ModelCatalog::voiceActivity();
        if (const auto folder = store.verified(model))
            recognizer = Recognizer::load(model, *folder, u"en-US"_s);
        if (const auto folder = store.verified(activity))
            voiceActivity =
                SileroVoiceActivity::load(QString(*folder + u'/' + activity.files[0].name).toStdString());
    }

    /// As the program does it.
    [[nodiscard]] QString streamed(const std::vector<float>& sound) const {
        std::string text;
        BackgroundDecoder ahead;
        ahead.decodeWith(*recognizer, [] {});
        StreamingTranscriber transcriber(*voiceActivity, *recognizer, ahead, {},
                                         [&text](const std::string& result, bool isFinal) {
                                             if (isFinal)
                                                 text += result;
                                         });
        constexpr std::size_t piece = 341;
        for (std::size_t first = 0; first < sound.size(); first += piece)
            transcriber.add(std::span(sound).subspan(first, std::min(piece, sound.size() - first)));
        transcriber.finish();
        return QString::fromStdString(text);
    }
};

QStringList wordsOf(const QString& text) {
    QString plain = text.toLower().replace(u"mr."_s, u"mister"_s).replace(u'-', u' ');
    plain.removeIf([](QChar character) { return !character.isLetter() && character != u' '; });
    return plain.split(u' ', Qt::SkipEmptyParts);
}

qsizetype errors(const QStringList& expected, const QStringList& got) {
    std::vector<qsizetype> line(static_cast<std::size_t>(got.size()) + 1);
    for (std::size_t j = 0; j < line.size(); ++j)
        line[j] = static_cast<qsizetype>(j);
    for (const QString& word : expected) {
        qsizetype diagonal = line[0]++;
        for (std::size_t j = 1; j < line.size(); ++j) {
            const qsizetype replaced = diagonal + (word == got[static_cast<qsizetype>(j) - 1] ? 0 : 1);
            diagonal = line[j];
            line[j] = std::min({line[j] + 1, line[j - 1] + 1, replaced});
        }
    }
    return line.back();
}

/// Word errors of recordings of people, streamed and each decoded whole; in percent.
void wordErrors(benchmark::State& state) {
    const Recognition recognition;
    QFile table(QLatin1StringView(recordings) + u"transcription"_s);
    if (!recognition.recognizer || !recognition.voiceActivity || !table.open(QIODevice::ReadOnly))
        return state.SkipWithError("model or recordings are missing");
    const QStringList rows = QString::fromUtf8(table.readAll()).split(u'\n', Qt::SkipEmptyParts);
    qsizetype words = 0;
    qsizetype streamed = 0;
    qsizetype whole = 0;
    for (auto _ : state) {
        for (const QString& row : rows) {
            const QStringList expected = wordsOf(row.section(u"<s>"_s, 1).section(u"</s>"_s, 0, 0));
            const QString name = row.section(u'(', 1).section(u')', 0, 0) + u".wav"_s;
            const auto sound = spokenFile(QLatin1StringView(recordings) + name);
            words += expected.size();
            streamed += errors(expected, wordsOf(recognition.streamed(sound)));
            whole += errors(expected, wordsOf(QString::fromStdString(recognition.recognizer->decode(sound))));
        }
    }
    const auto percent = [words](qsizetype wrong) {
        return 100 * static_cast<double>(wrong) / static_cast<double>(std::max<qsizetype>(words, 1));
    };
    state.counters["words"] = static_cast<double>(words);
    state.counters["streamedPercent"] = percent(streamed);
    state.counters["wholePercent"] = percent(whole);
}
BENCHMARK(wordErrors)->Iterations(1)->Unit(benchmark::kMillisecond);

/// What is written down of ten minutes in which nobody speaks.
void madeUpWords(benchmark::State& state, const std::function<float(std::size_t)>& sample) {
    const Recognition recognition;
    if (!recognition.recognizer || !recognition.voiceActivity)
        return state.SkipWithError("the model is missing");
    std::vector<float> sound(std::size_t{600} * 16000);
    for (std::size_t i = 0; i < sound.size(); ++i)
        sound[i] = sample(i);
    qsizetype words = 0;
    for (auto _ : state)
        words += wordsOf(recognition.streamed(sound)).size();
    state.counters["words"] = static_cast<double>(words);
}

float whiteNoise(std::size_t /*index*/) {
    static std::mt19937 random(1);
    return std::normal_distribution<float>(0, 0.05F)(random);
}

float brownNoise(std::size_t index) {
    static float level = 0;
    return level = 0.995F * level + 0.2F * whiteNoise(index);
}

float hum(std::size_t index) {
    const auto turn = [index](float frequency) {
        return std::sin(2 * std::numbers::pi_v<float> * frequency * static_cast<float>(index % 16000) /
                        16000);
    };
    return 0.1F * turn(50) + 0.05F * turn(150) + 0.03F * turn(250);
}

BENCHMARK_CAPTURE(madeUpWords, silence, [](std::size_t) { return 0.0F; })
    ->Iterations(1)
    ->Unit(benchmark::kSecond);
BENCHMARK_CAPTURE(madeUpWords, whiteNoise, whiteNoise)->Iterations(1)->Unit(benchmark::kSecond);
BENCHMARK_CAPTURE(madeUpWords, brownNoise, brownNoise)->Iterations(1)->Unit(benchmark::kSecond);
BENCHMARK_CAPTURE(madeUpWords, hum, hum)->Iterations(1)->Unit(benchmark::kSecond);

} // namespace

} // namespace velorin
