#include "platform/linux/recognition/ModelStore.h"

#include "platform/Log.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>

#include <algorithm>

#include <sys/stat.h>

namespace velorin {

using namespace Qt::Literals::StringLiterals;

namespace {

/// A file as it is at this moment: another content has another of these.
std::optional<QByteArray> identity(const QString& path) {
    struct stat status {};
    if (stat(QFile::encodeName(path).constData(), &status) != 0)
        return std::nullopt;
    const auto nanoseconds = [](const timespec& time) {
        return qint64{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
    };
    return QByteArray::number(static_cast<quint64>(status.st_dev)) + ' ' +
           QByteArray::number(static_cast<quint64>(status.st_ino)) + ' ' +
           QByteArray::number(static_cast<qint64>(status.st_size)) + ' ' +
           QByteArray::number(nanoseconds(status.st_mtim)) + ' ' +
           QByteArray::number(nanoseconds(status.st_ctim));
}

bool hasDigest(const QString& path, const QByteArray& digest) {
    QFile file(path);
    QCryptographicHash hash(QCryptographicHash::Sha256);
    return file.open(QIODevice::ReadOnly) && hash.addData(&file) && hash.result().toHex() == digest;
}

} // namespace

ModelStore::ModelStore(QStringList programFolders, QString userFolder)
    : programFolders_(std::move(programFolders)), userFolder_(std::move(userFolder)) {}

QStringList ModelStore::programFolders() {
    const QString executables = QCoreApplication::applicationDirPath();
    return {executables + u"/../share/velorin/models"_s, executables + u"/../lib/velorin/models"_s,
            executables + u"/../../../third_party/models"_s};
}

QStringList ModelStore::foldersOf(const Model& model) const {
    QStringList folders;
    for (const QString& folder : programFolders_ + QStringList{userFolder_})
        folders.append(folder + u'/' + model.id);
    return folders;
}

std::optional<QString> ModelStore::installed(const Model& model) const {
    for (const QString& folder : foldersOf(model)) {
        const auto isThere = [&](const ModelFile& file) {
            const QFileInfo info(folder + u'/' + file.name);
            return info.isFile() && info.size() == file.size;
        };
        if (std::all_of(model.files.begin(), model.files.end(), isThere))
            return folder;
    }
    return std::nullopt;
}

std::optional<QString> ModelStore::verified(const Model& model) const {
    const auto folder = installed(model);
    if (!folder)
        return std::nullopt;
    const auto isIntactThere = [&](const ModelFile& file) {
        return isIntact(*folder + u'/' + file.name, file);
    };
    if (std::all_of(model.files.begin(), model.files.end(), isIntactThere))
        return folder;
    qCWarning(speechLog).noquote() << "model" << model.id << "is damaged";
    return std::nullopt;
}

bool ModelStore::isIntact(const QString& path, const ModelFile& file) const {
    const auto which = identity(path);
    if (!which)
        return false;
    const QByteArray key = *which + ' ' + file.digest;
    {
        const std::scoped_lock lock(mutex_);
        if (const auto known = known_.find(key); known != known_.end())
            return known->second;
    }
    const bool isIntact = hasDigest(path, file.digest);
    const std::scoped_lock lock(mutex_);
    return known_[key] = isIntact;
}

} // namespace velorin
