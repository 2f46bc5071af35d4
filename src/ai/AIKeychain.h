/// Where the providers' API keys live: one item per provider in the secret store, nowhere else.
///
/// Holds no state and keeps no key. Main thread; each call has the store's deadline.
#pragma once

#include "ai/AIProvider.h"
#include "platform/SecretStore.h"

namespace velorin {

class AIKeychain final {
public:
    explicit AIKeychain(SecretStore& store) : store_(store) {}

    /// The account of the key that was kept before there were several providers.
    [[nodiscard]] static QString legacyAccount();
    [[nodiscard]] static QString account(AIProvider provider);

    /// Nothing when there is no item, or its bytes are no text.
    [[nodiscard]] std::optional<QString> read(const QString& account) const;
    [[nodiscard]] std::optional<QString> read(AIProvider provider) const { return read(account(provider)); }

    /// Replaces the provider's key. True when it has been stored; otherwise the old one is gone as well.
    bool save(const QString& key, AIProvider provider) const;

    /// The key of the time before providers. Nobody is woken for it: most have none.
    [[nodiscard]] std::optional<QString> legacyKey() const;
    /// Moves the key of the time before providers to `target`, unless that has one; `apple` takes none.
    void migrateLegacyKey(AIProvider target) const;

private:
    SecretStore& store_;
};

} // namespace velorin
