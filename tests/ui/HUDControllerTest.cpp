#include "ui/HUDController.h"

#include "tests/core/ModelFixture.h"
#include "tests/support/WaitUntil.h"
#include "tests/ui/Fakes.h"
#include "ui/OverlayPanel.h"
#include "ui/Theme.h"
#include "ui/ViewEngine.h"

#include <QGuiApplication>
#include <QQuickItem>
#include <QScreen>
#include <QThread>

using namespace Qt::Literals::StringLiterals;
using testing::SizeIs;

namespace velorin {
namespace {

struct HUDControllerTest : ModelFixture {
    HUDControllerTest() {
        start();
        QObject::connect(&overlay, &HUDController::painted, [this] { ++frames; });
    }
    ~HUDControllerTest() override { endModel(); }

    void show() {
        const int before = frames;
        overlay.show(*model);
        ASSERT_TRUE(waitUntil([&] { return frames > before; }));
    }
    void hide() {
        overlay.hide();
        ASSERT_TRUE(waitUntil([&] { return !overlay.panel()->isVisible(); }));
    }

    FakeAppearance appearance;
    Theme theme{appearance};
    ViewEngine views{theme};
    FakeFloatingWindows windows;
    HUDController overlay{{windows, views, clock}};
    int frames = 0;
};

TEST_F(HUDControllerTest, HidingBeforeTheFirstShowDoesNothing) {
    overlay.hide();
    EXPECT_EQ(overlay.panel(), nullptr);
}

TEST_F(HUDControllerTest, TakesNeitherFocusNorClicks) {
    show();
    const auto flags = overlay.panel()->flags();
    EXPECT_TRUE(flags.testFlag(Qt::WindowDoesNotAcceptFocus));
    EXPECT_TRUE(flags.testFlag(Qt::WindowTransparentForInput));
    EXPECT_TRUE(flags.testFlag(Qt::X11BypassWindowManagerHint));
    EXPECT_EQ(windows.adopted, 1);
}

TEST_F(HUDControllerTest, StandsAboveTheBottomOfTheWorkArea) {
    windows.panels = QMargins(0, 0, 0, 40);
    show();
    const auto area = QGuiApplication::primaryScreen()->geometry().marginsRemoved(windows.panels);
    const auto frame = overlay.panel()->geometry();
    EXPECT_EQ(frame.size(), QSize(440, 114));
    EXPECT_EQ(frame.bottom(), area.bottom() - 24);
    EXPECT_NEAR(frame.center().x(), area.center().x(), 1);
}

TEST_F(HUDControllerTest, ASecondShowKeepsTheViewAndFadesInAgain) {
    show();
    const auto* root = overlay.panel()->rootObject();
    ASSERT_NE(root, nullptr);
    ASSERT_TRUE(waitUntil([&] { return overlay.panel()->opacity() == 1; }));
    overlay.show(*model);
    EXPECT_LT(overlay.panel()->opacity(), 1);
    EXPECT_EQ(overlay.panel()->rootObject(), root);
    EXPECT_EQ(windows.raised, 2);
}

TEST_F(HUDControllerTest, ADictationThatBeginsWhileItFadesAwayIsFollowed) {
    appearance.isStill = false;
    appearance.listeners.tell();
    show();
    overlay.hide();
    // A busy main thread: the fade's last moment passes before anything is painted, so that it is the next
    // animation to start that ends it.
    QThread::msleep(600);
    for (const auto phase : {OverlayPhase::done, OverlayPhase::listening, OverlayPhase::processing,
                             OverlayPhase::listening})
        model->setOverlayPhase(phase);
    overlay.show(*model);
    model->setCleanedText(u"followed"_s);
    EXPECT_EQ(overlay.content().text(), u"followed"_s);
    EXPECT_TRUE(waitUntil([&] { return overlay.panel()->opacity() == 1; }));
    model->setCleanedText(u"still followed"_s);
    EXPECT_EQ(overlay.content().text(), u"still followed"_s);
}

TEST_F(HUDControllerTest, AnotherStyleTakesEffectAtTheNextShow) {
    show();
    model->setOverlayStyle(OverlayStyle::card);
    EXPECT_EQ(overlay.panel()->size(), QSize(440, 114));
    hide();
    show();
    EXPECT_EQ(overlay.panel()->size(), QSize(420, 162));
    EXPECT_EQ(overlay.content().look(), u"card"_s);
}

TEST_F(HUDControllerTest, HidingFadesOutAndKeepsThePanel) {
    show();
    const auto* panel = overlay.panel();
    hide();
    EXPECT_EQ(overlay.panel(), panel);
    overlay.hide();
    EXPECT_FALSE(panel->isVisible());
}

TEST_F(HUDControllerTest, AShowDuringTheFadeOutStays) {
    show();
    overlay.hide();
    show();
    ASSERT_TRUE(waitUntil([&] { return overlay.panel()->opacity() == 1; }));
    EXPECT_TRUE(overlay.panel()->isVisible());
}

TEST_F(HUDControllerTest, FollowsTheModelOnlyWhileItIsShown) {
    model->setOverlayPhase(OverlayPhase::listening);
    show();
    EXPECT_EQ(overlay.content().text(), u"Speak now…"_s);
    EXPECT_FALSE(overlay.content().isLive());
    model->setCleanedText(u"hello\nworld"_s);
    EXPECT_EQ(overlay.content().text(), u"hello world"_s);
    EXPECT_TRUE(overlay.content().isLive());
    hide();
    model->setCleanedText(u"unseen"_s);
    EXPECT_EQ(overlay.content().text(), u"hello world"_s);
}

TEST_F(HUDControllerTest, KeepsOfALongTextItsEndWithoutCuttingCharacters) {
    show();
    model->setCleanedText(u"😀"_s.repeated(5000));
    const auto text = overlay.content().text();
    EXPECT_LT(text.size(), 700);
    EXPECT_TRUE(text.startsWith(u"…😀"_s));
    EXPECT_TRUE(text.endsWith(u"😀"_s));
}

TEST_F(HUDControllerTest, WithoutACompositorTheWindowIsCutToItsShape) {
    windows.composited = false;
    show();
    EXPECT_FALSE(windows.shape.isEmpty());
    windows.composited = true;
    windows.listeners.tell();
    EXPECT_TRUE(windows.shape.isEmpty());
    EXPECT_TRUE(overlay.content().isComposited());
}

TEST_F(HUDControllerTest, NamesTheTargetOrTheFrontmostApp) {
    model->setTargetApp(std::nullopt);
    show();
    EXPECT_EQ(overlay.content().appName(), u"Frontmost app"_s);
    model->setTargetApp(ModelDesk::editor());
    EXPECT_EQ(overlay.content().appName(), *ModelDesk::editor().localizedName);
}

} // namespace
} // namespace velorin
