#include "platform/linux/recognition/ModelFolder.h"

#include "platform/WholeFile.h"

#include <QDir>
#include <QFile>

namespace velorin {

using namespace Qt::Literals::StringLiterals;

namespace {

/// What serves the download only. Nobody writes to it now: whoever downloads holds the folder's lock.
void removeTraces(const QString& folder, const Model& model) {
    removeUnfinished(ModelFolder::digestsOf(folder), std::chrono::seconds(0));
    for (const ModelFile& file : model.files) {
        const QString part = ModelFolder::partOf(folder + u'/' + file.name);
        QFile::remove(part);
        QFile::remove(ModelFolder::validatorOf(part));
    }
}

} // namespace

QString ModelFolder::partOf(const QString& path) { return path + u".part"_s; }
QString ModelFolder::validatorOf(const QString& path) { return path + u".validator"_s; }
QString ModelFolder::digestsOf(const QString& folder) { return folder + u"/digests"_s; }

void ModelFolder::clear(const QString& folder, const Model& model) {
    removeTraces(folder, model);
    for (const ModelFile& file : model.files)
        QFile::remove(folder + u'/' + file.name);
    QFile::remove(digestsOf(folder));
    QDir().rmdir(folder);
}

bool ModelFolder::putInPlace(const QString& complete, const QString& place, const Model& model) {
    removeTraces(complete, model);
    clear(place, model);
    const QDir left(place);
    for (const QString& name : left.entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot))
        QDir().rename(left.filePath(name), complete + u'/' + name);
    QDir().rmdir(place);
    return QDir().rename(complete, place);
}

} // namespace velorin
