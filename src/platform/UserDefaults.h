/// The persistent store of preferences: a map from keys to JSON values that keep their own type.
/// Encoded data (a JSON text) is stored as a string. Main thread.
#pragma once

#include "platform/Subscription.h"

#include <QJsonValue>
#include <QString>

#include <optional>

namespace velorin {

class UserDefaults {
public:
    virtual ~UserDefaults() = default;

    /// Nothing when the key is absent.
    [[nodiscard]] virtual std::optional<QJsonValue> object(const QString& key) const = 0;

    /// Takes effect at once; a failure to write to disk is logged by the adapter and loses nothing in
    /// memory.
    virtual void set(const QString& key, const QJsonValue& value) = 0;
    virtual void remove(const QString& key) = 0;

    /// Changes made while the handle lives reach the disk together, when it is destroyed.
    virtual Subscription groupChanges() = 0;
};

} // namespace velorin
