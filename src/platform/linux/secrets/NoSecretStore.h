/// A desktop without a service for secrets: there is no item, and none can be added.
#pragma once

#include "platform/SecretStore.h"

namespace velorin {

class NoSecretStore final : public SecretStore {
public:
    [[nodiscard]] std::optional<QByteArray> read(const QString&, const QString&) override {
        return std::nullopt;
    }
    bool add(const QString&, const QString&, const QByteArray&) override { return false; }
    void remove(const QString&, const QString&) override {}
};

} // namespace velorin
