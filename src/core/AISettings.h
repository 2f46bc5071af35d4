/// The choice of the AI provider, and the key of the current one. Main thread.
#pragma once

#include "ai/AIConfiguration.h"
#include "ai/AIKeychain.h"

namespace velorin {

class AppModel;

class AISettings final {
public:
    AISettings(AppModel& model, SecretStore& secrets);

    /// Swaps in the provider's endpoint and models, keeping the others' for when the user comes back.
    void selectProvider(AIProvider provider);
    /// Stores the key of the current provider; true when it has been stored.
    bool saveKey(const QString& key);
    /// Brings the model's flag up to date with what is stored.
    void refreshKeyState();

    /// What a call needs, with the key read now; nothing when something is missing. To be taken afresh for
    /// each action.
    [[nodiscard]] std::optional<AIConfiguration> configuration(bool modelAvailable) const;

    [[nodiscard]] bool hasLegacyKey() const;
    void migrateLegacyKey(AIProvider target) const { keychain_.migrateLegacyKey(target); }

private:
    AppModel& model_;
    AIKeychain keychain_;
};

} // namespace velorin
