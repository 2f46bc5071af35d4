/// Secrets in the desktop's Secret Service (GNOME Keyring, KWallet, KeePassXC), through libsecret.
///
/// A service that is locked, absent or silent holds nothing and takes nothing, and nobody is asked to unlock
/// it. Each call waits 3 s at most, all calls before the event loop runs together half a second. After one
/// that was not answered the others are not even asked, until the service answers again; that, an unlocking
/// and a service that comes up later are told as a change.
#pragma once

#include "platform/SecretStore.h"

#include <QObject>

#include <chrono>
#include <memory>

namespace velorin {

class LibSecretStore final : public QObject, public SecretStore {
    Q_OBJECT
public:
    LibSecretStore();
    ~LibSecretStore() override;

    [[nodiscard]] bool isAwake() override;
    [[nodiscard]] std::optional<QByteArray> read(const QString& service, const QString& account) override;
    bool add(const QString& service, const QString& account, const QByteArray& secret) override;
    void remove(const QString& service, const QString& account) override;
    void setOnChanged(std::function<void()> onChanged) override { onChanged_ = std::move(onChanged); }

private Q_SLOTS:
    void changed();

private:
    class Worker;

    [[nodiscard]] std::chrono::milliseconds patience() const;
    template <typename Value, typename Work>
    std::optional<Value> ask(Work work);
    void watchTheBus();

    std::function<void()> onChanged_;
    bool isChangeDue_ = false;
    bool isStartingUp_ = true;
    std::chrono::milliseconds startUpLeft_;
    std::unique_ptr<Worker> worker_;
};

} // namespace velorin
