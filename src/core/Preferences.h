/// Reads the model's settings from the store of preferences and writes them back, whole.
///
/// Older stores are brought up to date while they are read; what cannot be decoded keeps its default.
/// Main thread.
#pragma once

#include "platform/UserDefaults.h"
#include "shortcuts/ShortcutModels.h"

#include <functional>

namespace velorin {

class AppModel;
enum class AIProvider;

class Preferences final {
public:
    /// `hasLegacyKey` tells whether a provider's key of the time before providers is stored; it is asked
    /// only when nothing else tells the provider.
    Preferences(AppModel& model, UserDefaults& defaults, std::function<bool()> hasLegacyKey);

    void load();
    void persist();

    /// The shortcuts of a store of the time when there was one trigger; its keys are removed.
    [[nodiscard]] static ShortcutConfiguration migrateLegacyTrigger(UserDefaults& defaults);

    /// The provider of a store of the time before providers existed.
    [[nodiscard]] AIProvider inferAIProvider() const;

private:
    void loadShortcuts();
    void loadDictation();
    void loadAI();
    void loadProviderFields();
    void persistAI();

    AppModel& model_;
    UserDefaults& defaults_;
    std::function<bool()> hasLegacyKey_;
};

} // namespace velorin
