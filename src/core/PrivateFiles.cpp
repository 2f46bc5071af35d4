#include "core/PrivateFiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace velorin::PrivateFiles {
namespace {

constexpr QFile::Permissions ownerOnly = QFile::ReadOwner | QFile::WriteOwner;

void makeFolder(const QString& path) {
    const QString folder = QFileInfo(path).path();
    if (!QFileInfo::exists(folder) && QDir().mkpath(folder))
        QFile::setPermissions(folder, ownerOnly | QFile::ExeOwner);
}

} // namespace

std::optional<QByteArray> read(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    QByteArray data = file.readAll();
    return file.error() == QFile::NoError ? std::optional(std::move(data)) : std::nullopt;
}

bool write(const QString& path, const QByteArray& data) {
    makeFolder(path);
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) && file.setPermissions(ownerOnly) &&
           file.write(data) == data.size() && file.commit();
}

bool append(const QString& path, const QByteArray& data) {
    makeFolder(path);
    QFile file(path);
    if (!file.open(QIODevice::ExistingOnly | QIODevice::Append))
        return write(path, data);
    return file.write(data) == data.size() && file.flush();
}

} // namespace velorin::PrivateFiles
