#include "tests/speech/EngineFixture.h"

namespace velorin {

using namespace Qt::Literals::StringLiterals;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

struct SpeechEngineStop : EngineFixture {};

TEST_F(SpeechEngineStop, DoesNothingWithoutAStart) {
    EXPECT_EQ(stop(), std::nullopt);
    EXPECT_EQ(input.stops, 0);
    EXPECT_THAT(recognition.asked, IsEmpty());
}

TEST_F(SpeechEngineStop, HandsOverResultsAsTheyCome) {
    ASSERT_TRUE(start());
    recognition.deliver(u"hello"_s, false);
    recognition.deliver(u"hello there"_s, true);
    recognition.deliver(u" and"_s, false);
    EXPECT_THAT(results, ElementsAre(TranscriptionResult{u"hello"_s, false},
                                     TranscriptionResult{u"hello there"_s, true},
                                     TranscriptionResult{u" and"_s, false}));
    EXPECT_TRUE(marks.dictations().back().at(Stage::firstPreview));
    stop();
}

TEST_F(SpeechEngineStop, ReturnsAfterTheLastResult) {
    ASSERT_TRUE(start());
    recognition.finalResults = {{u"the last"_s, false}, {u"the last words"_s, true}};
    recognition.finalizationGate.close();
    auto stopping = engine->stop();
    EXPECT_FALSE(engine->isRunning());
    EXPECT_FALSE(stopping.isReady());
    EXPECT_THAT(results, IsEmpty());
    recognition.finalizationGate.open();
    ASSERT_TRUE(stopping.isReady());
    EXPECT_THAT(results, SizeIs(2));
    EXPECT_TRUE(marks.dictations().back().at(Stage::lastFinal));
}

TEST_F(SpeechEngineStop, LetsTheMicrophoneFinishBeforeTheInputEnds) {
    ASSERT_TRUE(start());
    input.stopGate.close();
    auto stopping = engine->stop();
    EXPECT_FALSE(recognition.inputs.back()->finished);
    input.block(buffer());
    EXPECT_EQ(asked(u"finalize"_s), 0);
    input.stopGate.open();
    ASSERT_TRUE(stopping.isReady());
    EXPECT_TRUE(recognition.inputs.back()->finished);
    EXPECT_THAT(recognition.inputs.back()->buffers, SizeIs(1));
}

TEST_F(SpeechEngineStop, IgnoresAFailedFinalization) {
    ASSERT_TRUE(start());
    recognition.finalizationError = u"no"_s;
    stop();
    EXPECT_THAT(errors, IsEmpty());
    EXPECT_FALSE(engine->isRunning());
}

TEST_F(SpeechEngineStop, StaysRunningAfterAnErrorOfTheResults) {
    ASSERT_TRUE(start());
    recognition.fail(u"The recogniser stopped."_s);
    EXPECT_THAT(errors, ElementsAre(SpeechEngineError{Kind::platform, u"The recogniser stopped."_s}));
    EXPECT_TRUE(engine->isRunning());
    stop();
    EXPECT_EQ(asked(u"finalize"_s), 1);
    EXPECT_THAT(errors, SizeIs(1));
}

TEST_F(SpeechEngineStop, StaysRunningAfterAnErrorOfTheAnalysis) {
    recognition.analysisError = u"The model is damaged."_s;
    ASSERT_TRUE(start());
    EXPECT_THAT(errors, ElementsAre(SpeechEngineError{Kind::platform, u"The model is damaged."_s}));
    EXPECT_TRUE(engine->isRunning());
    stop();
}

TEST_F(SpeechEngineStop, DeliversWhatWasHeardBeforeTheMicrophoneWasLost) {
    ASSERT_TRUE(start());
    input.block(buffer());
    input.failure(u"The microphone was unplugged."_s);
    EXPECT_EQ(errors.at(0).description(), u"Audio engine failed: The microphone was unplugged."_s);
    EXPECT_TRUE(engine->isRunning());
    recognition.finalResults = {{u"what was said"_s, true}};
    stop();
    EXPECT_THAT(results, ElementsAre(TranscriptionResult{u"what was said"_s, true}));
}

TEST_F(SpeechEngineStop, HoldsBackAStartUntilTheMicrophoneIsFreeAndNoLonger) {
    ASSERT_TRUE(start());
    input.stopGate.close();
    recognition.finalizationGate.close();
    auto stopping = engine->stop();
    auto starting = engine->start(u"en-US"_s);
    EXPECT_EQ(stop(), std::nullopt);
    EXPECT_FALSE(starting.isReady());
    input.stopGate.open();
    ASSERT_TRUE(starting.isReady());
    ASSERT_TRUE(QCoro::waitFor(starting));
    EXPECT_THAT(input.starts, SizeIs(2));
    EXPECT_TRUE(engine->isRunning());
    EXPECT_FALSE(stopping.isReady()) << "its last words are still being recognised";
    recognition.finalizationGate.open();
    ASSERT_TRUE(stopping.isReady());
    EXPECT_TRUE(engine->isRunning());
    stop();
}

TEST_F(SpeechEngineStop, TellsEachDictationItsOwnResults) {
    std::vector<QString> first;
    std::vector<QString> second;
    engine->onResult = [&first](const QString& text, bool) { first.push_back(text); };
    ASSERT_TRUE(start());
    recognition.finalizationGate.close();
    recognition.finalResults = {{u"the last words"_s, true}};
    auto stopping = engine->stop();
    engine->onResult = [&second](const QString& text, bool) { second.push_back(text); };
    ASSERT_TRUE(start());
    recognition.deliver(u"the next"_s, false);
    recognition.finalizationGate.open();
    ASSERT_TRUE(stopping.isReady());
    EXPECT_THAT(first, ElementsAre(u"the last words"_s));
    EXPECT_THAT(second, ElementsAre(u"the next"_s));
    stop();
}

TEST_F(SpeechEngineStop, MarksTheStagesOfTheDictationThatTheyBelongTo) {
    const auto first = marks.newest();
    engine->marksOf = first;
    ASSERT_TRUE(start());
    recognition.finalizationGate.close();
    auto stopping = engine->stop();
    marks.begin();
    recognition.finalizationGate.open();
    ASSERT_TRUE(stopping.isReady());
    EXPECT_TRUE(marks.dictations().front().at(Stage::lastFinal));
    EXPECT_FALSE(marks.dictations().back().at(Stage::lastFinal));
}

TEST_F(SpeechEngineStop, AllowsManyDictations) {
    for (int dictation = 0; dictation < 3; ++dictation) {
        ASSERT_TRUE(start());
        recognition.finalResults = {{QString::number(dictation), true}};
        stop();
    }
    EXPECT_THAT(results, SizeIs(3));
    EXPECT_EQ(input.stops, 3);
}

TEST_F(SpeechEngineStop, ReportsNothingOnceTheEngineIsGone) {
    ASSERT_TRUE(start());
    recognition.finalResults = {{u"late"_s, true}};
    recognition.finalizationGate.close();
    auto stopping = engine->stop();
    engine.reset();
    recognition.finalizationGate.open();
    EXPECT_EQ(QCoro::waitFor(stopping), std::nullopt);
    EXPECT_THAT(results, IsEmpty());
}

TEST_F(SpeechEngineStop, AllowsACallbackThatReplacesItself) {
    engine->onResult = [this](const QString&, bool) { engine->onResult = nullptr; };
    ASSERT_TRUE(start());
    recognition.deliver(u"one"_s, true);
    recognition.deliver(u"two"_s, true);
    EXPECT_FALSE(engine->onResult);
    stop();
}

} // namespace velorin
