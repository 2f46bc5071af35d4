#include "tests/core/ModelFixture.h"

using namespace Qt::Literals::StringLiterals;
using testing::ElementsAre;
using testing::IsEmpty;

namespace velorin {
namespace {

class DictationSessionStart : public ModelFixture {};

TEST_F(DictationSessionStart, ListensOnceTheEngineHasStarted) {
    start();
    log.clear();
    pressHold();
    EXPECT_TRUE(model->isRecording());
    EXPECT_EQ(model->status(), u"Listening…"_s);
    EXPECT_EQ(model->overlayPhase(), OverlayPhase::listening);
    EXPECT_EQ(model->recordingStartedAt(), clock.time);
    EXPECT_EQ(model->sessionGeneration(), 1);
    EXPECT_EQ(model->targetApp(), editor());
    EXPECT_THAT(hud.calls, ElementsAre(u"show"_s));
    EXPECT_THAT(log.lines(), ElementsAre(u"shortcut: event holdActivated -> start(hold)"_s,
                                         u"shortcut: dictation start (hold)"_s,
                                         u"context: context: mode=auto profile=document detected=true "
                                         "app=org.xfce.mousepad"_s,
                                         u"shortcut: engine listening"_s));
}

TEST_F(DictationSessionStart, IsNotRecordingWhileItIsStillLaunching) {
    start();
    recognition.statusGate.close();
    pressHold();
    EXPECT_FALSE(model->isRecording());
    EXPECT_THAT(hud.calls, IsEmpty());
    recognition.statusGate.open();
    settle();
    EXPECT_TRUE(model->isRecording());
}

TEST_F(DictationSessionStart, ClearsTheLastErrorAndTheLastTranscript) {
    start();
    dictate(u"first words"_s);
    model->setErrorMessage(u"Something failed."_s);
    pressHold();
    EXPECT_FALSE(model->hasErrorMessage());
    EXPECT_EQ(model->finalizedText(), QString());
    EXPECT_EQ(model->cleanedText(), QString());
    EXPECT_THAT(model->levels(), IsEmpty());
}

TEST_F(DictationSessionStart, TellsOfARefusedMicrophoneAndChangesNothingElse) {
    start();
    model->setStatus(u"Error"_s);
    trust.microphoneAnswer = false;
    pressHold();
    EXPECT_EQ(model->errorMessage(),
              u"Microphone access denied. Enable it in System Settings > Privacy & Security > "
              "Microphone, then relaunch."_s);
    EXPECT_FALSE(model->microphoneGranted());
    EXPECT_EQ(model->status(), u"Error"_s);
    EXPECT_EQ(model->sessionGeneration(), 0);
    EXPECT_THAT(hud.calls, IsEmpty());
}

TEST_F(DictationSessionStart, TellsOfAnEngineThatCannotStart) {
    start();
    audioInput.format = {0, 0, AudioFormat::Samples::float32};
    log.clear();
    pressHold();
    EXPECT_EQ(model->errorMessage(), u"No audio input device is available."_s);
    EXPECT_EQ(model->status(), u"Idle"_s);
    EXPECT_EQ(model->overlayPhase(), OverlayPhase::error);
    EXPECT_THAT(hud.calls, IsEmpty());
    EXPECT_TRUE(
        log.lines().contains(u"shortcut: engine start failed: No audio input device is available."_s));
}

TEST_F(DictationSessionStart, ForgetsTheSelectionButKeepsTheContextWhenTheEngineCannotStart) {
    start();
    finishing->configured = true;
    model->setAIEnabled(true);
    selection->answer = SelectionSnapshot{.text = u"selected"_s, .appPID = {}};
    audioInput.format = {0, 0, AudioFormat::Samples::float32};
    pressHold();
    EXPECT_EQ(model->pendingSelection(), std::nullopt);
    EXPECT_FALSE(model->isEditSession());

    selection->answer = std::nullopt;
    selection->context = u"around"_s;
    model->setAIGenerateEnabled(true);
    releaseHold();
    pressHold();
    EXPECT_EQ(model->pendingContext(), u"around"_s);
}

TEST_F(DictationSessionStart, StopsAtOnceWhenAQuickTapEndedDuringTheLaunch) {
    start();
    recognition.statusGate.close();
    pressHold();
    log.clear();
    releaseHold();
    EXPECT_TRUE(log.lines().contains(u"shortcut: stop ignored: engine was not recording"_s));
    recognition.statusGate.open();
    settle();
    EXPECT_TRUE(log.lines().contains(u"shortcut: session ended during launch -> stopping"_s));
    EXPECT_FALSE(model->isRecording());
    EXPECT_EQ(model->status(), u"Idle"_s);
    EXPECT_THAT(hud.calls, ElementsAre(u"show"_s, u"hide"_s));
    EXPECT_THAT(pasteboard.texts, IsEmpty());
}

TEST_F(DictationSessionStart, FromTheMenuGoesOnWithoutAnyShortcutDown) {
    start();
    chooseMenuItem();
    EXPECT_TRUE(model->isRecording());
    EXPECT_EQ(model->shortcutSession().activeMode, std::nullopt);
}

TEST_F(DictationSessionStart, ReadsNoSelectionWithoutAI) {
    start();
    model->setAIEnabled(true);
    pressHold();
    EXPECT_EQ(selection->snapshots, 0);
    EXPECT_EQ(selection->contextReads, 0);
}

TEST_F(DictationSessionStart, ReadsNothingOfAWindowOfItsOwn) {
    start();
    finishing->configured = true;
    model->setAIEnabled(true);
    model->setAIGenerateEnabled(true);
    workspace.frontmost->processIdentifier = workspace.currentProcess;
    pressHold();
    EXPECT_EQ(selection->snapshots, 0);
    EXPECT_EQ(selection->contextReads, 0);
}

TEST_F(DictationSessionStart, BecomesAnEditSessionWhenTextIsSelected) {
    start();
    finishing->configured = true;
    model->setAIEnabled(true);
    selection->answer = SelectionSnapshot{.text = u"été"_s, .appPID = {}};
    log.clear();
    pressHold();
    EXPECT_TRUE(model->isEditSession());
    EXPECT_TRUE(
        log.lines().contains(u"ai: selection captured: app=org.xfce.mousepad selection=3 chars edit=true"_s));
}

TEST_F(DictationSessionStart, WithGenerationAloneReadsTheSelectionButDoesNotEdit) {
    start();
    finishing->configured = true;
    model->setAIGenerateEnabled(true);
    selection->answer = SelectionSnapshot{.text = u"selected"_s, .appPID = {}};
    pressHold();
    EXPECT_EQ(model->pendingSelection()->text, u"selected"_s);
    EXPECT_FALSE(model->isEditSession());
    EXPECT_EQ(model->pendingContext(), std::nullopt);
}

TEST_F(DictationSessionStart, TakesTheSurroundingsAsContextWhenNothingIsSelected) {
    start();
    finishing->configured = true;
    model->setAIGenerateEnabled(true);
    selection->context = u"Dear Ada,"_s;
    pressHold();
    EXPECT_EQ(model->pendingContext(), u"Dear Ada,"_s);
}

TEST_F(DictationSessionStart, GivesTheEngineTheVocabularyAndAsksForARecordingOnlyForAProvider) {
    start();
    model->setCustomVocabulary({u"Velorin"_s});
    pressHold();
    EXPECT_THAT(recognition.contexts, ElementsAre(QStringList{u"Velorin"_s}));
    EXPECT_THAT(audioFiles.paths, IsEmpty());
    releaseHold();
    finishing->transcribes = true;
    pressHold();
    EXPECT_EQ(audioFiles.paths.size(), 1U);
    EXPECT_TRUE(model->remoteTranscriptionThisSession());
}

TEST_F(DictationSessionStart, UsesTheChosenLanguage) {
    start();
    model->setLanguage(Language::german);
    recognition.supported = u"de-DE"_s;
    pressHold();
    EXPECT_EQ(recognition.transcribers.back()->locale, u"de-DE"_s);
}

TEST_F(DictationSessionStart, TwoOverlappingLaunchesGiveOneSession) {
    start();
    recognition.statusGate.close();
    pressHold();
    releaseHold();
    pressHold();
    EXPECT_EQ(model->sessionGeneration(), 2);
    recognition.statusGate.open();
    settle();
    EXPECT_TRUE(model->isRecording());
    hear(u"once"_s, true);
    EXPECT_EQ(model->finalizedText(), u"once"_s);
}

TEST_F(DictationSessionStart, AFixedContextModeIsTakenWithoutLookingAtTheApplication) {
    start();
    model->setContextMode(ContextMode::terminal);
    log.clear();
    pressHold();
    EXPECT_EQ(model->activeProfile(), ContextProfile::terminal);
    EXPECT_FALSE(model->activeProfileWasDetected());
    EXPECT_TRUE(model->hasContext());
    EXPECT_TRUE(log.lines().contains(
        u"context: context: mode=terminal profile=terminal detected=false app=org.xfce.mousepad"_s));
}

TEST_F(DictationSessionStart, WithoutAnApplicationInFrontIsGeneric) {
    start();
    workspace.frontmost.reset();
    log.clear();
    pressHold();
    EXPECT_EQ(model->targetApp(), std::nullopt);
    EXPECT_TRUE(log.lines().contains(u"context: context: mode=auto profile=generic detected=true app=nil"_s));
}

} // namespace
} // namespace velorin
