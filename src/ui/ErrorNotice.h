/// Tells an error of the model as a notification of the desktop: one at a time, replaced by the next and
/// taken back when the error is over. Never a dialogue. Main thread.
///
/// Where a text could not be delivered, the notification says how to reach it, and has a button that copies
/// it; what the button copies stays that text, whatever is dictated meanwhile.
#pragma once

#include "platform/Subscription.h"

#include <QObject>

namespace velorin {

class AppModel;
class Notifications;
class Pasteboard;

class ErrorNotice final : public QObject {
    Q_OBJECT
public:
    /// All outlive it.
    ErrorNotice(AppModel& model, Notifications& notifications, Pasteboard& pasteboard, QString historyFile);

    /// The error, and how the text that it left behind is reached; empty without an error.
    [[nodiscard]] QString words() const;

Q_SIGNALS:
    void wordsChanged();

private:
    void refresh();
    [[nodiscard]] QString hint() const;

    AppModel& model_;
    Notifications& notifications_;
    Pasteboard& pasteboard_;
    QString historyFile_;
    Subscription following_;
};

} // namespace velorin
