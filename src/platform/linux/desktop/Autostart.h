/// Start at login: a desktop file among those that the session starts, in the user's own folder. Main thread.
#pragma once

#include "platform/LoginItem.h"

#include <QString>

namespace velorin {

class Autostart final : public LoginItem {
public:
    /// `folder`: where the session looks; `program`: what it starts.
    explicit Autostart(QString folder = standardFolder(), QString program = runningProgram());

    [[nodiscard]] bool isEnabled() const override;
    void setEnabled(bool value) override;

    [[nodiscard]] static QString standardFolder();
    [[nodiscard]] static QString runningProgram();

private:
    [[nodiscard]] QString path() const;

    QString folder_;
    QString program_;
};

} // namespace velorin
