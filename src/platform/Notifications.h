/// The desktop's notifications: a sentence that appears beside everything else and goes by itself. Main
/// thread; never waits.
///
///     notifications.show({.subject = u"error"_s, .title = …, .text = …,
///                         .actions = {{u"copy"_s, tr("Copy"), [] { … }}}});
#pragma once

#include "platform/Subscription.h"

#include <QString>

#include <functional>
#include <vector>

namespace velorin {

struct Notification {
    /// A button; carried out at most once a notification, which then goes.
    struct Action {
        QString name; ///< Of letters; unique within the notification.
        QString label;
        std::function<void()> carryOut;
    };

    QString subject; ///< One of the same subject that is still there is replaced.
    QString title;
    QString text;
    std::vector<Action> actions = {};
};

class Notifications {
public:
    virtual ~Notifications() = default;

    virtual void show(Notification notification) = 0;
    /// Takes it back, if it is still there.
    virtual void withdraw(const QString& subject) = 0;

    /// Whether anybody shows them: as far as is known, and true until the first was refused.
    [[nodiscard]] virtual bool areShown() const = 0;
    /// Called when that changes.
    [[nodiscard]] virtual Subscription onShownChanged(std::function<void()> action) = 0;
};

} // namespace velorin
