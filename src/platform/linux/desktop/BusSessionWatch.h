/// What the session tells over the two buses: logind (the lock, whose turn it is, sleep) and the desktops'
/// screen savers. All of them are listened to: many a desktop locks by one of them alone.
///
/// Main thread; nothing is waited for, nothing is started that does not run, and without either bus nobody is
/// ever away.
#pragma once

#include "platform/Listeners.h"
#include "platform/SessionWatch.h"

#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusUnixFileDescriptor>
#include <QObject>
#include <QTimer>
#include <QVariantMap>

#include <set>

namespace velorin {

class BusSessionWatch final : public QObject, public SessionWatch {
    Q_OBJECT
public:
    BusSessionWatch();

    [[nodiscard]] bool isAway() const override;
    [[nodiscard]] Subscription onChange(std::function<void()> action) override {
        return listeners_.add(std::move(action));
    }

private Q_SLOTS:
    // The buses' own signals.
    void lock();
    void unlock();
    void readSession(const QString& interface, const QVariantMap& changed, const QStringList& lost);
    void prepareForSleep(bool isGoingToSleep);
    void saverChanged(bool isActive, const QDBusMessage& message);

private:
    /// Why nobody may be there; each is told by itself.
    enum class Reason { locked, hinted, otherUser, asleep, saver };

    void watchSavers();
    void findSession();
    void followSession(const QDBusObjectPath& session);
    void delaySleep();
    void set(Reason reason, bool holds);

    std::set<Reason> reasons_;
    std::set<QString> activeSavers_; ///< By interface.
    QDBusUnixFileDescriptor delay_;  ///< Held, it gives us a moment before the machine sleeps.
    QTimer letSleep_;
    Listeners listeners_;
};

} // namespace velorin
