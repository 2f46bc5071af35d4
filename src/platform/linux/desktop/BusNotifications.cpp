#include "platform/linux/desktop/BusNotifications.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

#include <algorithm>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

constexpr int deadline = 3000; // milliseconds
const QString interfaceName = u"org.freedesktop.Notifications"_s;
const QString objectPath = u"/org/freedesktop/Notifications"_s;

QDBusMessage call(const QString& method, const QVariantList& arguments) {
    auto message = QDBusMessage::createMethodCall(interfaceName, objectPath, interfaceName, method);
    message.setArguments(arguments);
    return message;
}

} // namespace

BusNotifications::BusNotifications() {
    auto bus = QDBusConnection::sessionBus();
    bus.connect(QString(), objectPath, interfaceName, u"ActionInvoked"_s, this, SLOT(invoke(uint, QString)));
    bus.connect(QString(), objectPath, interfaceName, u"NotificationClosed"_s, this,
                SLOT(forget(uint, uint)));
}

void BusNotifications::show(Notification notification) {
    const QString subject = notification.subject;
    auto& shown = shown_[subject];
    shown.content = std::move(notification);
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
    QStringList actions;
    for (const auto& action : shown.content.actions)
        actions << action.name << action.label;
    // Servers may read the text as markup.
    const auto message =
        call(u"Notify"_s, {u"Velorin"_s, shown.id, u"dev.orrin.velorin"_s, shown.content.title,
                           shown.content.text.toHtmlEscaped(), actions, hints, untilTheServerThinksFit});
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
    setShown(id != 0);
}

void BusNotifications::setShown(bool value) {
    if (std::exchange(areShown_, value) != value)
        listeners_.tell();
}

void BusNotifications::invoke(uint id, const QString& name) {
    for (const auto& shown : std::as_const(shown_)) {
        if (id == 0 || shown.id != id)
            continue;
        const auto actions = shown.content.actions;
        const auto action =
            std::ranges::find_if(actions, [&name](const auto& offered) { return offered.name == name; });
        if (action == actions.end())
            return;
        withdraw(shown.content.subject);
        action->carryOut();
        return;
    }
}

void BusNotifications::forget(uint id, uint /*reason*/) {
    for (auto shown = shown_.begin(); shown != shown_.end(); ++shown) {
        if (id == 0 || shown->id != id)
            continue;
        // One that is on its way again keeps its place; only its number is worth nothing any more.
        shown->id = 0;
        shown->content.actions.clear();
        if (!shown->isAsked)
            shown_.erase(shown);
        return;
    }
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
