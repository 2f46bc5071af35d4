#include "ui/VelorinApp.h"

#include "platform/DefaultsValues.h"
#include "platform/Notifications.h"
#include "platform/UserDefaults.h"

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

/// Panels start beside us at login, and slowly.
constexpr std::chrono::seconds trayPatience{20};
const QString toldOfMissingTray = u"toldOfMissingTray"_s;

QString fnStandIn(const UserDefaults& defaults) {
    return DefaultsValues::string(defaults, u"fnStandIn"_s).value_or(u"rightControl"_s);
}

} // namespace

VelorinApp::VelorinApp(const Surroundings& surroundings)
    : surroundings_(surroundings), updater_(surroundings.workspace),
      status_({surroundings.model, surroundings.workspace, surroundings.loginItem,
               surroundings.preferencesFile, fnStandIn(surroundings.userDefaults)}),
      settings_(surroundings.views, InterimWindow::Kind::settings),
      onboarding_(surroundings.views, InterimWindow::Kind::introduction), menu_(surroundings.model, updater_),
      errorNotice_(surroundings.model, surroundings.notifications, surroundings.pasteboard,
                   surroundings.historyFile),
      tray_(surroundings.model, surroundings.theme, surroundings.trayHosts, menu_.menu(), errorNotice_) {
    connect(&menu_, &MenuContent::settingsRequested, this, &VelorinApp::openSettings);
    connect(&menu_, &MenuContent::onboardingRequested, this, &VelorinApp::openOnboarding);
    connect(&tray_, &TrayItem::isShownChanged, this, [this] {
        status_.setHasTray(tray_.isShown());
        trayWait_ = {};
    });
    status_.setHasTray(tray_.isShown());
    if (!tray_.isShown())
        trayWait_ = surroundings_.clock.after(trayPatience, [this] { tellOfMissingTray(); });
    if (!surroundings_.model.onboardingCompleted())
        openSettings();
}

void VelorinApp::applicationDidFinishLaunching() {
    const auto stored = surroundings_.userDefaults.object(u"onboardingCompleted"_s);
    if (stored && stored->isBool() && stored->toBool())
        return;
    for (auto* window : {&settings_, &onboarding_})
        if (window->isOpen())
            window->activate();
}

void VelorinApp::openSettings() {
    surroundings_.views.tell(u"status"_s, status_);
    settings_.open();
}

void VelorinApp::openOnboarding() {
    surroundings_.views.tell(u"status"_s, status_);
    onboarding_.open();
}

void VelorinApp::tellOfMissingTray() {
    if (tray_.isShown() || surroundings_.userDefaults.object(toldOfMissingTray))
        return;
    surroundings_.userDefaults.set(toldOfMissingTray, true);
    QString text =
        tr("This desktop shows no tray icons. Dictate with: %1. To open Velorin's window, start it again.")
            .arg(surroundings_.model.shortcutConfiguration().summary());
    if (!status_.fnKey().isEmpty())
        text += u' ' + tr("The key %1 is Fn here.").arg(status_.fnKey());
    surroundings_.notifications.show({.subject = u"tray"_s, .title = tr("Velorin is ready"), .text = text});
}

} // namespace velorin
