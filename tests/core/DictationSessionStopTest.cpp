#include "tests/core/ModelFixture.h"

#include <QFile>

using namespace Qt::Literals::StringLiterals;
using testing::ElementsAre;
using testing::IsEmpty;

namespace velorin {
namespace {

class DictationSessionStop : public ModelFixture {
protected:
    void startWithAI() {
        start();
        finishing->configured = true;
    }
};

TEST_F(DictationSessionStop, DeliversWhatWasSaidAndIsIdleAgain) {
    start();
    dictate(u"hello world."_s);
    EXPECT_THAT(pasteboard.texts, ElementsAre(u"Hello world."_s));
    EXPECT_EQ(model->cleanedText(), u"Hello world."_s);
    EXPECT_EQ(model->lastInsertedText(), u"Hello world."_s);
    EXPECT_EQ(model->status(), u"Idle"_s);
    EXPECT_EQ(model->overlayPhase(), OverlayPhase::done);
    EXPECT_THAT(hud.calls, ElementsAre(u"show"_s, u"hide"_s));
    EXPECT_EQ(model->shortcutSession().activeMode, std::nullopt);
}

TEST_F(DictationSessionStop, WaitsForTheLastFinalResult) {
    start();
    pressHold();
    hear(u"hello"_s, false);
    recognition.finalizationGate.close();
    recognition.finalResults = {{u"hello world"_s, true}};
    releaseHold();
    EXPECT_EQ(model->status(), u"Finishing…"_s);
    EXPECT_FALSE(model->isRecording()) << "the microphone is closed";
    EXPECT_EQ(model->overlayPhase(), OverlayPhase::listening);
    recognition.finalizationGate.open();
    settle();
    EXPECT_THAT(pasteboard.texts, ElementsAre(u"Hello world"_s));
    EXPECT_EQ(model->volatileText(), QString());
}

TEST_F(DictationSessionStop, IsIgnoredWhileNothingRecords) {
    start();
    log.clear();
    edge(ShortcutEvent::toggleActivated);
    model->stop();
    EXPECT_EQ(model->sessionGeneration(), 1);
    endModel();
    start();
    log.clear();
    model->stop();
    EXPECT_THAT(log.lines(), ElementsAre(u"shortcut: stop ignored: engine was not recording"_s));
}

TEST_F(DictationSessionStop, LeavesWhenRecordingStarted) {
    start();
    dictate(u"one"_s);
    EXPECT_TRUE(model->recordingStartedAt().has_value());
}

TEST_F(DictationSessionStop, OfAnEmptySessionDeliversNothingAndKeepsNothing) {
    start();
    model->setCaptureDictations(true);
    pressHold();
    releaseHold();
    EXPECT_THAT(pasteboard.calls, IsEmpty());
    EXPECT_THAT(model->history(), IsEmpty());
    EXPECT_FALSE(QFile::exists(home.filePath(u"dictation-capture.jsonl"_s)));
    EXPECT_EQ(model->overlayPhase(), OverlayPhase::done);
    EXPECT_EQ(model->status(), u"Idle"_s);
    EXPECT_FALSE(model->hasErrorMessage());
    EXPECT_THAT(hud.calls, ElementsAre(u"show"_s, u"hide"_s));
}

TEST_F(DictationSessionStop, DeliversWhatWasRecognisedBeforeTheEngineFailed) {
    start();
    pressHold();
    hear(u"hello"_s, true);
    recognition.fail(u"The recogniser broke."_s);
    settle();
    EXPECT_EQ(model->errorMessage(), u"The recogniser broke."_s);
    EXPECT_EQ(model->status(), u"Error"_s);
    EXPECT_EQ(model->overlayPhase(), OverlayPhase::error);
    EXPECT_TRUE(model->isRecording());
    releaseHold();
    EXPECT_THAT(pasteboard.texts, ElementsAre(u"Hello"_s));
    EXPECT_EQ(model->overlayPhase(), OverlayPhase::error) << "the error stays visible to the end";
    EXPECT_EQ(model->status(), u"Idle"_s);
}

TEST_F(DictationSessionStop, KeepsTheTextAlsoWhenItCannotBeInserted) {
    start();
    pasteboard.saved.reset();
    dictate(u"hello"_s);
    EXPECT_EQ(model->errorMessage(), u"Could not insert text. Check Accessibility permission."_s);
    EXPECT_EQ(model->status(), u"Idle"_s);
    ASSERT_EQ(model->history().size(), 1);
    EXPECT_EQ(model->history().first().text, u"Hello"_s);
    EXPECT_EQ(model->history().first().raw, u"hello"_s);
    EXPECT_EQ(model->history().first().appName, u"Mousepad"_s);
}

TEST_F(DictationSessionStop, InsertsNothingWhenThatIsSwitchedOff) {
    start();
    model->setAutoInsert(false);
    dictate(u"hello"_s);
    EXPECT_THAT(pasteboard.texts, IsEmpty());
    EXPECT_EQ(model->cleanedText(), u"Hello"_s);
}

TEST_F(DictationSessionStop, TheTriggerWordWinsOverASelection) {
    startWithAI();
    model->setAIEnabled(true);
    model->setAIGenerateEnabled(true);
    selection->answer = SelectionSnapshot{.text = u"selected"_s, .appPID = {}};
    dictate(u"Generate: a short poem."_s);
    EXPECT_THAT(finishing->flows, ElementsAre(u"generate a short poem | selected"_s));
    EXPECT_THAT(finishing->generations, ElementsAre(1));
}

TEST_F(DictationSessionStop, GenerationTakesTheContextReadAtTheStartOrAsksForItNow) {
    startWithAI();
    model->setAIGenerateEnabled(true);
    selection->context = u"before"_s;
    pressHold();
    selection->context = u"after"_s;
    hear(u"generate an answer"_s, true);
    releaseHold();
    selection->context.reset();
    pressHold();
    selection->context = u"now"_s;
    hear(u"generate an answer"_s, true);
    releaseHold();
    EXPECT_THAT(finishing->flows,
                ElementsAre(u"generate an answer | before"_s, u"generate an answer | now"_s));
}

TEST_F(DictationSessionStop, EditsTheSelectionWithoutATriggerWord) {
    startWithAI();
    model->setAIEnabled(true);
    model->setAIGenerateEnabled(true);
    selection->answer = SelectionSnapshot{.text = u"selected"_s, .appPID = {}};
    dictate(u"make it shorter"_s);
    EXPECT_THAT(finishing->flows, ElementsAre(u"edit selected"_s));
}

TEST_F(DictationSessionStop, WithGenerationAloneASelectionAndNoTriggerWordIsAPlainDictation) {
    startWithAI();
    model->setAIGenerateEnabled(true);
    selection->answer = SelectionSnapshot{.text = u"selected"_s, .appPID = {}};
    dictate(u"make it shorter"_s);
    EXPECT_THAT(finishing->flows, IsEmpty());
    EXPECT_THAT(pasteboard.texts, ElementsAre(u"Make it shorter"_s));
}

TEST_F(DictationSessionStop, PolishesProseButNeverCode) {
    startWithAI();
    model->setAIPolishEnabled(true);
    dictate(u" hello there "_s);
    EXPECT_THAT(finishing->flows, ElementsAre(u"polish Hello there |  hello there "_s));
    model->setContextMode(ContextMode::code);
    dictate(u"hello there"_s);
    EXPECT_EQ(finishing->flows.size(), 1);
    EXPECT_THAT(pasteboard.texts, ElementsAre(u"hello there"_s));
}

TEST_F(DictationSessionStop, HandsTheRecordingToTheProviderFirst) {
    startWithAI();
    finishing->transcribes = true;
    pressHold();
    audioInput.block(someSound());
    hear(u"hello"_s, true);
    releaseHold();
    ASSERT_EQ(finishing->flows.size(), 1);
    EXPECT_EQ(finishing->flows.first(), u"transcribe "_s + audioFiles.paths.front());
    EXPECT_THAT(pasteboard.texts, ElementsAre(u"Hello"_s)) << "and then goes on";
}

TEST_F(DictationSessionStop, DeletesARecordingThatNobodyWantsAnyMore) {
    startWithAI();
    finishing->transcribes = true;
    pressHold();
    audioInput.block(someSound());
    finishing->transcribes = false;
    releaseHold();
    ASSERT_EQ(audioFiles.paths.size(), 1U);
    EXPECT_FALSE(QFile::exists(audioFiles.paths.front()));
    EXPECT_THAT(finishing->flows, IsEmpty());
}

TEST_F(DictationSessionStop, ADictationThatEndsAfterANewOneBeganLeavesThatItsOverlay) {
    start();
    recognition.finalizationGate.close();
    dictate(u"old text"_s);
    pressHold();
    hear(u"new"_s, false);
    hud.calls.clear();
    recognition.finalizationGate.open();
    settle();
    EXPECT_THAT(pasteboard.texts, ElementsAre(u"Old text"_s));
    EXPECT_THAT(hud.calls, IsEmpty());
    EXPECT_EQ(model->cleanedText(), u"New"_s);
    EXPECT_EQ(model->overlayPhase(), OverlayPhase::listening);
}

TEST_F(DictationSessionStop, MarksTheStagesOfTheDictation) {
    start();
    dictate(u"hello"_s);
    const auto dictation = marks.dictations().back();
    for (const auto stage : {Stage::keyDown, Stage::keyUp, Stage::cleaned, Stage::delivered})
        EXPECT_TRUE(dictation.at(stage).has_value());
}

TEST_F(DictationSessionStop, NeverLogsWhatWasSaid) {
    start();
    log.clear();
    dictate(u"my secret word is swordfish"_s);
    EXPECT_TRUE(log.lines().filter(u"swordfish"_s, Qt::CaseInsensitive).isEmpty());
    EXPECT_FALSE(log.lines().isEmpty());
}

} // namespace
} // namespace velorin
