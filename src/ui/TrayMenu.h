/// The tray icon with its menu: it shows whether a dictation runs, says the last error in its tool tip, and
/// starts and stops. Reads the model and decides nothing. Main thread.
#pragma once

#include <QAction>
#include <QMenu>
#include <QSystemTrayIcon>

namespace velorin {

class AppModel;

class TrayMenu final : public QObject {
    Q_OBJECT
public:
    /// The model outlives it.
    explicit TrayMenu(AppModel& model);

private:
    void update();

    AppModel& model_;
    QMenu menu_;
    QAction* primary_;
    QSystemTrayIcon icon_;
};

} // namespace velorin
