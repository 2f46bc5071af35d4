/// What the desktop opens and starts for us: addresses, files in the file manager, this program anew.
///
/// Every question over the bus has a deadline. Main thread.
#pragma once

#include <QUrl>

#include <functional>

namespace velorin {

class DesktopWorkspace final {
public:
    /// Shows the file, selected, in the file manager; where none answers, opens its folder.
    static void revealFile(const QString& path);
    /// Opens the address in the program that the user has chosen for it.
    static void openUrl(const QUrl& url);
    /// Starts this program anew, detached, and then ends this process, whatever came of it. Before, the name
    /// on the bus is given up by `giveUpName`: the newcomer must not take us for the running instance.
    static void relaunch(const std::function<void()>& giveUpName);
};

} // namespace velorin
