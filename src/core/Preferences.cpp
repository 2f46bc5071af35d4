#include "core/Preferences.h"

#include "ai/Endpoint.h"
#include "core/AppModel.h"
#include "platform/DefaultsValues.h"
#include "platform/Log.h"
#include "shortcuts/ShortcutKeyNames.h"
#include "text/CaseMapping.h"
#include "text/WhiteSpace.h"

#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>
#include <array>
#include <limits>

using namespace Qt::Literals::StringLiterals;

namespace velorin {
namespace {

constexpr qint64 longestMinutes = 24LL * 60; // nobody dictates for longer than a day

/// A modifier word of the older store, bit by bit.
ShortcutModifiers modifiersFromLegacyWord(qint64 word) {
    const std::array table{
        std::pair{0x100000, ShortcutModifiers::command}, std::pair{0x40000, ShortcutModifiers::control},
        std::pair{0x80000, ShortcutModifiers::option}, std::pair{0x20000, ShortcutModifiers::shift},
        std::pair{0x800000, ShortcutModifiers::function}};
    ShortcutModifiers modifiers;
    for (const auto& [bit, modifier] : table)
        if (word & bit)
            modifiers = modifiers | modifier;
    return modifiers;
}

ShortcutConfiguration configurationFromLegacyShortcut(const UserDefaults& defaults, bool holdToTalk) {
    const qint64 keyCode = DefaultsValues::integer(defaults, u"shortcutKeyCode"_s);
    const qint64 modifierWord = DefaultsValues::integer(defaults, u"shortcutModifiers"_s);
    if (keyCode < 0 || keyCode > std::numeric_limits<quint16>::max() || modifierWord < 0) {
        // To end here would end every start from now on.
        qCWarning(shortcutLog) << "the stored shortcut is out of range; the default shortcuts are taken";
        return ShortcutConfiguration::defaultConfiguration();
    }
    ShortcutBinding binding;
    binding.keyCode = static_cast<quint16>(keyCode);
    binding.keyDisplay = ShortcutKeyNames::name(binding.keyCode);
    binding.modifiers = modifiersFromLegacyWord(modifierWord);
    binding.kind = ShortcutBindingKind::key;
    auto configuration = ShortcutConfiguration::disabled();
    (holdToTalk ? configuration.hold : configuration.toggle) = binding;
    return configuration;
}

QJsonObject toJsonMap(const QHash<QString, QString>& map) {
    QJsonObject object;
    for (auto entry = map.begin(); entry != map.end(); ++entry)
        object[entry.key()] = entry.value();
    return object;
}

} // namespace

Preferences::Preferences(AppModel& model, UserDefaults& defaults, std::function<bool()> hasLegacyKey)
    : model_(model), defaults_(defaults), hasLegacyKey_(std::move(hasLegacyKey)) {}

void Preferences::load() {
    const auto group = defaults_.groupChanges();
    loadShortcuts();
    loadDictation();
    loadAI();
}

void Preferences::loadShortcuts() {
    const auto stored = DefaultsValues::string(defaults_, u"shortcutConfiguration"_s);
    if (const auto decoded = stored ? ShortcutConfiguration::fromJson(stored->toUtf8()) : std::nullopt) {
        model_.setShortcutConfiguration(*decoded);
        return;
    }
    model_.setShortcutConfiguration(migrateLegacyTrigger(defaults_));
    defaults_.set(u"shortcutConfiguration"_s, QString::fromUtf8(model_.shortcutConfiguration().encoded()));
}

void Preferences::loadDictation() {
    if (const auto value = DefaultsValues::boolean(defaults_, u"autoInsert"_s))
        model_.setAutoInsert(*value);
    if (const auto value = DefaultsValues::boolean(defaults_, u"useDirectInsertion"_s))
        model_.setUseDirectInsertion(*value);
    const auto text = [this](const QString& key) {
        return DefaultsValues::string(defaults_, key).value_or(QString());
    };
    if (const auto style = fromRawString<OverlayStyle>(text(u"overlayStyle"_s)))
        model_.setOverlayStyle(*style);
    if (const auto value = DefaultsValues::boolean(defaults_, u"captureDictations"_s))
        model_.setCaptureDictations(*value);
    if (const auto value = DefaultsValues::boolean(defaults_, u"onboardingCompleted"_s))
        model_.setOnboardingCompleted(*value);
    if (const auto mode = fromRawString<CleanMode>(text(u"cleanMode"_s)))
        model_.setCleanMode(*mode);
    if (const auto language = fromRawString<Language>(text(u"language"_s)))
        model_.setLanguage(*language);
    if (const auto minutes = DefaultsValues::integer(defaults_, u"longestDictationMinutes"_s); minutes > 0)
        model_.setLongestDictationMinutes(static_cast<int>(std::min<qint64>(minutes, longestMinutes)));
    if (const auto words = DefaultsValues::stringArray(defaults_, u"customVocabulary"_s))
        model_.setCustomVocabulary(*words);
    if (const auto list = wordReplacementsFromJson(text(u"wordReplacements"_s).toUtf8()))
        model_.setWordReplacements(*list);
    if (const auto value = DefaultsValues::boolean(defaults_, u"historyEnabled"_s))
        model_.setHistoryEnabled(*value);
    if (const auto mode = contextModeFromRawString(text(u"contextMode"_s)))
        model_.setContextMode(*mode);
}

void Preferences::loadAI() {
    const auto text = [this](const QString& key) {
        return DefaultsValues::string(defaults_, key).value_or(QString());
    };
    const auto provider = aiProviderFromRawString(text(u"aiProvider"_s));
    model_.setAIProvider(provider ? *provider : inferAIProvider());
    if (const auto value = DefaultsValues::boolean(defaults_, u"aiEnabled"_s))
        model_.setAIEnabled(*value);
    if (const auto value = DefaultsValues::boolean(defaults_, u"aiPolishEnabled"_s))
        model_.setAIPolishEnabled(*value);
    if (const auto value = DefaultsValues::boolean(defaults_, u"aiGenerateEnabled"_s)) {
        model_.setAIGenerateEnabled(*value);
    } else {
        // Whoever used AI at all before generation had a switch of its own keeps it.
        model_.setAIGenerateEnabled(model_.aiEnabled() || model_.aiPolishEnabled());
        defaults_.set(u"aiGenerateEnabled"_s, model_.aiGenerateEnabled());
    }
    if (const QString trigger = text(u"aiGenerateTrigger"_s);
        !WhiteSpace::trimmed(trigger, WhiteSpace::Set::whitespacesAndNewlines).isEmpty())
        model_.setAIGenerateTrigger(trigger);
    if (const auto value = DefaultsValues::boolean(defaults_, u"aiTranscriptionEnabled"_s))
        model_.setAITranscriptionEnabled(*value);
    if (const auto models = DefaultsValues::stringMap(defaults_, u"aiTranscriptionModels"_s))
        model_.setAITranscriptionModels(*models);
    loadProviderFields();
}

void Preferences::loadProviderFields() {
    const AIProvider provider = model_.aiProvider();
    const QString row = rawString(provider);
    model_.setAITranscriptionModel(
        model_.aiTranscriptionModels().value(row, defaultTranscriptionModel(provider)));
    if (const auto endpoint = DefaultsValues::string(defaults_, u"aiEndpoint"_s);
        endpoint && !endpoint->isEmpty())
        model_.setAIEndpoint(*endpoint);
    if (const auto name = DefaultsValues::string(defaults_, u"aiModel"_s); name && !name->isEmpty())
        model_.setAIModel(*name);
    if (const auto json = DefaultsValues::string(defaults_, u"aiProviderConfigs"_s))
        if (const auto configs = decodeAIProviderConfigs(*json))
            model_.setAIProviderConfigs(*configs);
    if (provider == AIProvider::apple)
        return;
    const auto configs = model_.aiProviderConfigs();
    if (const auto config = configs.find(row); config != configs.end()) {
        model_.setAIEndpoint(config->endpoint);
        model_.setAIModel(config->model);
    } else {
        model_.storeProviderConfig();
    }
}

void Preferences::persist() {
    const auto group = defaults_.groupChanges();
    defaults_.set(u"shortcutConfiguration"_s, QString::fromUtf8(model_.shortcutConfiguration().encoded()));
    defaults_.set(u"autoInsert"_s, model_.autoInsert());
    defaults_.set(u"useDirectInsertion"_s, model_.useDirectInsertion());
    defaults_.set(u"overlayStyle"_s, rawString(model_.overlayStyle()));
    defaults_.set(u"captureDictations"_s, model_.captureDictations());
    defaults_.set(u"onboardingCompleted"_s, model_.onboardingCompleted());
    defaults_.set(u"cleanMode"_s, rawString(model_.cleanMode()));
    defaults_.set(u"language"_s, rawString(model_.language()));
    defaults_.set(u"customVocabulary"_s, QJsonArray::fromStringList(model_.customVocabulary()));
    defaults_.set(u"wordReplacements"_s,
                  QString::fromUtf8(wordReplacementsToJson(model_.wordReplacements())));
    defaults_.set(u"historyEnabled"_s, model_.historyEnabled());
    defaults_.set(u"contextMode"_s, rawString(model_.contextMode()));
    persistAI();
}

void Preferences::persistAI() {
    if (model_.aiProvider() != AIProvider::apple)
        model_.storeProviderConfig();
    defaults_.set(u"aiProviderConfigs"_s, encode(model_.aiProviderConfigs()));
    defaults_.set(u"aiProvider"_s, rawString(model_.aiProvider()));
    defaults_.set(u"aiEnabled"_s, model_.aiEnabled());
    defaults_.set(u"aiPolishEnabled"_s, model_.aiPolishEnabled());
    defaults_.set(u"aiGenerateEnabled"_s, model_.aiGenerateEnabled());
    defaults_.set(u"aiGenerateTrigger"_s, model_.aiGenerateTrigger());
    defaults_.set(u"aiTranscriptionEnabled"_s, model_.aiTranscriptionEnabled());
    model_.storeTranscriptionModel();
    defaults_.set(u"aiTranscriptionModels"_s, toJsonMap(model_.aiTranscriptionModels()));
    defaults_.set(u"aiEndpoint"_s, model_.aiEndpoint());
    defaults_.set(u"aiModel"_s, model_.aiModel());
    defaults_.set(u"longestDictationMinutes"_s, model_.longestDictationMinutes());
}

ShortcutConfiguration Preferences::migrateLegacyTrigger(UserDefaults& defaults) {
    const auto source = DefaultsValues::string(defaults, u"triggerSource"_s);
    if (!source)
        return ShortcutConfiguration::defaultConfiguration();
    const QJsonValue hold = defaults.object(u"holdToTalk"_s).value_or(QJsonValue());
    auto configuration = ShortcutConfiguration::defaultConfiguration();
    if (*source == "off"_L1)
        configuration = ShortcutConfiguration::disabled();
    else if (*source == "shortcut"_L1)
        configuration = configurationFromLegacyShortcut(defaults, hold.toBool(true));
    for (const auto& key :
         {u"triggerSource"_s, u"holdToTalk"_s, u"shortcutKeyCode"_s, u"shortcutModifiers"_s})
        defaults.remove(key);
    return configuration;
}

AIProvider Preferences::inferAIProvider() const {
    const QString endpoint = DefaultsValues::string(defaults_, u"aiEndpoint"_s).value_or(QString());
    const QString lowercased = CaseMapping::lower(endpoint);
    if (Endpoint::isLocal(endpoint))
        return AIProvider::ollama;
    if (lowercased.contains("groq"_L1))
        return AIProvider::groq;
    if (lowercased.contains("api.openai.com"_L1))
        return AIProvider::openAI;
    if (!endpoint.isEmpty())
        return AIProvider::custom;
    return hasLegacyKey_() ? AIProvider::openAI : AIProvider::apple;
}

} // namespace velorin
