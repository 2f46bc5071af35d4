#include "platform/linux/desktop/BusNotifications.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

constexpr int deadline = 3000; // milliseconds

QDBusMessage call(const QString& method, const QVariantList& arguments) {
    auto message = QDBusMessage::createMethodCall(u"org.freedesktop.Notifications"_s,
                                                  u"/org/freedesktop/Notifications"_s,
                                                  u"org.freedesktop.Notifications"_s, method);
    message.setArguments(arguments);
    return message;
}

} // namespace

void BusNotifications::show(const QString& subject, const QString& title, const QString& text) {
    auto& shown = shown_[subject];
    shown.title = title;
    shown.text = text;
    shown.isWithdrawn = false;
    if (shown.isAsked)
        shown.isOutdated = true; // sent again once the number is known, so that it replaces
    else
        send(subject);
}

void BusNotifications::send(const QString& subject) {
    auto& shown = shown_[subject];
    shown.isAsked = true;
    shown.isOutdated = false;
    constexpr int untilTheServerThinksFit = -1;
    const QVariantMap hints{{u"desktop-entry"_s, u"dev.orrin.velorin"_s}};
    // Servers may read the text as markup.
    const auto message =
        call(u"Notify"_s, {u"Velorin"_s, shown.id, u"dev.orrin.velorin"_s, shown.title,
                           shown.text.toHtmlEscaped(), QStringList(), hints, untilTheServerThinksFit});
    auto watcher = std::make_unique<QDBusPendingCallWatcher>(
        QDBusConnection::sessionBus().asyncCall(message, deadline), this);
    connect(watcher.get(), &QDBusPendingCallWatcher::finished, this,
            [this, subject](QDBusPendingCallWatcher* finished) {
                const QDBusPendingReply<uint> reply = *finished;
                onNumber(subject, reply.isError() ? 0 : reply.value());
                finished->deleteLater();
            });
    (void)watcher.release(); // its parent keeps it until it has answered
}

void BusNotifications::onNumber(const QString& subject, uint id) {
    auto& shown = shown_[subject];
    shown.isAsked = false;
    shown.id = id;
    if (shown.isWithdrawn)
        withdraw(subject);
    else if (shown.isOutdated && id != 0)
        send(subject);
}

void BusNotifications::withdraw(const QString& subject) {
    const auto shown = shown_.find(subject);
    if (shown == shown_.end())
        return;
    shown->isWithdrawn = true;
    if (shown->isAsked)
        return;
    if (shown->id != 0)
        QDBusConnection::sessionBus().asyncCall(call(u"CloseNotification"_s, {shown->id}), deadline);
    shown_.erase(shown);
}

} // namespace velorin
