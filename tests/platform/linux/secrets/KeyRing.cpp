#include "tests/platform/linux/secrets/KeyRing.h"

#include "tests/support/WaitUntil.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusObjectPath>

#include <csignal>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

constexpr int patience = 20'000; // milliseconds; the machine may be busy
const QString busName = u"org.freedesktop.secrets"_s;

} // namespace

KeyRing::KeyRing() {
    qputenv("XDG_DATA_HOME", home_.path().toLocal8Bit());
    qputenv("XDG_RUNTIME_DIR", home_.path().toLocal8Bit());
    qputenv("HOME", home_.path().toLocal8Bit());
    bus_.start(u"dbus-daemon"_s, {u"--session"_s, u"--nofork"_s, u"--print-address"_s});
    while (!bus_.canReadLine() && bus_.waitForReadyRead(patience)) {
    }
    qputenv("DBUS_SESSION_BUS_ADDRESS", bus_.readLine().trimmed());
}

KeyRing::~KeyRing() {
    stop();
    bus_.terminate();
    bus_.waitForFinished(patience);
}

bool KeyRing::isOnTheBus() const {
    return QDBusConnection::sessionBus().interface()->isServiceRegistered(busName);
}

bool KeyRing::start() {
    service_.start(u"gnome-keyring-daemon"_s, {u"--foreground"_s, u"--components=secrets"_s, u"--unlock"_s});
    service_.write("\n");
    service_.closeWriteChannel();
    return waitUntil([this] { return isOnTheBus(); }, std::chrono::milliseconds(patience));
}

void KeyRing::stop() {
    thaw();
    service_.kill();
    service_.waitForFinished(patience);
}

void KeyRing::freeze() { kill(static_cast<pid_t>(service_.processId()), SIGSTOP); }
void KeyRing::thaw() {
    if (service_.processId() > 0)
        kill(static_cast<pid_t>(service_.processId()), SIGCONT);
}

bool KeyRing::lock() {
    auto message = QDBusMessage::createMethodCall(busName, u"/org/freedesktop/secrets"_s,
                                                  u"org.freedesktop.Secret.Service"_s, u"Lock"_s);
    const QList<QDBusObjectPath> collections{QDBusObjectPath(u"/org/freedesktop/secrets/collection/login"_s)};
    message.setArguments({QVariant::fromValue(collections)});
    return QDBusConnection::sessionBus().call(message, QDBus::Block, patience).type() ==
           QDBusMessage::ReplyMessage;
}

bool KeyRing::unlock() {
    QProcess login;
    login.start(u"gnome-keyring-daemon"_s, {u"--unlock"_s});
    login.write("\n");
    login.closeWriteChannel();
    return login.waitForFinished(patience);
}

bool KeyRing::tool(const QStringList& arguments, const QByteArray& input) {
    QProcess process;
    process.start(u"secret-tool"_s, arguments);
    process.write(input);
    process.closeWriteChannel();
    return process.waitForFinished(patience) && process.exitCode() == 0;
}

} // namespace velorin
