#include "platform/linux/desktop/XdgFolders.h"

#include "platform/PrivateFolder.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QStandardPaths>

#include <linux/magic.h>
#include <sys/vfs.h>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;

namespace velorin {

namespace {

/// In memory where the system has such a place: what is said never reaches a disk.
QString sharedTemporaryFolder() {
    const QString inMemory = u"/dev/shm"_s;
    struct statfs system {};
    const bool isInMemory =
        statfs(QFile::encodeName(inMemory).constData(), &system) == 0 && system.f_type == TMPFS_MAGIC;
    return isInMemory && access("/dev/shm", W_OK | X_OK) == 0 ? inMemory : QDir::tempPath();
}

} // namespace

QString XdgFolders::dataFolder() const {
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/Velorin"_s;
}

QString XdgFolders::configurationFolder() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) + u"/velorin"_s;
}

QString XdgFolders::temporaryFolder() const {
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (!runtime.isEmpty() && QDir(runtime).exists())
        return runtime + u"/velorin"_s;
    return sharedTemporaryFolder() + u"/velorin-%1"_s.arg(geteuid());
}

void XdgFolders::removeLeftovers() const {
    const QRegularExpression recording(u"^velorin-[0-9a-f]{8}(-[0-9a-f]{4}){3}-[0-9a-f]{12}\\.wav$"_s);
    QDir folder(temporaryFolder());
    for (const QString& name : folder.entryList(QDir::Files | QDir::Hidden))
        if (recording.match(name).hasMatch())
            folder.remove(name);
}

void XdgFolders::close() const {
    for (const QString& folder : {dataFolder(), configurationFolder(), temporaryFolder()})
        closeFolder(folder);
}

} // namespace velorin
