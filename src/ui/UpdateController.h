/// Where new versions come from: the system's package manager. What a program of ours could do better is to
/// show what there is, so asking for updates opens the project's page of releases. Main thread.
#pragma once

#include <QString>

namespace velorin {

class Workspace;

class UpdateController final {
public:
    explicit UpdateController(Workspace& workspace) : workspace_(workspace) {}

    void checkForUpdates();

    /// What the row says in its tool tip.
    [[nodiscard]] static QString explanation();

private:
    Workspace& workspace_;
};

} // namespace velorin
