#include "tests/core/ModelFixture.h"
#include "tests/ui/Fakes.h"
#include "ui/BrandMark.h"
#include "ui/Theme.h"
#include "ui/VelorinApp.h"

#include <QQuickItem>

using namespace Qt::Literals::StringLiterals;
using testing::ElementsAre;
using testing::IsEmpty;

namespace velorin {
namespace {

struct ShellTest : ModelFixture {
    ShellTest() { start(); }
    ~ShellTest() override {
        app.reset();
        endModel();
    }

    VelorinApp& launch() {
        app = std::make_unique<VelorinApp>(VelorinApp::Surroundings{
            *model, theme, views, defaults, workspace, clock, trayHosts, notifications, pasteboard, loginItem,
            u"/home/someone/preferences.json"_s, u"/home/someone/history.json"_s});
        app->applicationDidFinishLaunching();
        return *app;
    }
    QStringList rows() const {
        QStringList texts;
        for (const auto* action : app->menu().menu().actions())
            texts.append(action->isSeparator() ? u"-"_s : action->text());
        return texts;
    }
    QAction& row(const QString& text) const {
        for (auto* action : app->menu().menu().actions())
            if (action->text() == text)
                return *action;
        throw std::runtime_error("no such row");
    }

    FakeAppearance appearance;
    Theme theme{appearance};
    ViewEngine views{theme};
    FakeTrayHosts trayHosts;
    FakeNotifications notifications;
    FakeLoginItem loginItem;
    std::unique_ptr<VelorinApp> app;
};

TEST_F(ShellTest, FirstLaunchOpensTheSettingsWindowAlone) {
    launch();
    EXPECT_TRUE(app->settings().isOpen());
    EXPECT_FALSE(app->onboarding().isOpen());
    EXPECT_FALSE(rows().contains(u"Show Onboarding…"_s));
}

TEST_F(ShellTest, LaterLaunchesOpenNoWindow) {
    model->completeOnboarding();
    launch();
    EXPECT_FALSE(app->settings().isOpen());
    EXPECT_FALSE(app->onboarding().isOpen());
}

TEST_F(ShellTest, DoneEndsTheFirstRunAndTheWindowStays) {
    launch();
    ASSERT_NE(app->settings().view()->rootObject(), nullptr);
    QMetaObject::invokeMethod(app->settings().view()->rootObject()->findChild<QObject*>(u"done"_s),
                              "clicked");
    EXPECT_TRUE(model->onboardingCompleted());
    EXPECT_TRUE(app->settings().isOpen());
    EXPECT_TRUE(rows().contains(u"Show Onboarding…"_s));
}

TEST_F(ShellTest, TheRepeatedIntroductionClosesWithDone) {
    model->completeOnboarding();
    launch();
    row(u"Show Onboarding…"_s).trigger();
    ASSERT_TRUE(app->onboarding().isOpen());
    QMetaObject::invokeMethod(app->onboarding().view()->rootObject()->findChild<QObject*>(u"done"_s),
                              "clicked");
    EXPECT_FALSE(app->onboarding().isOpen());
}

TEST_F(ShellTest, TheMenuFollowsTheModel) {
    model->completeOnboarding();
    launch();
    EXPECT_THAT(rows(), ElementsAre(u"Start dictation"_s, u"-"_s, u"Activation: Hold Fn · Tap Cmd ⌘ + Fn"_s,
                                    u"Context: Auto"_s, u"-"_s, u"Settings…"_s, u"Show Onboarding…"_s,
                                    u"Check for Updates…"_s, u"Quit Velorin"_s));
    model->setIsRecording(true);
    EXPECT_EQ(rows().first(), u"Stop dictation"_s);
    EXPECT_FALSE(row(u"Context: Auto"_s).isEnabled());
}

TEST_F(ShellTest, UpdatesOpenThePageOfReleases) {
    launch();
    row(u"Check for Updates…"_s).trigger();
    EXPECT_THAT(workspace.opened, ElementsAre(QUrl(u"https://velorin.orrin.dev/releases"_s)));
    EXPECT_FALSE(row(u"Check for Updates…"_s).toolTip().isEmpty());
}

TEST_F(ShellTest, TheIconIsMadeWhenAHostComes) {
    launch();
    EXPECT_FALSE(app->tray().isShown());
    trayHosts.isThere = true;
    trayHosts.listeners.tell();
    EXPECT_TRUE(app->tray().isShown());
    clock.advance(std::chrono::minutes(1));
    EXPECT_THAT(notifications.calls.filter(u"show tray"_s), IsEmpty());
}

TEST_F(ShellTest, WithoutATrayTheFirstStartTellsTheShortcutOnce) {
    launch();
    clock.advance(std::chrono::minutes(1));
    ASSERT_EQ(notifications.calls.filter(u"show tray"_s).size(), 1);
    EXPECT_TRUE(notifications.calls.filter(u"show tray"_s).first().contains(u"Hold Fn"_s));
    app.reset();
    launch();
    clock.advance(std::chrono::minutes(1));
    EXPECT_EQ(notifications.calls.filter(u"show tray"_s).size(), 1);
}

TEST_F(ShellTest, AnErrorIsANotificationUntilItIsOver) {
    launch();
    notifications.calls.clear();
    model->setErrorMessage(u"First."_s);
    model->setErrorMessage(u"Second."_s);
    model->setErrorMessage(std::nullopt);
    EXPECT_THAT(notifications.calls,
                ElementsAre(u"show error: First."_s, u"show error: Second."_s, u"withdraw error"_s));
}

TEST_F(ShellTest, ATextThatCouldNotBeInsertedIsCopiedFromTheNotification) {
    launch();
    trust.processTrusted = false;
    model->insertText(u"stranded"_s, editor());
    EXPECT_EQ(notifications.last.text,
              u"Text is ready, but Accessibility permission is needed to type it into other apps. "
              "Use Copy in this message."_s);
    ASSERT_EQ(notifications.last.actions.size(), 1U);
    EXPECT_EQ(notifications.last.actions.front().label, u"Copy"_s);
    const auto copy = notifications.last.actions.front().carryOut;
    model->setUndeliveredText({}); // another text has been delivered meanwhile
    copy();
    EXPECT_THAT(pasteboard.copied, ElementsAre(u"stranded"_s));
}

TEST_F(ShellTest, CopyAgainIsNamedOnlyWhereItHasAShortcut) {
    launch();
    auto shortcuts = model->shortcutConfiguration();
    shortcuts.copyAgain = {.keyCode = 96, .keyDisplay = u"F5"_s, .kind = ShortcutBindingKind::key};
    model->setShortcutConfiguration(shortcuts);
    trust.processTrusted = false;
    model->insertText(u"stranded"_s, editor());
    EXPECT_TRUE(notifications.last.text.endsWith(u"Use copy again (F5) to insert it."_s));
}

TEST_F(ShellTest, WithoutANotificationServiceTheToolTipTellsWhereTheTextIs) {
    trayHosts.isThere = true;
    launch();
    trust.processTrusted = false;
    model->insertText(u"stranded"_s, editor());
    notifications.isServed = false;
    notifications.listeners.tell();
    EXPECT_TRUE(
        app->tray().icon()->toolTip().endsWith(u"It is in the history: /home/someone/history.json"_s));
    model->setHistoryEnabled(false);
    model->setErrorMessage(std::nullopt);
    EXPECT_EQ(app->tray().icon()->toolTip(), u"Velorin"_s);
}

TEST_F(ShellTest, AnErrorWithoutATextHasNoButton) {
    launch();
    model->setErrorMessage(u"No microphone."_s);
    EXPECT_TRUE(notifications.last.actions.empty());
}

TEST_F(ShellTest, StartAtLoginIsAChoiceOfTheWindow) {
    launch();
    QMetaObject::invokeMethod(app->settings().view()->rootObject()->findChild<QObject*>(u"startAtLogin"_s),
                              "toggled");
    EXPECT_TRUE(loginItem.isOn);
}

TEST_F(ShellTest, TheIconIsRedExactlyWhileItRecords) {
    trayHosts.isThere = true;
    launch();
    const auto isRed = [this] {
        const QImage image = app->tray().icon()->icon().pixmap(22).toImage();
        const QColor color = image.pixelColor(11, 12);
        return color.red() > 150 && color.green() < 130;
    };
    EXPECT_FALSE(isRed());
    EXPECT_EQ(app->tray().icon()->toolTip(), u"Velorin"_s);
    model->setIsRecording(true);
    EXPECT_TRUE(isRed());
    EXPECT_EQ(app->tray().icon()->toolTip(), u"Velorin, recording"_s);
    model->setIsRecording(false);
    EXPECT_FALSE(isRed());
}

TEST_F(ShellTest, TheIconTellsAnErrorUntilItIsOver) {
    trayHosts.isThere = true;
    launch();
    model->setErrorMessage(u"No microphone."_s);
    EXPECT_EQ(app->tray().icon()->toolTip(), u"Velorin\nNo microphone."_s);
    model->setErrorMessage(std::nullopt);
    EXPECT_EQ(app->tray().icon()->toolTip(), u"Velorin"_s);
}

TEST(BrandMark, IsDrawnInTheColourAskedFor) {
    const auto mark = BrandMark::image(QColor(Qt::red), 2.0);
    EXPECT_EQ(mark.size(), QSize(60, 40));
    int painted = 0;
    for (int x = 0; x < mark.width(); ++x) {
        const auto pixel = mark.pixelColor(x, 20);
        painted += pixel.alpha() > 200 ? 1 : 0;
        EXPECT_TRUE(pixel.alpha() == 0 || pixel.red() > 200);
    }
    EXPECT_GT(painted, 0);
    EXPECT_EQ(BrandMark::image(60.0, QColor(Qt::black)).size(), QSize(60, 40));
}

} // namespace
} // namespace velorin
