#include "app/Program.h"

#include "app/Adapters.h"
#include "app/Diagnostics.h"
#include "app/SessionTrayHosts.h"
#include "app/SingleInstance.h"
#include "app/TerminationSignals.h"
#include "core/AppModel.h"
#include "core/History.h"
#include "platform/UsersMask.h"
#include "platform/linux/desktop/Autostart.h"
#include "platform/linux/desktop/BusNotifications.h"
#include "platform/linux/desktop/PortalAppearance.h"
#include "platform/linux/x11/X11FloatingWindows.h"
#include "platform/linux/x11/XConnection.h"
#include "ui/BrandMark.h"
#include "ui/HUDController.h"
#include "ui/Theme.h"
#include "ui/VelorinApp.h"

#include <QApplication>

#include <cstdio>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

void tell(const QString& sentence) {
    std::fprintf(stderr, "velorin: %s\n", qUtf8Printable(sentence));
    std::fflush(stderr);
}

/// Qt ends a program that finds no display in the middle of its own start, with words for developers.
bool hasDisplay() {
    if (!qEnvironmentVariable("QT_QPA_PLATFORM").isEmpty())
        return true;
    const bool hasServer = XConnection::open() != nullptr;
    if (!hasServer && !qEnvironmentVariableIsSet("WAYLAND_DISPLAY"))
        tell(QCoreApplication::translate("Program", "no display: the X server at “%1” does not answer.")
                 .arg(qEnvironmentVariable("DISPLAY")));
    return hasServer || qEnvironmentVariableIsSet("WAYLAND_DISPLAY");
}

void reportErrors(AppModel& model) {
    const auto report = [&model] {
        if (model.hasErrorMessage())
            tell(model.errorMessageText());
    };
    report();
    QObject::connect(&model, &AppState::errorMessageChanged, &model, report);
}

} // namespace

int runProgram(int& argc, char** argv, Clock& clock) {
    UsersMask::setAside();
    qSetMessagePattern(u"%{category}: %{message}"_s);
    if (!hasDisplay())
        return 1;
    drawViewsInSoftware();
    QApplication application(argc, argv);
    QApplication::setApplicationName(u"velorin"_s);
    QApplication::setApplicationDisplayName(u"Velorin"_s);
    QApplication::setDesktopFileName(u"dev.orrin.velorin"_s);
    QApplication::setQuitOnLastWindowClosed(VelorinApp::applicationShouldTerminateAfterLastWindowClosed());
    QApplication::setWindowIcon(QIcon::fromTheme(u"dev.orrin.velorin"_s, BrandMark::trayIcon(Qt::darkCyan)));
    const TerminationSignals terminationSignals;

    std::function<void()> showItself = [] {};
    SingleInstance instance([&showItself] {
        tell(QCoreApplication::translate("Program", "was started again; one is enough."));
        showItself();
    });
    if (instance.claim() == SingleInstance::Claim::another) {
        tell(QCoreApplication::translate("Program", "is already running."));
        return 0;
    }
    Adapters adapters(clock, [&instance] { instance.giveUp(); });
    const Diagnostics diagnostics(adapters.platform().marks);
    PortalAppearance appearance;
    Theme theme(appearance);
    X11FloatingWindows floatingWindows;
    ViewEngine views(theme);
    HUDController hud({floatingWindows, views, clock});
    QObject::connect(&hud, &HUDController::painted, &hud,
                     [&adapters] { adapters.platform().marks.mark(Stage::overlayPainted); });
    AppModel model(adapters.platform(), {.finishing = nullptr, .selection = nullptr, .hud = hud});
    reportErrors(model);
    SessionTrayHosts trayHosts;
    BusNotifications notifications;
    Autostart autostart;
    auto& platform = adapters.platform();
    VelorinApp app({model, theme, views, platform.userDefaults, platform.workspace, clock, trayHosts,
                    notifications, platform.pasteboard, autostart, JsonUserDefaults::defaultPath(),
                    History::path(platform.folders)});
    showItself = [&app] { app.openSettings(); };
    app.applicationDidFinishLaunching();
    const int code = QApplication::exec();
    showItself = [] {};
    return code;
}

} // namespace velorin
