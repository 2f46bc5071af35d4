/// Notifications over the session bus. Main thread; every call is sent without waiting for its answer.
#pragma once

#include "platform/Notifications.h"

#include <QHash>
#include <QObject>

namespace velorin {

class BusNotifications final : public QObject, public Notifications {
    Q_OBJECT
public:
    void show(const QString& subject, const QString& title, const QString& text) override;
    void withdraw(const QString& subject) override;

private:
    /// A notification's number comes later than the wish to replace it or to take it back.
    struct Shown {
        uint id = 0;
        bool isAsked = false; ///< The server has not told the number yet.
        bool isWithdrawn = false;
        QString title;
        QString text;
        bool isOutdated = false;
    };

    void send(const QString& subject);
    void onNumber(const QString& subject, uint id);

    QHash<QString, Shown> shown_;
};

} // namespace velorin
