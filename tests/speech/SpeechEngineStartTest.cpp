#include "tests/speech/EngineFixture.h"

namespace velorin {

using namespace Qt::Literals::StringLiterals;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

struct SpeechEngineStart : EngineFixture {};

TEST_F(SpeechEngineStart, AsksEverythingInItsOrder) {
    engine->contextualStrings = {u"Orrin"_s};
    ASSERT_TRUE(start());
    EXPECT_THAT(recognition.asked,
                ElementsAre(u"makeTranscriber en-US"_s, u"supportedLocale en-US"_s, u"status"_s,
                            u"makeTranscriber en-US"_s, u"bestAvailableAudioFormat"_s, u"makeAnalyzer"_s,
                            u"setContext"_s, u"makeInput"_s, u"analyze"_s));
    EXPECT_TRUE(engine->isRunning());
    ASSERT_THAT(input.starts, SizeIs(1));
    EXPECT_EQ(input.starts[0].format, input.format);
    EXPECT_EQ(input.starts[0].frames, 1024U);
    EXPECT_THAT(converters.made,
                ElementsAre(FakeAudioConverters::Made{input.format, *recognition.bestFormat}));
    EXPECT_THAT(statuses, IsEmpty());
    stop();
}

TEST_F(SpeechEngineStart, ReturnsAtOnceDuringARun) {
    ASSERT_TRUE(start());
    ASSERT_TRUE(start());
    EXPECT_EQ(input.formatQuestions, 1);
    EXPECT_THAT(input.starts, SizeIs(1));
    stop();
}

TEST_F(SpeechEngineStart, NeedsAMicrophoneBeforeAnythingElse) {
    input.format.channels = 0;
    EXPECT_EQ(start().error(), (SpeechEngineError{Kind::noInputDevice, {}}));
    input.format = {0, 2, AudioFormat::Samples::float32};
    EXPECT_EQ(start().error().description(), u"No audio input device is available."_s);
    EXPECT_THAT(recognition.asked, IsEmpty());
    EXPECT_FALSE(engine->isRunning());
}

TEST_F(SpeechEngineStart, NamesALocaleThatTheRecogniserLacks) {
    recognition.supported.reset();
    const auto error = start().error();
    EXPECT_EQ(error, (SpeechEngineError{Kind::unsupportedLocale, u"en-US"_s}));
    EXPECT_EQ(error.description(), u"Speech recognition is not available for locale en-US on this Mac."_s);
    EXPECT_EQ(asked(u"status"_s), 0);
}

TEST_F(SpeechEngineStart, TellsOfADownloadTwice) {
    recognition.assetStatus = AssetStatus::supported;
    recognition.downloadGate.close();
    std::pair<qint64, qint64> progress;
    engine->onModelProgress = [&progress](qint64 received, qint64 total) { progress = {received, total}; };
    auto starting = engine->start(u"en-US"_s);
    EXPECT_THAT(statuses, ElementsAre(u"Downloading on-device model for en-US…"_s));
    recognition.progress(10, 200);
    EXPECT_EQ(progress, std::pair(qint64{10}, qint64{200}));
    recognition.downloadGate.open();
    ASSERT_TRUE(QCoro::waitFor(starting));
    EXPECT_THAT(statuses, ElementsAre(u"Downloading on-device model for en-US…"_s, u"Model ready"_s));
    stop();
}

TEST_F(SpeechEngineStart, TellsOfAModelThatNeedsNoDownloadAfterAll) {
    recognition.assetStatus = AssetStatus::downloading;
    recognition.hasRequest = false;
    ASSERT_TRUE(start());
    EXPECT_THAT(statuses, SizeIs(2));
    EXPECT_EQ(asked(u"downloadAndInstall"_s), 0);
    stop();
}

TEST_F(SpeechEngineStart, PassesOnWhyAModelCannotBeHad) {
    recognition.assetStatus = AssetStatus::supported;
    recognition.requestError = u"No such model."_s;
    EXPECT_EQ(start().error(), (SpeechEngineError{Kind::platform, u"No such model."_s}));
    recognition.requestError.reset();
    recognition.downloadError = u"The disk is full."_s;
    EXPECT_EQ(start().error().description(), u"The disk is full."_s);
    EXPECT_THAT(statuses, SizeIs(2));
    EXPECT_THAT(input.starts, IsEmpty());
}

TEST_F(SpeechEngineStart, NeedsAFormat) {
    recognition.bestFormat.reset();
    EXPECT_EQ(start().error().description(),
              u"Could not negotiate a compatible audio format with the speech analyzer."_s);
    EXPECT_EQ(asked(u"makeAnalyzer"_s), 0);
}

TEST_F(SpeechEngineStart, GoesOnWithoutAConverter) {
    converters.refused = recognition.bestFormat;
    ASSERT_TRUE(start());
    input.block(buffer());
    EXPECT_THAT(levels, SizeIs(1));
    EXPECT_THAT(recognition.inputs.back()->buffers, IsEmpty());
    stop();
}

TEST_F(SpeechEngineStart, GivesTheContextTrimmedAndWithoutBlanks) {
    engine->contextualStrings = {u"  Kubernetes\n"_s, u" \t\n"_s, u""_s, u"Ada Lovelace"_s};
    ASSERT_TRUE(start());
    EXPECT_THAT(recognition.contexts, ElementsAre(QStringList{u"Kubernetes"_s, u"Ada Lovelace"_s}));
    stop();
}

TEST_F(SpeechEngineStart, SetsNoContextWithoutWords) {
    ASSERT_TRUE(start());
    stop();
    engine->contextualStrings = {u" "_s, u"\n"_s};
    ASSERT_TRUE(start());
    EXPECT_THAT(recognition.contexts, IsEmpty());
    stop();
}

TEST_F(SpeechEngineStart, IgnoresARefusedContext) {
    engine->contextualStrings = {u"Orrin"_s};
    recognition.contextError = u"no"_s;
    EXPECT_TRUE(start());
    EXPECT_THAT(errors, IsEmpty());
    stop();
}

TEST_F(SpeechEngineStart, SaysWhyTheMicrophoneDoesNotStart) {
    engine->recordsAudio = true;
    input.startError = u"the device is busy"_s;
    const auto error = start().error();
    EXPECT_EQ(error, (SpeechEngineError{Kind::engineFailed, u"the device is busy"_s}));
    EXPECT_EQ(error.description(), u"Audio engine failed: the device is busy"_s);
    EXPECT_FALSE(engine->isRunning());
    EXPECT_EQ(files.open, 0);
    EXPECT_FALSE(QFile::exists(files.paths.at(0)));
    EXPECT_EQ(asked(u"analyze"_s), 0);
}

TEST_F(SpeechEngineStart, WorksAgainAfterAFailure) {
    recognition.bestFormat.reset();
    ASSERT_FALSE(start());
    recognition.bestFormat = AudioFormat{16000, 1, AudioFormat::Samples::float32};
    input.startError = u"busy"_s;
    ASSERT_FALSE(start());
    input.startError.reset();
    EXPECT_TRUE(start());
    stop();
}

TEST_F(SpeechEngineStart, IsNotRunningBeforeItsVeryEnd) {
    recognition.statusGate.close();
    auto starting = engine->start(u"en-US"_s);
    EXPECT_FALSE(engine->isRunning());
    EXPECT_EQ(stop(), std::nullopt);
    EXPECT_EQ(input.stops, 0);
    input.startGate.close();
    recognition.statusGate.open();
    EXPECT_FALSE(engine->isRunning());
    input.startGate.open();
    ASSERT_TRUE(QCoro::waitFor(starting));
    EXPECT_TRUE(engine->isRunning());
    stop();
}

TEST_F(SpeechEngineStart, JoinsALaunchThatIsUnderWay) {
    recognition.statusGate.close();
    auto first = engine->start(u"en-US"_s);
    auto second = engine->start(u"en-US"_s);
    auto third = engine->start(u"en-US"_s);
    recognition.statusGate.open();
    EXPECT_TRUE(QCoro::waitFor(first));
    EXPECT_TRUE(QCoro::waitFor(second));
    EXPECT_TRUE(QCoro::waitFor(third));
    EXPECT_THAT(input.starts, SizeIs(1));
    stop();
}

TEST_F(SpeechEngineStart, TriesAfreshAfterALaunchThatFailed) {
    recognition.statusGate.close();
    recognition.bestFormat.reset();
    auto first = engine->start(u"en-US"_s);
    auto second = engine->start(u"en-US"_s);
    recognition.statusGate.open();
    EXPECT_FALSE(QCoro::waitFor(first));
    EXPECT_FALSE(QCoro::waitFor(second));
    EXPECT_EQ(input.formatQuestions, 2);
}

TEST_F(SpeechEngineStart, EndsQuietlyWhenTheEngineIsGone) {
    for (Gate* gate : {&input.formatGate, &recognition.statusGate, &input.startGate}) {
        engine.emplace(input, recognition, converters, files, folders, marks);
        engine->recordsAudio = true;
        gate->close();
        auto first = engine->start(u"en-US"_s);
        auto second = engine->start(u"en-US"_s);
        engine.reset();
        gate->open();
        EXPECT_FALSE(QCoro::waitFor(first));
        EXPECT_FALSE(QCoro::waitFor(second));
    }
    EXPECT_EQ(asked(u"analyze"_s), 0);
    EXPECT_FALSE(QFile::exists(files.paths.back()));
}

TEST_F(SpeechEngineStart, TakesTheBlockAsItStoodAtThatMoment) {
    ASSERT_TRUE(start());
    engine->onAudioLevel = nullptr;
    input.block(buffer(1024, 0));
    input.block(buffer());
    EXPECT_THAT(levels, ElementsAre(0.0F, 1.0F));
    EXPECT_THAT(recognition.inputs.back()->buffers, SizeIs(2));
    ASSERT_THAT(converters.conversions, SizeIs(2));
    EXPECT_EQ(converters.conversions[0].capacity, 341U + 64U);
    EXPECT_TRUE(marks.dictations().back().at(Stage::firstSample));
    stop();
}

TEST_F(SpeechEngineStart, YieldsNothingThatTheConverterDoesNotGive) {
    ASSERT_TRUE(start());
    converters.framesGiven = 0;
    input.block(buffer());
    converters.framesGiven.reset();
    input.block(buffer());
    EXPECT_THAT(recognition.inputs.back()->buffers, IsEmpty());
    EXPECT_THAT(levels, SizeIs(2));
    stop();
}

TEST(SpeechEngineError, KeepsTheTextForARefusedMicrophone) {
    EXPECT_EQ(
        (SpeechEngineError{SpeechEngineError::Kind::micDenied, {}}.description()),
        u"Microphone access was denied. Enable it in System Settings > Privacy & Security > Microphone."_s);
}

} // namespace velorin
