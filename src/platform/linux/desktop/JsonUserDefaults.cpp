#include "platform/linux/desktop/JsonUserDefaults.h"

#include "platform/WholeFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QLoggingCategory>
#include <QStandardPaths>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

Q_LOGGING_CATEGORY(preferencesLog, "dev.orrin.velorin.preferences", QtInfoMsg)

constexpr QFile::Permissions ownerOnly = QFile::ReadOwner | QFile::WriteOwner;

} // namespace

JsonUserDefaults::JsonUserDefaults(QString path) : path_(std::move(path)) { load(); }

QString JsonUserDefaults::defaultPath() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           u"/velorin/preferences.json"_s;
}

void JsonUserDefaults::load() {
    QFile file(path_);
    if (!file.exists())
        return;
    const bool opened = file.open(QIODevice::ReadOnly);
    const auto document = opened ? QJsonDocument::fromJson(file.readAll()) : QJsonDocument();
    isUnreadable_ = !document.isObject();
    if (isUnreadable_)
        qCWarning(preferencesLog).noquote()
            << u"the preferences in %1 cannot be read; the defaults are taken"_s.arg(path_);
    else
        values_ = document.object();
}

std::optional<QJsonValue> JsonUserDefaults::object(const QString& key) const {
    const auto found = values_.find(key);
    return found == values_.end() ? std::nullopt : std::optional(found.value());
}

void JsonUserDefaults::set(const QString& key, const QJsonValue& value) {
    if (values_.value(key) == value)
        return;
    values_.insert(key, value);
    changed();
}

void JsonUserDefaults::remove(const QString& key) {
    if (!values_.contains(key))
        return;
    values_.remove(key);
    changed();
}

Subscription JsonUserDefaults::groupChanges() {
    ++groups_;
    return Subscription([this] {
        if (--groups_ == 0 && hasChanges_)
            write();
    });
}

void JsonUserDefaults::changed() {
    hasChanges_ = true;
    if (groups_ == 0)
        write();
}

void JsonUserDefaults::write() {
    if (!QDir().mkpath(QFileInfo(path_).path()))
        qCWarning(preferencesLog).noquote() << u"the folder of %1 cannot be made"_s.arg(path_);
    keepUnreadable();
    const auto written =
        replaceFile(path_, QJsonDocument(values_).toJson(QJsonDocument::Indented), ownerOnly);
    if (written)
        hasChanges_ = false;
    else
        qCWarning(preferencesLog).noquote()
            << u"the preferences cannot be written: %1"_s.arg(written.error());
}

void JsonUserDefaults::keepUnreadable() {
    if (!isUnreadable_)
        return;
    const QFileInfo file(path_);
    const QString kept = file.path() + u'/' + file.completeBaseName() + u".unreadable.json"_s;
    QFile::remove(kept);
    isUnreadable_ = !QFile::rename(path_, kept) && file.exists();
}

} // namespace velorin
