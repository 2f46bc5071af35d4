#include "delivery/ElectronApplications.h"

#include <QFileInfo>

using namespace Qt::Literals::StringLiterals;

namespace velorin {

bool isElectron(const RunningApplication& application) {
    if (application.executablePath.isEmpty())
        return false;
    const auto folder = QFileInfo(application.executablePath).path();
    return QFileInfo::exists(folder + u"/resources/app.asar"_s) &&
           QFileInfo::exists(folder + u"/chrome_100_percent.pak"_s);
}

} // namespace velorin
