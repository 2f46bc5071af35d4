#include "platform/linux/desktop/JsonUserDefaults.h"

#include "platform/PrivateFolder.h"
#include "platform/WholeFile.h"
#include "platform/linux/desktop/XdgFolders.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QLoggingCategory>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

Q_LOGGING_CATEGORY(preferencesLog, "dev.orrin.velorin.preferences", QtInfoMsg)

} // namespace

JsonUserDefaults::JsonUserDefaults(QString path) : path_(std::move(path)) { load(); }

QString JsonUserDefaults::defaultPath() { return XdgFolders::configurationFolder() + u"/preferences.json"_s; }

void JsonUserDefaults::load() {
    removeUnfinished(path_);
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
    if (!makePrivateFolder(QFileInfo(path_).path()))
        qCWarning(preferencesLog).noquote() << u"the folder of %1 cannot be made"_s.arg(path_);
    // What cannot be kept is not overwritten either.
    isUnreadable_ = isUnreadable_ && !setUnreadableAside(path_);
    const auto written = isUnreadable_
                             ? tl::unexpected(u"what is there cannot be kept"_s)
                             : replaceFile(path_, QJsonDocument(values_).toJson(QJsonDocument::Indented));
    if (written)
        hasChanges_ = false;
    else
        qCWarning(preferencesLog).noquote()
            << u"the preferences cannot be written: %1"_s.arg(written.error());
}

} // namespace velorin
