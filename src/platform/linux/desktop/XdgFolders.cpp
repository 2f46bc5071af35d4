#include "platform/linux/desktop/XdgFolders.h"

#include <QDir>
#include <QStandardPaths>

#include <pwd.h>
#include <unistd.h>

#include <vector>

using namespace Qt::Literals::StringLiterals;

namespace velorin {

QString XdgFolders::dataFolder() const {
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/Velorin"_s;
}

QString XdgFolders::temporaryFolder() const {
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (!runtime.isEmpty() && QDir(runtime).exists())
        return runtime + u"/velorin"_s;
    return QDir::tempPath() + u"/velorin-%1"_s.arg(geteuid());
}

QString XdgFolders::userFullName() const {
    passwd entry{};
    passwd* found = nullptr;
    std::vector<char> buffer(4096);
    if (getpwuid_r(geteuid(), &entry, buffer.data(), buffer.size(), &found) != 0 || !found)
        return qEnvironmentVariable("USER");
    const QString fullName = QString::fromLocal8Bit(entry.pw_gecos).section(u',', 0, 0).trimmed();
    return fullName.isEmpty() ? QString::fromLocal8Bit(entry.pw_name) : fullName;
}

void XdgFolders::removeLeftovers() const {
    QDir folder(temporaryFolder());
    for (const QString& name : folder.entryList({u"velorin-*.wav"_s}, QDir::Files))
        folder.remove(name);
}

} // namespace velorin
