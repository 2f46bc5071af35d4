/// The two kinds of hosts that show icons: one over the session bus, one that embeds windows. Main thread;
/// sleeps until one comes or goes.
#pragma once

#include "platform/TrayHosts.h"
#include "platform/linux/x11/X11SelectionOwners.h"

#include <QDBusServiceWatcher>
#include <QObject>

namespace velorin {

class SessionTrayHosts final : public QObject, public TrayHosts {
    Q_OBJECT
public:
    SessionTrayHosts();

    [[nodiscard]] bool isAnyThere() const override;
    Subscription onChange(std::function<void()> action) override { return listeners_.add(std::move(action)); }

private Q_SLOTS:
    void lookForBusHost();

private:
    void setBusHost(bool isThere);

    X11SelectionOwners owners_;
    QDBusServiceWatcher watcher_;
    bool hasBusHost_ = false;
    Subscription following_;
    Listeners listeners_;
};

} // namespace velorin
