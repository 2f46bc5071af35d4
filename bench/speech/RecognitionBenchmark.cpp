/// What recognition costs, with the model that comes with the program.
#include "platform/linux/recognition/BackgroundDecoder.h"
#include "platform/linux/recognition/ModelStore.h"
#include "platform/linux/recognition/Recognizer.h"
#include "platform/linux/recognition/SileroVoiceActivity.h"
#include "platform/linux/recognition/StreamingTranscriber.h"
#include "platform/linux/sound/SoxrConverter.h"
#include "speech/AudioLevel.h"

#include <QFile>
#include <QFileInfo>

#include <benchmark/benchmark.h>

#include <cmath>
#include <future>

namespace velorin {

namespace {

using namespace Qt::Literals::StringLiterals;

constexpr std::size_t samplesASecond = 16000;

QString executableFolder() { return QFileInfo(QFile::symLinkTarget(u"/proc/self/exe"_s)).path(); }

QString folderOf(const Model& model) {
    return executableFolder() + u"/../../../third_party/models/"_s + model.id;
}

const Model& english() { return *ModelCatalog::modelFor(u"en-US"_s); }

std::unique_ptr<VoiceActivity> voiceActivity() {
    const Model& model = ModelCatalog::voiceActivity();
    return SileroVoiceActivity::load(QString(folderOf(model) + u'/' + model.files[0].name).toStdString());
}

/// A sentence that somebody read out, from Debian's test data, again and again.
std::vector<float> speech(double seconds) {
    QFile file(u"/usr/share/pocketsphinx/test/data/librivox/sense_and_sensibility_01_austen_64kb-0870.wav"_s);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray bytes = file.readAll().mid(44);
    const auto count = static_cast<std::size_t>(bytes.size()) / sizeof(qint16);
    std::vector<float> samples(static_cast<std::size_t>(seconds * samplesASecond));
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] =
            static_cast<float>(reinterpret_cast<const qint16*>(bytes.constData())[i % count]) / 32768;
    return samples;
}

void loadModel(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(Recognizer::load(english(), folderOf(english()), u"en-US"_s));
}
BENCHMARK(loadModel)->Unit(benchmark::kMillisecond);

/// What is still to be done when the key comes up right after the last word: by seconds of speech.
void decodeWindow(benchmark::State& state) {
    const auto recognizer = Recognizer::load(english(), folderOf(english()), u"en-US"_s);
    const auto samples = speech(static_cast<double>(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(recognizer->decode(samples));
}
BENCHMARK(decodeWindow)->Arg(1)->Arg(3)->Arg(5)->Arg(8)->Arg(12)->Unit(benchmark::kMillisecond);

/// What is still to be done when the speaker had paused: the answer is there already.
void finishAfterAPause(benchmark::State& state) {
    const auto recognizer = Recognizer::load(english(), folderOf(english()), u"en-US"_s);
    const auto detector = voiceActivity();
    auto samples = speech(5);
    samples.resize(samples.size() + samplesASecond * 4 / 10);
    for (auto _ : state) {
        state.PauseTiming();
        BackgroundDecoder ahead;
        std::promise<void> hasDecoded;
        ahead.decodeWith(*recognizer, [&] { hasDecoded.set_value(); });
        StreamingTranscriber transcriber(*detector, *recognizer, ahead, {}, [](const std::string&, bool) {});
        transcriber.add(samples);
        transcriber.preview();
        hasDecoded.get_future().wait();
        state.ResumeTiming();
        transcriber.finish();
    }
}
BENCHMARK(finishAfterAPause)->Iterations(5)->Unit(benchmark::kMillisecond);

void voiceActivityOfASecond(benchmark::State& state) {
    const auto detector = voiceActivity();
    const auto samples = speech(1);
    for (auto _ : state)
        for (std::size_t first = 0; first + VoiceActivity::frameSamples <= samples.size();
             first += VoiceActivity::frameSamples)
            benchmark::DoNotOptimize(detector->isSpeech(std::span<const float, VoiceActivity::frameSamples>(
                samples.data() + first, VoiceActivity::frameSamples)));
}
BENCHMARK(voiceActivityOfASecond)->Unit(benchmark::kMillisecond);

/// The audio thread's own share, a buffer of a usual microphone.
void tapOfABuffer(benchmark::State& state) {
    const AudioFormat microphone{48000, 2, AudioFormat::Samples::float32};
    const auto converter = SoxrConverterFactory().make(microphone, {16000, 1, AudioFormat::Samples::float32});
    const AudioBuffer buffer{microphone, std::vector<float>(2048, 0.1F), 0};
    for (auto _ : state) {
        benchmark::DoNotOptimize(audioLevel(buffer));
        benchmark::DoNotOptimize(converter->convert(buffer, 500));
    }
}
BENCHMARK(tapOfABuffer)->Unit(benchmark::kMicrosecond);

} // namespace

} // namespace velorin
