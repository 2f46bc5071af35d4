#include "platform/linux/desktop/DesktopWorkspace.h"

#include "platform/linux/ChildSetup.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QFileInfo>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

constexpr int deadline = 1000; // milliseconds

/// Whether somebody took the call; not whether anything came of it.
bool call(const QString& service, const QString& path, const QString& interface, const QString& method,
          const QVariantList& arguments) {
    auto message = QDBusMessage::createMethodCall(service, path, interface, method);
    message.setArguments(arguments);
    return QDBusConnection::sessionBus().call(message, QDBus::Block, deadline).type() ==
           QDBusMessage::ReplyMessage;
}

} // namespace

void DesktopWorkspace::revealFile(const QString& path) {
    const QStringList files{QUrl::fromLocalFile(path).toString()};
    if (!call(u"org.freedesktop.FileManager1"_s, u"/org/freedesktop/FileManager1"_s,
              u"org.freedesktop.FileManager1"_s, u"ShowItems"_s, {files, QString()}))
        openUrl(QUrl::fromLocalFile(QFileInfo(path).path()));
}

void DesktopWorkspace::openUrl(const QUrl& url) {
    if (!call(u"org.freedesktop.portal.Desktop"_s, u"/org/freedesktop/portal/desktop"_s,
              u"org.freedesktop.portal.OpenURI"_s, u"OpenURI"_s, {QString(), url.toString(), QVariantMap()}))
        startForTheUser(u"xdg-open"_s, {url.toString()});
}

void DesktopWorkspace::relaunch(const std::function<void()>& giveUpName) {
    giveUpName();
    startForTheUser(QCoreApplication::applicationFilePath(), {});
    QMetaObject::invokeMethod(qApp, &QCoreApplication::quit, Qt::QueuedConnection);
}

} // namespace velorin
