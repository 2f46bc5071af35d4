/// The desktop's notifications: a sentence that appears beside everything else and goes by itself. Main
/// thread; never waits, and where nobody shows notifications nothing happens.
#pragma once

#include <QString>

namespace velorin {

class Notifications {
public:
    virtual ~Notifications() = default;

    /// Shows the notification of this subject; one of the same subject that is still there is replaced.
    virtual void show(const QString& subject, const QString& title, const QString& text) = 0;
    /// Takes it back, if it is still there.
    virtual void withdraw(const QString& subject) = 0;
};

} // namespace velorin
