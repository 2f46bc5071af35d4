#include "ui/UpdateController.h"

#include "platform/Workspace.h"

#include <QCoreApplication>

using namespace Qt::Literals::StringLiterals;

namespace velorin {

void UpdateController::checkForUpdates() {
    workspace_.openUrl(QUrl(u"https://velorin.orrin.dev/releases"_s));
}

QString UpdateController::explanation() {
    return QCoreApplication::translate(
        "UpdateController",
        "Updates come with those of your system. This opens the page of Velorin's releases.");
}

} // namespace velorin
