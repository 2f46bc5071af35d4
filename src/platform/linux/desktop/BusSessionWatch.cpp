#include "platform/linux/desktop/BusSessionWatch.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

#include <array>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

constexpr int deadline = 3000; // milliseconds; nobody waits for it
/// Closing the microphone takes 50 ms, and logind waits five seconds at most.
constexpr std::chrono::milliseconds momentBeforeSleep{300};

const QString login = u"org.freedesktop.login1"_s;
const QString loginPath = u"/org/freedesktop/login1"_s;
const QString manager = u"org.freedesktop.login1.Manager"_s;
const QString session = u"org.freedesktop.login1.Session"_s;
const QString properties = u"org.freedesktop.DBus.Properties"_s;

struct Saver {
    QLatin1StringView name; ///< Of the service and of its interface.
    QLatin1StringView path;
};

constexpr std::array savers{
    Saver{"org.freedesktop.ScreenSaver"_L1, "/org/freedesktop/ScreenSaver"_L1},
    Saver{"org.gnome.ScreenSaver"_L1, "/org/gnome/ScreenSaver"_L1},
    Saver{"org.cinnamon.ScreenSaver"_L1, "/org/cinnamon/ScreenSaver"_L1},
    Saver{"org.mate.ScreenSaver"_L1, "/org/mate/ScreenSaver"_L1},
    Saver{"org.xfce.ScreenSaver"_L1, "/org/xfce/ScreenSaver"_L1},
};

/// Asks without waiting, and without starting who does not run.
template <typename... Answer, typename Receive>
void ask(QObject* owner, const QDBusConnection& bus, QDBusMessage question, Receive receive) {
    question.setAutoStartService(false);
    auto watcher = std::make_unique<QDBusPendingCallWatcher>(bus.asyncCall(question, deadline), owner);
    QObject::connect(watcher.get(), &QDBusPendingCallWatcher::finished, owner,
                     [receive](QDBusPendingCallWatcher* finished) {
                         const QDBusPendingReply<Answer...> reply = *finished;
                         if (!reply.isError())
                             receive(reply);
                         finished->deleteLater();
                     });
    (void)watcher.release(); // its parent keeps it until it has answered
}

} // namespace

BusSessionWatch::BusSessionWatch() {
    letSleep_.setSingleShot(true);
    letSleep_.setInterval(momentBeforeSleep);
    connect(&letSleep_, &QTimer::timeout, this, [this] { delay_ = {}; });
    watchSavers();
    findSession();
}

bool BusSessionWatch::isAway() const { return !reasons_.empty(); }

void BusSessionWatch::set(Reason reason, bool holds) {
    const bool wasAway = isAway();
    if (holds)
        reasons_.insert(reason);
    else
        reasons_.erase(reason);
    if (isAway() != wasAway)
        listeners_.tell();
}

void BusSessionWatch::watchSavers() {
    auto bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return;
    for (const auto& saver : savers) {
        bus.connect(QString(), saver.path, saver.name, u"ActiveChanged"_s, this,
                    SLOT(saverChanged(bool, QDBusMessage)));
        ask<bool>(this, bus,
                  QDBusMessage::createMethodCall(saver.name, saver.path, saver.name, u"GetActive"_s),
                  [this, name = QString(saver.name)](const QDBusPendingReply<bool>& reply) {
                      if (reply.value())
                          activeSavers_.insert(name);
                      set(Reason::saver, !activeSavers_.empty());
                  });
    }
}

void BusSessionWatch::saverChanged(bool isActive, const QDBusMessage& message) {
    if (isActive)
        activeSavers_.insert(message.interface());
    else
        activeSavers_.erase(message.interface());
    set(Reason::saver, !activeSavers_.empty());
}

void BusSessionWatch::findSession() {
    auto bus = QDBusConnection::systemBus();
    if (!bus.isConnected())
        return;
    bus.connect(login, loginPath, manager, u"PrepareForSleep"_s, this, SLOT(prepareForSleep(bool)));
    delaySleep();
    auto question = QDBusMessage::createMethodCall(login, loginPath, manager, u"GetSessionByPID"_s);
    question << static_cast<uint>(QCoreApplication::applicationPid());
    ask<QDBusObjectPath>(this, bus, question, [this](const QDBusPendingReply<QDBusObjectPath>& reply) {
        followSession(reply.value());
    });
    // What a service manager of the user's has started is in no session; its own display is asked for then.
    const QString id = qEnvironmentVariable("XDG_SESSION_ID");
    if (id.isEmpty())
        return;
    auto named = QDBusMessage::createMethodCall(login, loginPath, manager, u"GetSession"_s);
    named << id;
    ask<QDBusObjectPath>(this, bus, named, [this](const QDBusPendingReply<QDBusObjectPath>& reply) {
        followSession(reply.value());
    });
}

void BusSessionWatch::followSession(const QDBusObjectPath& path) {
    auto bus = QDBusConnection::systemBus();
    // A second connection of the same signal to the same slot is refused, and that is well.
    bus.connect(login, path.path(), session, u"Lock"_s, this, SLOT(lock()));
    bus.connect(login, path.path(), session, u"Unlock"_s, this, SLOT(unlock()));
    bus.connect(login, path.path(), properties, u"PropertiesChanged"_s, this,
                SLOT(readSession(QString, QVariantMap, QStringList)));
    auto question = QDBusMessage::createMethodCall(login, path.path(), properties, u"GetAll"_s);
    question << session;
    ask<QVariantMap>(this, bus, question, [this](const QDBusPendingReply<QVariantMap>& reply) {
        readSession(session, reply.value(), {});
    });
}

void BusSessionWatch::lock() { set(Reason::locked, true); }

void BusSessionWatch::unlock() { set(Reason::locked, false); }

void BusSessionWatch::readSession(const QString& interface, const QVariantMap& changed,
                                  const QStringList& /*lost*/) {
    if (interface != session)
        return;
    if (const auto hint = changed.constFind(u"LockedHint"_s); hint != changed.constEnd()) {
        set(Reason::hinted, hint->toBool());
        if (!hint->toBool())
            set(Reason::locked, false); // not every locker tells of its end by a signal
    }
    if (const auto active = changed.constFind(u"Active"_s); active != changed.constEnd())
        set(Reason::otherUser, !active->toBool());
}

void BusSessionWatch::prepareForSleep(bool isGoingToSleep) {
    set(Reason::asleep, isGoingToSleep);
    if (isGoingToSleep)
        letSleep_.start();
    else
        delaySleep();
}

void BusSessionWatch::delaySleep() {
    auto question = QDBusMessage::createMethodCall(login, loginPath, manager, u"Inhibit"_s);
    question << u"sleep"_s << u"Velorin"_s << tr("The microphone is closed first.") << u"delay"_s;
    ask<QDBusUnixFileDescriptor>(this, QDBusConnection::systemBus(), question,
                                 [this](const QDBusPendingReply<QDBusUnixFileDescriptor>& reply) {
                                     if (!reasons_.contains(Reason::asleep))
                                         delay_ = reply.value();
                                 });
}

} // namespace velorin
