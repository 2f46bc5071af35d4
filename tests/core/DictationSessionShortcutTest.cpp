#include "tests/core/ModelFixture.h"

using namespace Qt::Literals::StringLiterals;
using testing::ElementsAre;
using testing::IsEmpty;

namespace velorin {
namespace {

class DictationSessionShortcut : public ModelFixture {};

TEST_F(DictationSessionShortcut, TheMenuStopsAHeldSessionAndTheLaterReleaseDoesNothing) {
    start();
    pressHold();
    chooseMenuItem();
    EXPECT_FALSE(model->isRecording());
    EXPECT_EQ(model->shortcutSession().activeMode, std::nullopt);
    log.clear();
    releaseHold();
    EXPECT_THAT(log.lines(), ElementsAre(u"shortcut: event holdDeactivated -> "_s));
}

TEST_F(DictationSessionShortcut, AHoldDuringASessionOfTheMenuStopsItAtItsRelease) {
    start();
    chooseMenuItem();
    pressHold();
    EXPECT_EQ(model->sessionGeneration(), 1) << "no second launch";
    EXPECT_EQ(model->shortcutSession().activeMode, RecordingTriggerMode::hold);
    releaseHold();
    EXPECT_FALSE(model->isRecording());
}

TEST_F(DictationSessionShortcut, ATapOfToggleLatchesAHold) {
    start();
    pressHold();
    log.clear();
    tapToggle();
    EXPECT_TRUE(log.lines().contains(u"shortcut: latched into toggle mode"_s));
    releaseHold();
    EXPECT_TRUE(model->isRecording());
    tapToggle();
    EXPECT_FALSE(model->isRecording());
}

TEST_F(DictationSessionShortcut, ToggleStartsAndStops) {
    start();
    tapToggle();
    EXPECT_TRUE(model->isRecording());
    hear(u"hello"_s, true);
    tapToggle();
    EXPECT_THAT(pasteboard.texts, ElementsAre(u"Hello"_s));
}

TEST_F(DictationSessionShortcut, AFailedStartInToggleModeCostsOneMoreTap) {
    start();
    audioInput.startError = u"Device is busy."_s;
    tapToggle();
    EXPECT_EQ(model->errorMessage(), u"Audio engine failed: Device is busy."_s);
    EXPECT_EQ(model->shortcutSession().activeMode, RecordingTriggerMode::toggle);
    audioInput.startError.reset();
    log.clear();
    tapToggle();
    EXPECT_TRUE(log.lines().contains(u"shortcut: stop ignored: engine was not recording"_s));
    tapToggle();
    EXPECT_TRUE(model->isRecording());
}

TEST_F(DictationSessionShortcut, AFailedStartInHoldModeIsOverAtTheRelease) {
    start();
    audioInput.startError = u"Device is busy."_s;
    pressHold();
    releaseHold();
    EXPECT_EQ(model->shortcutSession().activeMode, std::nullopt);
}

TEST_F(DictationSessionShortcut, CopyAgainPastesTheLastTextIntoWhatIsInFrontNow) {
    start();
    edge(ShortcutEvent::copyAgainTriggered);
    EXPECT_THAT(pasteboard.texts, IsEmpty()) << "nothing has been inserted yet";
    dictate(u"hello"_s);
    pasteboard.fetched = {{.processIdentifier = 42}};
    clock.advance(std::chrono::seconds(1));
    workspace.frontmost->processIdentifier = 99;
    log.clear();
    edge(ShortcutEvent::copyAgainTriggered);
    EXPECT_THAT(pasteboard.texts, ElementsAre(u"Hello"_s, u"Hello"_s));
    EXPECT_TRUE(log.lines().contains(u"shortcut: event copyAgainTriggered -> paste again"_s));
    EXPECT_THAT(workspace.activated, IsEmpty());
}

TEST_F(DictationSessionShortcut, AnUnavailableTapIsToldAndPermissionsAreLookedAtAgain) {
    start();
    log.clear();
    model->shortcuts().onTapUnavailable(u"No tap."_s);
    EXPECT_EQ(model->errorMessage(), u"No tap."_s);
    EXPECT_EQ(log.lines(u"permissions"_s).size(), 1);
}

TEST_F(DictationSessionShortcut, ATapThatRunsClearsTheError) {
    start();
    model->setErrorMessage(u"No tap."_s);
    trust.processTrusted = false;
    model->shortcuts().onTapStatusChanged(false);
    EXPECT_FALSE(model->accessibilityGranted());
    EXPECT_TRUE(model->hasErrorMessage());
    trust.processTrusted = true;
    model->shortcuts().onTapStatusChanged(true);
    EXPECT_TRUE(model->accessibilityGranted());
    EXPECT_FALSE(model->hasErrorMessage());
}

} // namespace
} // namespace velorin
