#include "app/SessionTrayHosts.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

constexpr auto embeddingTray = "_NET_SYSTEM_TRAY_S0";
const QString busTray = u"org.kde.StatusNotifierWatcher"_s;
constexpr int deadline = 2000; // milliseconds; nobody waits for it

} // namespace

SessionTrayHosts::SessionTrayHosts()
    : owners_({embeddingTray}),
      watcher_(busTray, QDBusConnection::sessionBus(), QDBusServiceWatcher::WatchForOwnerChange),
      following_(owners_.onChange([this] { listeners_.tell(); })) {
    connect(&watcher_, &QDBusServiceWatcher::serviceRegistered, this, &SessionTrayHosts::lookForBusHost);
    connect(&watcher_, &QDBusServiceWatcher::serviceUnregistered, this, [this] { setBusHost(false); });
    // The panel often registers a moment after its watcher took the name.
    QDBusConnection::sessionBus().connect(busTray, u"/StatusNotifierWatcher"_s, busTray,
                                          u"StatusNotifierHostRegistered"_s, this, SLOT(lookForBusHost()));
    lookForBusHost();
}

bool SessionTrayHosts::isAnyThere() const { return hasBusHost_ || owners_.hasOwner(embeddingTray); }

/// A watcher alone shows nothing: some desktops run one without any panel that would.
void SessionTrayHosts::lookForBusHost() {
    if (!QDBusConnection::sessionBus().isConnected())
        return;
    auto message = QDBusMessage::createMethodCall(busTray, u"/StatusNotifierWatcher"_s,
                                                  u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
    message.setArguments({busTray, u"IsStatusNotifierHostRegistered"_s});
    message.setAutoStartService(false);
    auto call = std::make_unique<QDBusPendingCallWatcher>(
        QDBusConnection::sessionBus().asyncCall(message, deadline), this);
    connect(call.get(), &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher* finished) {
        const QDBusPendingReply<QDBusVariant> reply = *finished;
        if (!reply.isError())
            setBusHost(reply.value().variant().toBool());
        finished->deleteLater();
    });
    (void)call.release(); // its parent keeps it until it has answered
}

void SessionTrayHosts::setBusHost(bool isThere) {
    if (std::exchange(hasBusHost_, isThere) != isThere)
        listeners_.tell();
}

} // namespace velorin
