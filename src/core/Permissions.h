/// The model's view of what the session permits, and the re-arming of the shortcuts after a change.
///
/// The model's two flags are snapshots: whoever acts on a permission asks anew. Main thread.
#pragma once

namespace velorin {

class AppModel;
class ShortcutBackend;
struct Platform;

class Permissions final {
public:
    Permissions(AppModel& model, Platform& platform, ShortcutBackend& shortcuts);

    /// Brings both flags up to date and starts the tap unless the shortcuts are disabled. A call made
    /// while one is running returns at once.
    void refresh();
    /// Hands the model's shortcuts to the tap; starts it unless they are disabled.
    void applyActivation();
    /// Starts the program anew and ends this process.
    void relaunch();

private:
    AppModel& model_;
    Platform& platform_;
    ShortcutBackend& shortcuts_;
    bool isRefreshing_ = false;
};

} // namespace velorin
