/// The icon in the tray: the mark, red exactly while a dictation records, the last error in its tool tip, and
/// the menu. It is made when something is there to show it, also long after us: the toolkit looks for a host
/// but once.
///
/// Main thread.
#pragma once

#include "platform/TrayHosts.h"

#include <QSystemTrayIcon>

#include <memory>

namespace velorin {

class AppModel;
class ErrorNotice;
class Theme;

class TrayItem final : public QObject {
    Q_OBJECT
public:
    /// All outlive it.
    TrayItem(AppModel& model, Theme& theme, TrayHosts& hosts, QMenu& menu, const ErrorNotice& error);

    [[nodiscard]] bool isShown() const { return icon_ != nullptr; }
    /// Null where no host is.
    [[nodiscard]] const QSystemTrayIcon* icon() const { return icon_.get(); }

Q_SIGNALS:
    void isShownChanged();

private:
    void makeIfThereIsAHost();
    void refresh();

    AppModel& model_;
    Theme& theme_;
    TrayHosts& hosts_;
    QMenu& menu_;
    const ErrorNotice& error_;
    std::unique_ptr<QSystemTrayIcon> icon_;
    Subscription following_;
};

} // namespace velorin
