/// The desktop around us: who is in front, and what the desktop opens for us. Main thread. Every
/// operation has a deadline; one that fails reads as "nothing is there" or does nothing.
#pragma once

#include "platform/RunningApplication.h"

#include <QUrl>

#include <chrono>

namespace velorin {

class Workspace {
public:
    virtual ~Workspace() = default;

    [[nodiscard]] virtual std::optional<RunningApplication> frontmostApplication() = 0;

    /// Whether the application is this very process.
    [[nodiscard]] virtual bool isCurrent(const RunningApplication& application) const = 0;

    /// Asks the window manager to bring the application's window to the front. Does not wait for it.
    virtual void activate(const RunningApplication& application) = 0;

    /// Waits until a window of the application is in front. False when that does not come about within the
    /// deadline, or the application is gone.
    [[nodiscard]] virtual bool awaitFrontmost(const RunningApplication& application,
                                              std::chrono::milliseconds deadline) = 0;

    /// The title of the application's window that was in front; nothing when it has none.
    [[nodiscard]] virtual std::optional<QString> windowTitle(const RunningApplication& application) = 0;

    /// Puts the text at the cursor of our own window that has the keyboard. False when none of ours has one.
    [[nodiscard]] virtual bool insertIntoOwnWindow(const QString& text) = 0;

    /// Shows the file, selected, in the file manager.
    virtual void revealFile(const QString& path) = 0;
    virtual void openUrl(const QUrl& url) = 0;

    /// Starts this program anew and ends this process, also if the new one could not be started.
    virtual void relaunch() = 0;
};

} // namespace velorin
