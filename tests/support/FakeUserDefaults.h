/// Preferences in memory; knows what was written and removed, in order.
#pragma once

#include "platform/UserDefaults.h"

#include <QJsonObject>
#include <QStringList>

namespace velorin {

class FakeUserDefaults final : public UserDefaults {
public:
    QJsonObject values;
    QStringList written;
    QStringList removed;

    std::optional<QJsonValue> object(const QString& key) const override {
        return values.contains(key) ? std::optional(values.value(key)) : std::nullopt;
    }
    void set(const QString& key, const QJsonValue& value) override {
        written.append(key);
        values.insert(key, value);
    }
    void remove(const QString& key) override {
        removed.append(key);
        values.remove(key);
    }
    Subscription groupChanges() override { return {}; }
};

} // namespace velorin
