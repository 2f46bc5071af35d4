/// The user's wishes as the desktop portal tells them: dark or light, and whether things may move. Asked
/// once, without waiting, and told of changes. Main thread.
#pragma once

#include "platform/Appearance.h"
#include "platform/Listeners.h"

#include <QDBusVariant>
#include <QObject>

namespace velorin {

class PortalAppearance final : public QObject, public Appearance {
    Q_OBJECT
public:
    PortalAppearance();

    [[nodiscard]] std::optional<bool> prefersDark() const override { return prefersDark_; }
    [[nodiscard]] bool reducesMotion() const override { return reducesMotion_; }
    Subscription onChange(std::function<void()> action) override { return listeners_.add(std::move(action)); }

private Q_SLOTS:
    void onSettingChanged(const QString& space, const QString& key, const QDBusVariant& value);

private:
    void ask(const QString& space, const QString& key);

    std::optional<bool> prefersDark_;
    bool reducesMotion_ = false;
    Listeners listeners_;
};

} // namespace velorin
