#include "platform/linux/recognition/SherpaRecognition.h"
#include "platform/linux/recognition/Recognizer.h"
#include "tests/support/FakeClock.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <random>
#include <thread>

namespace velorin {

using namespace Qt::Literals::StringLiterals;

namespace {

/// A recording that Debian carries: raw 16-bit samples at 16 kHz.
std::vector<float> recording(const QString& name) {
    QFile file(u"/usr/share/pocketsphinx/test/data/"_s + name);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    std::vector<float> samples(static_cast<std::size_t>(bytes.size()) / 2);
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = static_cast<float>(reinterpret_cast<const qint16*>(bytes.constData())[i]) / 32768;
    return samples;
}

} // namespace

struct SherpaRecognitionTest : testing::Test {
    FakeClock clock;
    QTemporaryDir folder;
    SherpaRecognition recognition{clock, ModelStore::programFolders(), folder.path()};

    struct Dictation {
        std::shared_ptr<SpeechTranscriber> transcriber;
        std::shared_ptr<SpeechAnalyzer> analyzer;
        std::shared_ptr<AnalyzerInput> input;
        QString text;
        std::vector<TranscriptionResult> results;
    };

    static QCoro::Task<void> collect(Dictation* dictation) {
        while (true) {
            const auto next = co_await dictation->transcriber->nextResult();
            if (!next || !*next)
                co_return;
            dictation->results.push_back(**next);
            if ((*next)->isFinal)
                dictation->text += (*next)->text;
        }
    }

    /// Hears the whole sound; gives what the analysis said.
    static tl::expected<void, RecognitionError> hear(SherpaRecognition& by, Dictation& dictation,
                                                     std::vector<float> samples) {
        dictation.transcriber = by.makeTranscriber(u"en-US"_s);
        dictation.analyzer = by.makeAnalyzer(dictation.transcriber);
        dictation.input = by.makeInput();
        auto analysis = dictation.analyzer->start(dictation.input);
        auto results = collect(&dictation);
        dictation.input->yield({{16000, 1, AudioFormat::Samples::float32}, std::move(samples), 0});
        dictation.input->finish();
        (void)QCoro::waitFor(dictation.analyzer->finalizeAndFinishThroughEndOfInput());
        auto outcome = QCoro::waitFor(analysis);
        QCoro::waitFor(results);
        return outcome;
    }

    AssetStatus status(SherpaRecognition& of) {
        return QCoro::waitFor(of.assets().status(of.makeTranscriber(u"en-US"_s)));
    }
};

TEST_F(SherpaRecognitionTest, WritesDownWhatIsSaid) {
    Dictation dictation;
    ASSERT_TRUE(hear(recognition, dictation, recording(u"goforward.raw"_s)));
    EXPECT_EQ(dictation.text.toLower().remove(u'.'), u"go forward ten meters"_s);
    EXPECT_TRUE(dictation.results.back().isFinal);
}

TEST_F(SherpaRecognitionTest, DecodesOnTwoThreadsAtOnce) {
    const Model& model = *ModelCatalog::modelFor(u"en-US"_s);
    const auto place = ModelStore(ModelStore::programFolders(), {}).verified(model);
    ASSERT_TRUE(place);
    const auto recognizer = Recognizer::load(model, *place, u"en-US"_s);
    ASSERT_TRUE(recognizer);
    const auto sound = recording(u"goforward.raw"_s);
    const std::span<const float> beginning = std::span(sound).first(sound.size() / 2);
    const std::string whole = recognizer->decode(sound);
    const std::string half = recognizer->decode(beginning);
    EXPECT_NE(whole, half);
    std::thread other([&] {
        for (int round = 0; round < 5; ++round)
            EXPECT_EQ(recognizer->decode(beginning), half);
    });
    for (int round = 0; round < 5; ++round)
        EXPECT_EQ(recognizer->decode(sound), whole);
    other.join();
}

TEST_F(SherpaRecognitionTest, WritesNothingForSilenceAndNoise) {
    std::mt19937 random(1);
    std::normal_distribution<float> loudness(0, 0.05F);
    std::vector<float> noise(16000 * 5);
    for (float& sample : noise)
        sample = loudness(random);
    for (const auto& sound : {std::vector<float>(16000 * 5, 0.0F), noise}) {
        Dictation dictation;
        ASSERT_TRUE(hear(recognition, dictation, sound));
        EXPECT_TRUE(dictation.results.empty()) << dictation.text.toStdString();
    }
}

TEST_F(SherpaRecognitionTest, KnowsItsLanguagesAndFormat) {
    EXPECT_EQ(QCoro::waitFor(recognition.supportedLocale(u"en-GB"_s)), u"en-GB"_s);
    EXPECT_EQ(QCoro::waitFor(recognition.supportedLocale(u"xx-XX"_s)), std::nullopt);
    EXPECT_EQ(QCoro::waitFor(recognition.bestAvailableAudioFormat(recognition.makeTranscriber(u"en-US"_s))),
              (AudioFormat{16000, 1, AudioFormat::Samples::float32}));
    EXPECT_EQ(status(recognition), AssetStatus::installed);
}

TEST_F(SherpaRecognitionTest, SaysThatAModelIsMissing) {
    SherpaRecognition without(clock, {}, folder.path());
    EXPECT_EQ(status(without), AssetStatus::supported);
    Dictation dictation;
    const auto outcome = hear(without, dictation, std::vector<float>(16000));
    ASSERT_FALSE(outcome);
    EXPECT_TRUE(outcome.error().description.contains(u"model"_s));
}

TEST_F(SherpaRecognitionTest, LoadsNothingThatIsDamaged) {
    // The run time would end the process on some of these: that the test goes on is what it is about.
    const QString source = ModelStore(ModelStore::programFolders(), {})
                               .installed(*ModelCatalog::modelFor(u"en-US"_s))
                               .value_or(QString()) +
                           u"/.."_s;
    for (const QString& victim :
         {u"moonshine-tiny-en/encoder_model.ort"_s, u"moonshine-tiny-en/tokenizer.bin"_s,
          u"silero-vad/silero_vad_16k_op15.onnx"_s}) {
        const QTemporaryDir copy;
        for (const QString& model : {u"moonshine-tiny-en"_s, u"silero-vad"_s}) {
            ASSERT_TRUE(QDir(copy.path()).mkdir(model));
            for (const QString& name : QDir(source + u'/' + model).entryList(QDir::Files))
                ASSERT_TRUE(
                    QFile::copy(source + u'/' + model + u'/' + name, copy.filePath(model + u'/' + name)));
        }
        QFile file(copy.filePath(victim));
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(file.seek(file.size() / 2));
        file.write(QByteArray(1000, '\x55'));
        file.close();
        SherpaRecognition damaged(clock, {copy.path()}, folder.path());
        EXPECT_EQ(status(damaged), AssetStatus::installed);
        Dictation dictation;
        EXPECT_FALSE(hear(damaged, dictation, recording(u"goforward.raw"_s))) << victim.toStdString();
        EXPECT_TRUE(dictation.results.empty());
    }
}

} // namespace velorin
