#include "tests/core/ModelFixture.h"

using namespace Qt::Literals::StringLiterals;
using testing::ElementsAre;

namespace velorin {
namespace {

class PermissionsOfTheModel : public ModelFixture {};

TEST_F(PermissionsOfTheModel, AreLookedAtWhenTheModelIsMade) {
    start();
    EXPECT_TRUE(model->microphoneGranted());
    EXPECT_TRUE(model->accessibilityGranted());
    EXPECT_TRUE(model->shortcuts().tapActive());
    EXPECT_THAT(log.lines(u"permissions"_s),
                ElementsAre(u"permissions: perms mic=true ax=true tap=true bindings=Hold Fn · Tap Cmd ⌘ + Fn "
                            "axTrustedRaw=trusted=true"_s));
    EXPECT_EQ(trust.microphoneRequests, 0) << "looking never asks the user";
}

TEST_F(PermissionsOfTheModel, AreFalseUntilTheyAreGranted) {
    trust.microphoneAuthorized = false;
    trust.processTrusted = false;
    start();
    EXPECT_FALSE(model->microphoneGranted());
    EXPECT_FALSE(model->accessibilityGranted());
    trust.processTrusted = true;
    model->refreshPermissions();
    EXPECT_TRUE(model->accessibilityGranted());
}

TEST_F(PermissionsOfTheModel, NoTapIsAskedForWhileTheShortcutsAreDisabled) {
    defaults.values[u"shortcutConfiguration"_s] =
        QString::fromUtf8(ShortcutConfiguration::disabled().encoded());
    start();
    EXPECT_FALSE(model->shortcuts().tapActive());
    EXPECT_TRUE(log.lines(u"permissions"_s).first().contains(u"bindings=Disabled "_s));
    model->setShortcutConfiguration(ShortcutConfiguration::defaultConfiguration());
    model->applyActivation();
    EXPECT_TRUE(model->shortcuts().tapActive());
}

TEST_F(PermissionsOfTheModel, ATapThatCannotStartIsToldOnceARefresh) {
    tap.error = EventTapError::notPermitted;
    start();
    EXPECT_EQ(
        model->errorMessage(),
        u"Accessibility permission is required for the activation shortcut. Grant it in System Settings > "
        "Privacy & Security > Accessibility, then click Relaunch."_s);
    log.clear();
    model->refreshPermissions();
    EXPECT_EQ(log.lines(u"permissions"_s).size(), 1)
        << "the refresh that the report asks for returns at once";
}

TEST_F(PermissionsOfTheModel, AWaylandSessionIsToldInItsOwnWords) {
    tap.error = EventTapError::unsupportedSession;
    start();
    EXPECT_EQ(model->errorMessage(), u"Velorin needs an X11 session for now. Choose one when you log in."_s);
}

TEST_F(PermissionsOfTheModel, RelaunchIsTheWorkspaces) {
    start();
    model->relaunch();
    EXPECT_EQ(workspace.relaunches, 1);
}

} // namespace
} // namespace velorin
