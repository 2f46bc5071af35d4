/// Tells an error of the model as a notification of the desktop: one at a time, replaced by the next and
/// taken back when the error is over. Never a dialogue. Main thread.
#pragma once

#include <QObject>

namespace velorin {

class AppModel;
class Notifications;

class ErrorNotice final : public QObject {
    Q_OBJECT
public:
    /// Both outlive it.
    ErrorNotice(AppModel& model, Notifications& notifications);

private:
    void refresh();

    AppModel& model_;
    Notifications& notifications_;
};

} // namespace velorin
