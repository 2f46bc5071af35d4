/// Preferences in one JSON file, readable by the user only.
///
/// A change is on the disk when the call returns, in one step: a crash leaves the old or the new file. A file
/// that cannot be parsed is kept beside it as "<name>.unreadable.json", or with the next number that is free,
/// before a new one is first written. When the file cannot be written, that is logged, memory stays right,
/// and the next change tries again. Main thread.
#pragma once

#include "platform/UserDefaults.h"

#include <QJsonObject>

namespace velorin {

class JsonUserDefaults final : public UserDefaults {
public:
    /// Reads the file, which need not exist; its folder is made at the first change.
    explicit JsonUserDefaults(QString path);

    [[nodiscard]] std::optional<QJsonValue> object(const QString& key) const override;
    void set(const QString& key, const QJsonValue& value) override;
    void remove(const QString& key) override;
    Subscription groupChanges() override;

    /// "preferences.json" in the folder where the desktop keeps configuration.
    [[nodiscard]] static QString defaultPath();

private:
    void load();
    void changed();
    void write();

    QString path_;
    QJsonObject values_;
    int groups_ = 0;
    bool hasChanges_ = false;
    bool isUnreadable_ = false;
};

} // namespace velorin
