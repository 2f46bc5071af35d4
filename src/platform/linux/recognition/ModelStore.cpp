#include "platform/linux/recognition/ModelStore.h"

#include "platform/Log.h"
#include "platform/WholeFile.h"
#include "platform/linux/recognition/ModelFolder.h"

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

/// Whether a row of the record can be one: a damaged record is none.
bool isDigest(const QByteArray& text) { return text.size() == 64 && QByteArray::fromHex(text).size() == 32; }

/// The files of the model, those without a digest in the table with what was recorded when they came.
std::vector<ModelFile> filesOf(const Model& model, const QString& folder) {
    std::vector<ModelFile> files = model.files;
    QFile recorded(ModelFolder::digestsOf(folder));
    if (!recorded.open(QIODevice::ReadOnly))
        return files;
    while (!recorded.atEnd()) {
        const QList<QByteArray> columns = recorded.readLine().trimmed().split(' ');
        for (ModelFile& file : files) {
            if (columns.size() == 3 && isDigest(columns[0]) && file.digest.isEmpty() &&
                file.name.toUtf8() == columns[2]) {
                file.digest = columns[0];
                file.size = columns[1].toLongLong();
            }
        }
    }
    return files;
}

QByteArray keyOf(const QByteArray& which, const ModelFile& file) {
    QByteArray key = which;
    return key.append(' ').append(file.digest);
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

std::vector<ModelFile> ModelStore::expectedFiles(const Model& model) const {
    return filesOf(model, userFolder_ + u'/' + model.id);
}

std::optional<QString> ModelStore::installed(const Model& model) const {
    for (const QString& folder : foldersOf(model)) {
        if (isWhole(folder, model))
            return folder;
    }
    return std::nullopt;
}

bool ModelStore::isWhole(const QString& folder, const Model& model) const {
    const auto files = filesOf(model, folder);
    return std::all_of(files.begin(), files.end(), [&](const ModelFile& file) {
        const QString path = folder + u'/' + file.name;
        const QFileInfo info(path);
        return !file.digest.isEmpty() && info.isFile() && info.size() == file.size &&
               !isKnownToBeDamaged(path, file);
    });
}

std::optional<QString> ModelStore::verified(const Model& model) const {
    const auto folder = installed(model);
    if (!folder)
        return std::nullopt;
    const auto files = filesOf(model, *folder);
    if (std::all_of(files.begin(), files.end(),
                    [&](const ModelFile& file) { return isIntact(*folder + u'/' + file.name, file); }))
        return folder;
    qCWarning(speechLog).noquote() << "model" << model.id << "is damaged";
    return std::nullopt;
}

bool ModelStore::isKnownToBeDamaged(const QString& path, const ModelFile& file) const {
    const auto which = identity(path);
    const std::scoped_lock lock(mutex_);
    const auto known = which ? known_.find(keyOf(*which, file)) : known_.end();
    return known != known_.end() && !known->second;
}

bool ModelStore::isIntact(const QString& path, const ModelFile& file) const {
    const auto which = identity(path);
    if (!which)
        return false;
    const QByteArray key = keyOf(*which, file);
    {
        const std::scoped_lock lock(mutex_);
        if (const auto known = known_.find(key); known != known_.end())
            return known->second;
    }
    const bool isIntact = digestOf(path) == file.digest;
    const std::scoped_lock lock(mutex_);
    return known_[key] = isIntact;
}

QByteArray ModelStore::digestOf(const QString& path) {
    QFile file(path);
    QCryptographicHash hash(QCryptographicHash::Sha256);
    if (!file.open(QIODevice::ReadOnly) || !hash.addData(&file))
        return {};
    return hash.result().toHex();
}

bool ModelStore::recordDigests(const QString& folder, const std::vector<ModelFile>& files) {
    QByteArray record;
    for (const ModelFile& file : files) {
        const QString path = folder + u'/' + file.name;
        QByteArray row = digestOf(path);
        row.append(' ')
            .append(QByteArray::number(QFileInfo(path).size()))
            .append(' ')
            .append(file.name.toUtf8());
        record.append(row.append('\n'));
    }
    return replaceFile(ModelFolder::digestsOf(folder), record).has_value();
}

} // namespace velorin
