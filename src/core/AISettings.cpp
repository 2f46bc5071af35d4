#include "core/AISettings.h"

#include "ai/Endpoint.h"
#include "core/AppModel.h"
#include "text/WhiteSpace.h"

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

QString trimmedText(const QString& text) {
    return WhiteSpace::trimmed(text, WhiteSpace::Set::whitespacesAndNewlines).toString();
}

} // namespace

AISettings::AISettings(AppModel& model, SecretStore& secrets) : model_(model), keychain_(secrets) {}

void AISettings::selectProvider(AIProvider provider) {
    if (provider == model_.aiProvider())
        return;
    if (model_.aiProvider() != AIProvider::apple)
        model_.storeProviderConfig();
    model_.storeTranscriptionModel();
    model_.setAIProvider(provider);
    const QString row = rawString(provider);
    if (provider != AIProvider::apple) {
        const auto config =
            model_.aiProviderConfigs().value(row, {defaultEndpoint(provider), defaultModel(provider)});
        model_.setAIEndpoint(config.endpoint);
        model_.setAIModel(config.model);
    }
    model_.setAITranscriptionModel(
        model_.aiTranscriptionModels().value(row, defaultTranscriptionModel(provider)));
    refreshKeyState();
    model_.persistPreferences();
}

bool AISettings::saveKey(const QString& key) {
    if (model_.aiProvider() == AIProvider::apple)
        return false;
    const QString trimmed = trimmedText(key);
    if (trimmed.isEmpty())
        return false;
    const bool saved = keychain_.save(trimmed, model_.aiProvider());
    refreshKeyState();
    return saved;
}

void AISettings::refreshKeyState() {
    const bool takesKey = model_.aiProvider() != AIProvider::apple;
    model_.setAIKeyConfigured(takesKey && !keychain_.read(model_.aiProvider()).value_or(QString()).isEmpty());
}

std::optional<AIConfiguration> AISettings::configuration(bool modelAvailable) const {
    const AIProvider provider = model_.aiProvider();
    if (provider == AIProvider::apple)
        return modelAvailable ? std::optional(AIConfiguration{provider, {}, u"Apple Intelligence"_s, {}})
                              : std::nullopt;
    AIConfiguration configuration{
        provider, trimmedText(model_.aiEndpoint()), trimmedText(model_.aiModel()), {}};
    if (configuration.endpoint.isEmpty() || configuration.model.isEmpty())
        return std::nullopt;
    configuration.apiKey = keychain_.read(provider).value_or(QString());
    if (configuration.apiKey.isEmpty() && !Endpoint::isLocal(configuration.endpoint))
        return std::nullopt;
    return configuration;
}

bool AISettings::hasLegacyKey() const { return !keychain_.legacyKey().value_or(QString()).isEmpty(); }

} // namespace velorin
