#include "app/SingleInstance.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDir>
#include <QStandardPaths>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

constexpr int deadline = 2000; // milliseconds
const QString busName = u"dev.orrin.velorin"_s;
const QString objectPath = u"/dev/orrin/velorin"_s;

QDBusMessage callBus(const QString& method, const QVariantList& arguments) {
    auto message = QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s,
                                                  u"org.freedesktop.DBus"_s, method);
    message.setArguments(arguments);
    return QDBusConnection::sessionBus().call(message, QDBus::Block, deadline);
}

/// In the runtime folder, else among the user's data.
QString lockPath() {
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    const QString folder = !runtime.isEmpty() && QDir(runtime).exists()
                               ? runtime
                               : QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    QDir().mkpath(folder);
    return folder + u"/velorin.lock"_s;
}

} // namespace

SingleInstance::SingleInstance(std::function<void()> onActivate) : onActivate_(std::move(onActivate)) {}

SingleInstance::~SingleInstance() { giveUp(); }

SingleInstance::Claim SingleInstance::claim() {
    return QDBusConnection::sessionBus().isConnected() ? claimOnBus() : claimLockFile();
}

SingleInstance::Claim SingleInstance::claimOnBus() {
    // Before the name, so that nobody calls an object that is not there yet.
    QDBusConnection::sessionBus().registerObject(objectPath, this, QDBusConnection::ExportAllSlots);
    constexpr uint doNotQueue = 4;
    constexpr uint primaryOwner = 1;
    constexpr uint alreadyOwner = 4;
    const auto reply = callBus(u"RequestName"_s, {busName, doNotQueue});
    const uint result = reply.type() == QDBusMessage::ReplyMessage ? reply.arguments().value(0).toUInt() : 0;
    if (result == 0)
        return claimLockFile(); // The bus does not answer.
    ownsName_ = result == primaryOwner || result == alreadyOwner;
    if (ownsName_)
        return Claim::first;
    auto activate =
        QDBusMessage::createMethodCall(busName, objectPath, u"org.freedesktop.Application"_s, u"Activate"_s);
    activate.setArguments({QVariantMap()});
    QDBusConnection::sessionBus().call(activate, QDBus::Block, deadline);
    return Claim::another;
}

SingleInstance::Claim SingleInstance::claimLockFile() {
    lock_ = std::make_unique<QLockFile>(lockPath());
    lock_->setStaleLockTime(0);
    if (lock_->tryLock())
        return Claim::first;
    // A folder that cannot be written must not keep the program from starting.
    return lock_->error() == QLockFile::LockFailedError ? Claim::another : Claim::first;
}

void SingleInstance::giveUp() {
    if (std::exchange(ownsName_, false))
        callBus(u"ReleaseName"_s, {busName});
    lock_.reset();
}

void SingleInstance::Activate(const QVariantMap&) { onActivate_(); }
void SingleInstance::Open(const QStringList&, const QVariantMap&) { onActivate_(); }
void SingleInstance::ActivateAction(const QString&, const QVariantList&, const QVariantMap&) {
    onActivate_();
}

} // namespace velorin
