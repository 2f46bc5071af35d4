/// Sees to it that one Velorin runs a session: the first to own the name on the session bus.
///
/// A later start tells the first one, which then shows itself, and ends. Without a session bus a lock file
/// decides. Main thread; every call on the bus has a deadline.
#pragma once

#include <QLockFile>
#include <QObject>
#include <QVariant>

#include <functional>
#include <memory>

namespace velorin {

class SingleInstance final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")
public:
    enum class Claim {
        first,   ///< This process is the one.
        another, ///< Another one runs and has been told.
    };

    /// `onActivate` is called in the first instance when a later one was started.
    explicit SingleInstance(std::function<void()> onActivate);
    ~SingleInstance() override;

    [[nodiscard]] Claim claim();
    /// Lets a newcomer be the first.
    void giveUp();

public Q_SLOTS:
    // The interface by which desktops talk to running applications.
    void Activate(const QVariantMap& platformData);
    void Open(const QStringList& uris, const QVariantMap& platformData);
    void ActivateAction(const QString& action, const QVariantList& parameters,
                        const QVariantMap& platformData);

private:
    [[nodiscard]] Claim claimOnBus();
    [[nodiscard]] Claim claimLockFile();

    std::function<void()> onActivate_;
    std::unique_ptr<QLockFile> lock_;
    bool ownsName_ = false;
};

} // namespace velorin
