/// Secrets by service and account. A locked, absent or silent store reads as "no item". Every call has a
/// deadline of its own. Main thread.
#pragma once

#include <QByteArray>
#include <QString>

#include <functional>
#include <optional>

namespace velorin {

class SecretStore {
public:
    virtual ~SecretStore() = default;

    /// Whether somebody is there already who can be asked: asking starts a store that sleeps, which one may
    /// not want for a mere look.
    [[nodiscard]] virtual bool isAwake() = 0;

    [[nodiscard]] virtual std::optional<QByteArray> read(const QString& service, const QString& account) = 0;
    /// True when the secret has been stored.
    virtual bool add(const QString& service, const QString& account, const QByteArray& secret) = 0;
    virtual void remove(const QString& service, const QString& account) = 0;

    /// Called when what was no item may be one now: the store was unlocked, came up or answers again.
    virtual void setOnChanged(std::function<void()> onChanged) = 0;
};

} // namespace velorin
