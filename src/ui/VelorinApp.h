/// The application as the user meets it: the tray icon with its menu, the two windows, the notices.
/// Everything else hangs off the one model. It has no window of its own once the introduction is done, and
/// closing a window does not end it.
///
///     VelorinApp app(model, {…});
///     app.applicationDidFinishLaunching();     // once the event loop is about to run
///
/// Main thread.
#pragma once

#include "platform/Clock.h"
#include "ui/ErrorNotice.h"
#include "ui/InterimStatus.h"
#include "ui/InterimWindow.h"
#include "ui/MenuContent.h"
#include "ui/TrayItem.h"
#include "ui/UpdateController.h"

namespace velorin {

class Notifications;
class Pasteboard;
class UserDefaults;

class VelorinApp final : public QObject {
    Q_OBJECT
public:
    struct Surroundings {
        AppModel& model;
        Theme& theme;
        ViewEngine& views;
        UserDefaults& userDefaults;
        Workspace& workspace;
        Clock& clock;
        TrayHosts& trayHosts;
        Notifications& notifications;
        Pasteboard& pasteboard;
        LoginItem& loginItem;
        QString preferencesFile;
        QString historyFile;
    };
    /// All outlive it. Opens the settings window unless the introduction was completed.
    explicit VelorinApp(const Surroundings& surroundings);

    /// Comes to the front, unless the introduction is stored as completed.
    void applicationDidFinishLaunching();
    static constexpr bool applicationShouldTerminateAfterLastWindowClosed() { return false; }

    void openSettings();
    void openOnboarding();

    [[nodiscard]] const InterimWindow& settings() const { return settings_; }
    [[nodiscard]] const InterimWindow& onboarding() const { return onboarding_; }
    [[nodiscard]] const TrayItem& tray() const { return tray_; }
    [[nodiscard]] MenuContent& menu() { return menu_; }

private:
    void tellOfMissingTray();

    Surroundings surroundings_;
    UpdateController updater_;
    InterimStatus status_;
    InterimWindow settings_;
    InterimWindow onboarding_;
    MenuContent menu_;
    ErrorNotice errorNotice_;
    TrayItem tray_;
    Subscription trayWait_;
};

} // namespace velorin
