/// The menu of the tray icon, kept equal to its rows while the model changes. Main thread.
#pragma once

#include "ui/MenuRows.h"

#include <QMenu>

namespace velorin {

class UpdateController;

class MenuContent final : public QObject {
    Q_OBJECT
public:
    /// Both outlive it.
    MenuContent(AppModel& model, UpdateController& updater);

    [[nodiscard]] QMenu& menu() { return menu_; }

Q_SIGNALS:
    void settingsRequested();
    void onboardingRequested();

private:
    void refresh();
    void rebuild(const QList<MenuRows::Row>& rows);
    void carryOut(MenuRows::Kind kind);

    AppModel& model_;
    UpdateController& updater_;
    QMenu menu_;
    QList<MenuRows::Row> rows_;
};

} // namespace velorin
