/// Secrets in memory.
#pragma once

#include "platform/SecretStore.h"

#include <map>

namespace velorin {

class FakeSecretStore final : public SecretStore {
public:
    std::map<QString, QByteArray> items; ///< By account.
    bool canAdd = true;
    bool sleeps = false; ///< Reading wakes it.
    int reads = 0;
    std::function<void()> onChanged;

    bool isAwake() override { return !sleeps; }
    std::optional<QByteArray> read(const QString&, const QString& account) override {
        ++reads;
        sleeps = false;
        const auto found = items.find(account);
        return found == items.end() ? std::nullopt : std::optional(found->second);
    }
    bool add(const QString&, const QString& account, const QByteArray& secret) override {
        if (canAdd)
            items[account] = secret;
        return canAdd;
    }
    void remove(const QString&, const QString& account) override { items.erase(account); }
    void setOnChanged(std::function<void()> action) override { onChanged = std::move(action); }
};

} // namespace velorin
