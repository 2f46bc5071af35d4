#include "platform/linux/desktop/PortalAppearance.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

constexpr int deadline = 3000; // milliseconds; nobody waits for it
const QString service = u"org.freedesktop.portal.Desktop"_s;
const QString path = u"/org/freedesktop/portal/desktop"_s;
const QString interface = u"org.freedesktop.portal.Settings"_s;
const QString appearanceSpace = u"org.freedesktop.appearance"_s;
const QString colorScheme = u"color-scheme"_s;
const QString interfaceSpace = u"org.gnome.desktop.interface"_s;
const QString enableAnimations = u"enable-animations"_s;

/// Portals wrap the value once, older ones twice.
QVariant unwrapped(QVariant value) {
    while (value.canConvert<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    return value;
}

} // namespace

PortalAppearance::PortalAppearance() {
    auto bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return;
    bus.connect(service, path, interface, u"SettingChanged"_s, this,
                SLOT(onSettingChanged(QString, QString, QDBusVariant)));
    ask(appearanceSpace, colorScheme);
    ask(interfaceSpace, enableAnimations);
}

void PortalAppearance::ask(const QString& space, const QString& key) {
    auto message = QDBusMessage::createMethodCall(service, path, interface, u"Read"_s);
    message.setArguments({space, key});
    auto watcher = std::make_unique<QDBusPendingCallWatcher>(
        QDBusConnection::sessionBus().asyncCall(message, deadline), this);
    connect(watcher.get(), &QDBusPendingCallWatcher::finished, this,
            [this, space, key](QDBusPendingCallWatcher* call) {
                const QDBusPendingReply<QDBusVariant> reply = *call;
                if (!reply.isError())
                    onSettingChanged(space, key, reply.value());
                call->deleteLater();
            });
    (void)watcher.release(); // its parent keeps it until it has answered
}

void PortalAppearance::onSettingChanged(const QString& space, const QString& key, const QDBusVariant& value) {
    const auto plain = unwrapped(QVariant::fromValue(value));
    if (space == appearanceSpace && key == colorScheme) {
        constexpr uint dark = 1;
        constexpr uint light = 2;
        const uint scheme = plain.toUInt();
        prefersDark_ = scheme == dark || scheme == light ? std::optional(scheme == dark) : std::nullopt;
    } else if (space == interfaceSpace && key == enableAnimations) {
        reducesMotion_ = !plain.toBool();
    } else {
        return;
    }
    listeners_.tell();
}

} // namespace velorin
