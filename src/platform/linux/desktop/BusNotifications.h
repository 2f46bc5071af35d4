/// Notifications over the session bus. Main thread; every call is sent without waiting for its answer.
#pragma once

#include "platform/Listeners.h"
#include "platform/Notifications.h"

#include <QHash>
#include <QObject>

namespace velorin {

class BusNotifications final : public QObject, public Notifications {
    Q_OBJECT
public:
    BusNotifications();

    void show(Notification notification) override;
    void withdraw(const QString& subject) override;
    [[nodiscard]] bool areShown() const override { return areShown_; }
    [[nodiscard]] Subscription onShownChanged(std::function<void()> action) override {
        return listeners_.add(std::move(action));
    }

private Q_SLOTS:
    // The server's own signals.
    void invoke(uint id, const QString& name);
    void forget(uint id, uint reason);

private:
    /// A notification's number comes later than the wish to replace it or to take it back.
    struct Shown {
        uint id = 0;
        bool isAsked = false; ///< The server has not told the number yet.
        bool isWithdrawn = false;
        bool isOutdated = false;
        Notification content;
    };

    void send(const QString& subject);
    void onNumber(const QString& subject, uint id);
    void setShown(bool value);

    QHash<QString, Shown> shown_;
    bool areShown_ = true;
    Listeners listeners_;
};

} // namespace velorin
