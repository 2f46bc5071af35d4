#include "app/Program.h"

#include "app/Adapters.h"
#include "app/Diagnostics.h"
#include "app/SingleInstance.h"
#include "app/TerminationSignals.h"
#include "core/AppModel.h"
#include "platform/linux/x11/XConnection.h"
#include "ui/TrayMenu.h"

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

/// The overlay is a later chapter: what it would show stands in the tray.
class NoOverlay final : public Overlay {
public:
    void show(AppModel&) override {}
    void hide() override {}
};

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
    qSetMessagePattern(u"%{category}: %{message}"_s);
    if (!hasDisplay())
        return 1;
    QApplication application(argc, argv);
    QApplication::setApplicationName(u"velorin"_s);
    QApplication::setApplicationDisplayName(u"Velorin"_s);
    QApplication::setDesktopFileName(u"dev.orrin.velorin"_s);
    QApplication::setQuitOnLastWindowClosed(false);
    const TerminationSignals terminationSignals;

    SingleInstance instance(
        [] { tell(QCoreApplication::translate("Program", "was started again; one is enough.")); });
    if (instance.claim() == SingleInstance::Claim::another) {
        tell(QCoreApplication::translate("Program", "is already running."));
        return 0;
    }
    Adapters adapters(clock, [&instance] { instance.giveUp(); });
    const Diagnostics diagnostics(adapters.platform().marks);
    NoOverlay hud;
    AppModel model(adapters.platform(), {.finishing = nullptr, .selection = nullptr, .hud = hud});
    reportErrors(model);
    const TrayMenu tray(model);
    return QApplication::exec();
}

} // namespace velorin
