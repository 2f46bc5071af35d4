#include "tests/platform/linux/secrets/KeyRing.h"

#include "tests/support/WaitUntil.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDataStream>
#include <QDir>
#include <QFile>
#include <QLocalSocket>

#include <csignal>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

constexpr int patience = 20'000; // milliseconds; the machine may be busy
const QByteArray password = "\n";
const QString busName = u"org.freedesktop.secrets"_s;

/// Without the services of the system's own: nothing is started because somebody asks for it, unless the test
/// has put it into the folder.
constexpr char busConfiguration[] = R"(<busconfig>
  <type>session</type>
  <listen>unix:tmpdir=/tmp</listen>
  <servicedir>%1</servicedir>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>
)";

} // namespace

KeyRing::KeyRing() {
    qputenv("XDG_DATA_HOME", home_.path().toLocal8Bit());
    qputenv("XDG_RUNTIME_DIR", home_.path().toLocal8Bit());
    qputenv("HOME", home_.path().toLocal8Bit());
    const QString configuration = home_.filePath(u"bus.conf"_s);
    QFile file(configuration);
    QDir(home_.path()).mkdir(u"services"_s);
    const auto text = QString::fromLatin1(busConfiguration).arg(home_.filePath(u"services"_s)).toUtf8();
    if (!file.open(QIODevice::WriteOnly) || file.write(text) < 0 || !file.flush())
        qFatal("the bus of the test has no configuration");
    bus_.start(u"dbus-daemon"_s, {u"--config-file="_s + configuration, u"--nofork"_s, u"--print-address"_s});
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
    service_.write(password);
    service_.closeWriteChannel();
    return waitUntil([this] { return isOnTheBus(); }, std::chrono::milliseconds(patience));
}

void KeyRing::stop() {
    thaw();
    service_.kill();
    service_.waitForFinished(patience);
}

void KeyRing::offerToStart() {
    QFile file(home_.filePath(u"services/"_s + busName + u".service"_s));
    const QString text =
        u"[D-BUS Service]\nName=%1\nExec=/bin/sh -c \"touch %2; exit 1\"\n"_s.arg(busName, noteOfStart());
    if (!file.open(QIODevice::WriteOnly) || file.write(text.toUtf8()) < 0)
        qFatal("the service of the test cannot be offered");
    file.close();
    QDBusConnection::sessionBus().call(
        QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s,
                                       u"org.freedesktop.DBus"_s, u"ReloadConfig"_s),
        QDBus::Block, patience);
}

bool KeyRing::wasStartedForSomebody() const { return QFile::exists(noteOfStart()); }

void KeyRing::endBus() {
    bus_.kill();
    bus_.waitForFinished(patience);
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
    constexpr quint32 unlockOperation = 1;
    QByteArray message;
    QDataStream stream(&message, QIODevice::WriteOnly);
    // A byte that carries who we are; then the length of what follows it, the operation, and a counted text.
    stream << quint8(0) << quint32(12 + password.size()) << unlockOperation << password;
    QLocalSocket control;
    control.connectToServer(home_.filePath(u"keyring/control"_s));
    if (!control.waitForConnected(patience))
        return false;
    control.write(message);
    while (control.bytesAvailable() < 8 && control.waitForReadyRead(patience)) {
    }
    return control.readAll() == QByteArray::fromHex("0000000800000000");
}

bool KeyRing::tool(const QStringList& arguments, const QByteArray& input) {
    QProcess process;
    process.start(u"secret-tool"_s, arguments);
    process.write(input);
    process.closeWriteChannel();
    return process.waitForFinished(patience) && process.exitCode() == 0;
}

} // namespace velorin
