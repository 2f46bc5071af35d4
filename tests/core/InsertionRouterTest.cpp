#include "tests/core/ModelFixture.h"

#include "core/InsertionRouter.h"
#include "tests/support/ElectronFolder.h"

using namespace Qt::Literals::StringLiterals;
using testing::ElementsAre;
using testing::IsEmpty;

namespace velorin {
namespace {

class InsertionRouterOfTheModel : public ModelFixture {};

TEST_F(InsertionRouterOfTheModel, WhiteSpaceAloneIsNotInsertedAndKeepsTheLastText) {
    start();
    model->insertText(u"hello"_s, editor());
    model->insertText(u" \n"_s, editor());
    EXPECT_EQ(model->lastInsertedText(), u"hello"_s);
    EXPECT_THAT(pasteboard.texts, ElementsAre(u"hello"_s));
}

TEST_F(InsertionRouterOfTheModel, WithoutPermissionNothingIsTried) {
    start();
    trust.processTrusted = false;
    model->insertText(u"hello"_s, editor());
    EXPECT_FALSE(model->accessibilityGranted());
    EXPECT_EQ(model->errorMessage(),
              u"Text is ready, but Accessibility permission is needed to type it into other apps."_s);
    EXPECT_THAT(pasteboard.calls, IsEmpty());
    EXPECT_EQ(model->lastInsertedText(), QString());
}

TEST_F(InsertionRouterOfTheModel, BringsTheTargetBackWhenTheUserHasGoneElsewhere) {
    start();
    workspace.frontmost->processIdentifier = 99;
    model->insertText(u"hello"_s, editor());
    EXPECT_THAT(workspace.activated, ElementsAre(editor()));
}

TEST_F(InsertionRouterOfTheModel, WithoutATargetTakesWhatIsInFront) {
    start();
    model->insertText(u"hello"_s, std::nullopt);
    ASSERT_EQ(keyboard.chords.size(), 1U);
    EXPECT_EQ(keyboard.chords.front().second, editor());
    EXPECT_THAT(workspace.activated, IsEmpty());
}

TEST_F(InsertionRouterOfTheModel, PutsNothingIntoAStranger) {
    start();
    keyboard.canType = true;
    workspace.frontmost->processIdentifier = 99;
    workspace.comesToFront = false;
    model->insertText(u"hello"_s, editor());
    EXPECT_EQ(model->errorMessage(), u"Text was not inserted: another window is in front."_s);
    EXPECT_EQ(model->undeliveredText(), u"hello"_s) << "it stays for copy-again";
    EXPECT_THAT(pasteboard.calls, IsEmpty());
    EXPECT_THAT(keyboard.typed, IsEmpty());
    EXPECT_THAT(accessibility.processes, IsEmpty());
}

TEST_F(InsertionRouterOfTheModel, AWindowOfItsOwnTakesTheTextDirectly) {
    start();
    auto own = editor();
    own.processIdentifier = workspace.currentProcess;
    model->insertText(u"a\nb"_s, own);
    EXPECT_THAT(workspace.textsOfOwnWindow, ElementsAre(u"a\nb"_s));
    EXPECT_THAT(workspace.activated, IsEmpty());
    EXPECT_THAT(pasteboard.calls, IsEmpty());
    EXPECT_EQ(model->errorMessage(), std::nullopt);
    workspace.ownWindowTakesText = false;
    model->insertText(u"c"_s, own);
    EXPECT_EQ(model->errorMessage(), u"Could not insert text. Check Accessibility permission."_s);
    EXPECT_THAT(pasteboard.calls, IsEmpty());
}

TEST_F(InsertionRouterOfTheModel, TriesAccessibilityThenKeysThenTheClipboard) {
    start();
    keyboard.canType = true;
    accessibility.focused = std::make_shared<FakeElement>();
    model->insertText(u"a"_s, editor());
    EXPECT_THAT(accessibility.focused->state->written, ElementsAre(u"a"_s));
    accessibility.focused->state->isSettable = false;
    model->insertText(u"b"_s, editor());
    EXPECT_THAT(keyboard.typed, ElementsAre(QStringList{u"b"_s}));
    keyboard.canType = false;
    model->insertText(u"c"_s, editor());
    EXPECT_THAT(pasteboard.texts, ElementsAre(u"c"_s));
    pasteboard.saved.reset();
    model->insertText(u"d"_s, editor());
    EXPECT_EQ(model->errorMessage(), u"Could not insert text. Check Accessibility permission."_s);
}

TEST_F(InsertionRouterOfTheModel, NeverTypesSeveralLines) {
    start();
    keyboard.canType = true;
    model->insertText(u"a\nb"_s, editor());
    EXPECT_THAT(keyboard.typed, IsEmpty());
    EXPECT_THAT(pasteboard.texts, ElementsAre(u"a\nb"_s));
}

TEST_F(InsertionRouterOfTheModel, WithDirectInsertionOffThereIsTheClipboardAlone) {
    start();
    keyboard.canType = true;
    accessibility.focused = std::make_shared<FakeElement>();
    model->setUseDirectInsertion(false);
    auto browser = editor();
    browser.kin = u"org.mozilla.firefox"_s;
    log.clear();
    model->insertText(u"a"_s, browser);
    EXPECT_THAT(pasteboard.texts, ElementsAre(u"a"_s));
    EXPECT_THAT(accessibility.processes, IsEmpty());
    EXPECT_THAT(log.lines(),
                ElementsAre(u"insert: insertion policy: app=%1 preferPaste=no reason=direct"_s.arg(
                                *browser.bundleIdentifier),
                            u"insert: insertion path: clipboard paste"_s));
}

TEST_F(InsertionRouterOfTheModel, LogsTheApplicationsOwnIdentifierAndComparesItsKin) {
    start();
    auto slack = editor();
    slack.bundleIdentifier = u"slack"_s;
    slack.kin = u"com.tinyspeck.slackmacgap"_s;
    log.clear();
    model->insertText(u"a"_s, slack);
    EXPECT_THAT(log.lines(),
                ElementsAre(u"insert: insertion policy: app=slack preferPaste=yes reason=slack"_s,
                            u"insert: insertion path: clipboard paste (web/rich text)"_s));
}

TEST_F(InsertionRouterOfTheModel, ElectronIsSeenByItsFilesAndNotRemembered) {
    auto app = editor();
    app.kin = u"some.app"_s;
    EXPECT_FALSE(InsertionRouter::isElectron(app)) << "its file is unknown";
    const ElectronFolder electron;
    app.executablePath = electron.executable();
    EXPECT_TRUE(InsertionRouter::isElectron(app));
    EXPECT_EQ(InsertionRouter::pasteReason(app), u"electron"_s);
    app.kin = u"com.microsoft.VSCode"_s;
    EXPECT_EQ(InsertionRouter::pasteReason(app), std::nullopt);
    QFile::remove(electron.folder.filePath(u"chrome_100_percent.pak"_s));
    EXPECT_FALSE(InsertionRouter::isElectron(app));
}

TEST_F(InsertionRouterOfTheModel, AnInsertionThatMayNotHaveLandedIsTold) {
    start();
    accessibility.focused = std::make_shared<FakeElement>();
    model->insertText(u"a"_s, editor());
    clock.advance(std::chrono::milliseconds(400));
    EXPECT_EQ(model->errorMessage(),
              u"Text may not have reached the app — it's in the transcript above if you need Copy."_s);
}

TEST_F(InsertionRouterOfTheModel, CopyAgainDoesNothingBeforeTheFirstText) {
    start();
    keyboard.canType = true;
    model->setCleanedText(u"a"_s);
    model->pasteAgain();
    EXPECT_THAT(keyboard.typed, IsEmpty());
}

TEST_F(InsertionRouterOfTheModel, CopyAgainTakesTheLastTextToWhatIsInFrontNow) {
    start();
    keyboard.canType = true;
    model->insertText(u"first"_s, editor());
    model->insertText(u"last"_s, editor());
    model->setCleanedText(u"being spoken"_s);
    workspace.frontmost->processIdentifier = 99;
    model->pasteAgain();
    EXPECT_EQ(keyboard.typed.back().join(QString()), u"last"_s);
    EXPECT_THAT(workspace.activated, IsEmpty());
}

TEST_F(InsertionRouterOfTheModel, CopyAgainPrefersWhatCouldNotBeDeliveredUntilAnotherTextIs) {
    start();
    keyboard.canType = true;
    model->insertText(u"delivered"_s, editor());
    trust.processTrusted = false;
    model->insertText(u"stranded"_s, editor());
    trust.processTrusted = true;
    EXPECT_EQ(model->undeliveredText(), u"stranded"_s);
    pressHold(); // whatever begins meanwhile
    releaseHold();
    model->pasteAgain();
    EXPECT_EQ(keyboard.typed.back().join(QString()), u"stranded"_s);
    EXPECT_EQ(model->undeliveredText(), QString());
    model->insertText(u"later"_s, editor());
    model->pasteAgain();
    EXPECT_EQ(keyboard.typed.back().join(QString()), u"later"_s);
}

TEST_F(InsertionRouterOfTheModel, ATextThatNobodyReadCountsAsUndelivered) {
    start();
    model->insertText(u"hello"_s, editor());
    clock.advance(std::chrono::seconds(6));
    EXPECT_EQ(model->undeliveredText(), u"hello"_s);
}

TEST_F(InsertionRouterOfTheModel, APasteThatNobodyReadIsTold) {
    start();
    model->insertText(u"hello"_s, editor());
    clock.advance(std::chrono::seconds(6));
    EXPECT_EQ(model->errorMessage(),
              u"Text may not have reached the app — it's in the transcript above if you need Copy."_s);
}

TEST_F(InsertionRouterOfTheModel, LogsThePathButNotTheText) {
    start();
    keyboard.canType = true;
    log.clear();
    model->insertText(u"swordfish"_s, editor());
    EXPECT_THAT(log.lines().last(), u"insert: insertion path: synthetic typing"_s);
    EXPECT_THAT(log.lines().filter(u"swordfish"_s), IsEmpty());
}

} // namespace
} // namespace velorin
