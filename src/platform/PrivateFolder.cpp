#include "platform/PrivateFolder.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>

#include <sys/stat.h>
#include <unistd.h>

namespace velorin {

bool makePrivateFolder(const QString& path) {
    const QFileInfo folder(path);
    if (folder.exists())
        return folder.isDir();
    return makePrivateFolder(folder.path()) &&
           (mkdir(QFile::encodeName(path).constData(), S_IRWXU) == 0 || errno == EEXIST);
}

bool closeFolder(const QString& path) {
    struct stat status {};
    const QByteArray name = QFile::encodeName(path);
    if (stat(name.constData(), &status) != 0 || !S_ISDIR(status.st_mode) || status.st_uid != geteuid())
        return false;
    return (status.st_mode & (S_IRWXG | S_IRWXO)) == 0 || chmod(name.constData(), S_IRWXU) == 0;
}

} // namespace velorin
