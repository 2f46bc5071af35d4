#include "tests/core/ModelFixture.h"

#include <QJsonArray>
#include <QJsonDocument>

using namespace Qt::Literals::StringLiterals;
using testing::ElementsAre;
using testing::UnorderedElementsAre;

namespace velorin {
namespace {

class PreferencesOfTheModel : public ModelFixture {};

TEST_F(PreferencesOfTheModel, OfAFreshInstallationAreTheDefaultsAndTwoAreWrittenBack) {
    start();
    EXPECT_EQ(model->shortcutConfiguration(), ShortcutConfiguration::defaultConfiguration());
    EXPECT_EQ(model->aiProvider(), AIProvider::apple);
    EXPECT_THAT(defaults.written, ElementsAre(u"shortcutConfiguration"_s, u"aiGenerateEnabled"_s));
    EXPECT_EQ(
        ShortcutConfiguration::fromJson(defaults.values[u"shortcutConfiguration"_s].toString().toUtf8()),
        ShortcutConfiguration::defaultConfiguration());
    EXPECT_EQ(defaults.values[u"aiGenerateEnabled"_s], QJsonValue(false));
    EXPECT_TRUE(model->autoInsert());
    EXPECT_TRUE(model->historyEnabled());
    EXPECT_EQ(model->aiModel(), u"gpt-4.1-mini"_s);
    EXPECT_EQ(model->aiTranscriptionModel(), QString());
}

TEST_F(PreferencesOfTheModel, CorruptShortcutsBecomeTheDefaultAndAreOverwritten) {
    defaults.values[u"shortcutConfiguration"_s] = u"{garbage"_s;
    start();
    EXPECT_EQ(model->shortcutConfiguration(), ShortcutConfiguration::defaultConfiguration());
    EXPECT_NE(defaults.values[u"shortcutConfiguration"_s].toString(), u"{garbage"_s);
}

TEST_F(PreferencesOfTheModel, StoredShortcutsAreTakenAndNothingIsMigrated) {
    defaults.values[u"shortcutConfiguration"_s] =
        QString::fromUtf8(ShortcutConfiguration::disabled().encoded());
    defaults.values[u"triggerSource"_s] = u"off"_s;
    start();
    EXPECT_TRUE(model->shortcutConfiguration().isDisabled());
    EXPECT_TRUE(defaults.values.contains(u"triggerSource"_s));
    EXPECT_FALSE(defaults.written.contains(u"shortcutConfiguration"_s));
}

TEST_F(PreferencesOfTheModel, AnOlderShortcutBecomesTheHoldBinding) {
    defaults.values = {{u"triggerSource"_s, u"shortcut"_s},
                       {u"shortcutKeyCode"_s, 49},
                       {u"shortcutModifiers"_s, 0x100000 | 0x20000}};
    start();
    const auto hold = model->shortcutConfiguration().hold;
    EXPECT_EQ(hold.keyCode, 49);
    EXPECT_EQ(hold.keyDisplay, u"Space"_s);
    EXPECT_EQ(hold.modifiers.rawValue, 1 | 8);
    EXPECT_EQ(hold.kind, ShortcutBindingKind::key);
    EXPECT_EQ(model->shortcutConfiguration().toggle, ShortcutBinding::disabled());
    EXPECT_THAT(defaults.removed, UnorderedElementsAre(u"triggerSource"_s, u"holdToTalk"_s,
                                                       u"shortcutKeyCode"_s, u"shortcutModifiers"_s));
}

TEST_F(PreferencesOfTheModel, AnOlderShortcutThatWasTappedBecomesTheToggleBinding) {
    defaults.values = {
        {u"triggerSource"_s, u"shortcut"_s}, {u"holdToTalk"_s, false}, {u"shortcutKeyCode"_s, 96}};
    start();
    EXPECT_EQ(model->shortcutConfiguration().toggle.keyDisplay, u"F5"_s);
    EXPECT_EQ(model->shortcutConfiguration().hold, ShortcutBinding::disabled());
}

TEST_F(PreferencesOfTheModel, AnOlderShortcutOutOfRangeGivesTheDefaultsAndALogLine) {
    for (const auto& [keyCode, modifiers] : {std::pair{70000, 0}, std::pair{-1, 0}, std::pair{49, -1}}) {
        defaults.values = {{u"triggerSource"_s, u"shortcut"_s},
                           {u"shortcutKeyCode"_s, keyCode},
                           {u"shortcutModifiers"_s, modifiers}};
        log.clear();
        start();
        EXPECT_EQ(model->shortcutConfiguration(), ShortcutConfiguration::defaultConfiguration());
        EXPECT_EQ(log.lines().filter(u"out of range"_s).size(), 1);
        EXPECT_FALSE(defaults.values.contains(u"triggerSource"_s));
        endModel();
    }
}

TEST_F(PreferencesOfTheModel, UnknownNamesAndBlankTriggersKeepTheDefaults) {
    defaults.values = {{u"language"_s, u"tlh-KL"_s},
                       {u"aiGenerateTrigger"_s, u" \t"_s},
                       {u"cleanMode"_s, u"sometimes"_s},
                       {u"overlayStyle"_s, u"cube"_s},
                       {u"contextMode"_s, u"poetry"_s},
                       {u"wordReplacements"_s, u"[{\"id\":1}]"_s},
                       {u"aiEndpoint"_s, QString()},
                       {u"aiModel"_s, QString()},
                       {u"customVocabulary"_s, QJsonArray{u"a"_s, 1}}};
    start();
    EXPECT_EQ(model->language(), Language::englishUS);
    EXPECT_EQ(model->aiGenerateTrigger(), u"generate"_s);
    EXPECT_EQ(model->cleanMode(), CleanMode::rules);
    EXPECT_EQ(model->overlayStyle(), OverlayStyle::capsule);
    EXPECT_EQ(model->contextMode(), ContextMode::auto_);
    EXPECT_TRUE(model->wordReplacements().isEmpty());
    EXPECT_TRUE(model->customVocabulary().isEmpty());
    EXPECT_EQ(model->aiModel(), u"gpt-4.1-mini"_s);
}

TEST_F(PreferencesOfTheModel, ATriggerIsTakenUntrimmed) {
    defaults.values[u"aiGenerateTrigger"_s] = u" Write me "_s;
    start();
    EXPECT_EQ(model->aiGenerateTrigger(), u" Write me "_s);
    EXPECT_EQ(model->generateTriggerDisplay(), u"Write"_s);
}

TEST_F(PreferencesOfTheModel, GenerationStaysOnForWhoeverUsedAIBefore) {
    defaults.values[u"aiPolishEnabled"_s] = true;
    start();
    EXPECT_TRUE(model->aiGenerateEnabled());
    EXPECT_EQ(defaults.values[u"aiGenerateEnabled"_s], QJsonValue(true));
}

TEST_F(PreferencesOfTheModel, AProviderWithoutARowTakesTheFlatEndpointAndModel) {
    defaults.values = {{u"aiProvider"_s, u"custom"_s},
                       {u"aiEndpoint"_s, u"https://llm.example/v1"_s},
                       {u"aiModel"_s, u"m1"_s}};
    start();
    EXPECT_EQ(model->aiProviderConfigs().value(u"custom"_s),
              (AIProviderConfig{u"https://llm.example/v1"_s, u"m1"_s}));
    EXPECT_FALSE(defaults.values.contains(u"aiProviderConfigs"_s)) << "in memory only";
}

TEST_F(PreferencesOfTheModel, AProvidersRowOverridesTheFlatEndpointAndModel) {
    defaults.values = {{u"aiProvider"_s, u"groq"_s},
                       {u"aiEndpoint"_s, u"https://llm.example/v1"_s},
                       {u"aiModel"_s, u"m1"_s},
                       {u"aiProviderConfigs"_s, encode(AIProviderConfigs{{u"groq"_s, {u"e"_s, u"m"_s}}})},
                       {u"aiTranscriptionModels"_s, QJsonObject{{u"groq"_s, u"t"_s}}}};
    start();
    EXPECT_EQ(model->aiEndpoint(), u"e"_s);
    EXPECT_EQ(model->aiModel(), u"m"_s);
    EXPECT_EQ(model->aiTranscriptionModel(), u"t"_s);
}

TEST_F(PreferencesOfTheModel, TheProviderOfAnOlderStoreIsInferred) {
    const std::pair<QString, AIProvider> cases[] = {{u"http://localhost:11434/v1"_s, AIProvider::ollama},
                                                    {u"http://studio.local"_s, AIProvider::ollama},
                                                    {u"https://API.GROQ.com/openai/v1"_s, AIProvider::groq},
                                                    {u"https://api.openai.com/v1"_s, AIProvider::openAI},
                                                    {u"https://llm.example"_s, AIProvider::custom},
                                                    {QString(), AIProvider::apple}};
    for (const auto& [endpoint, provider] : cases) {
        defaults.values = {{u"aiEndpoint"_s, endpoint}};
        start();
        EXPECT_EQ(model->aiProvider(), provider) << endpoint.toStdString();
        endModel();
    }
}

TEST_F(PreferencesOfTheModel, ALegacyKeyTellsTheProviderAndIsMovedOnce) {
    secrets.items[u"api-key"_s] = "sk-1";
    start();
    EXPECT_EQ(model->aiProvider(), AIProvider::openAI);
    EXPECT_TRUE(model->aiKeyConfigured());
    EXPECT_EQ(secrets.items.count(u"api-key"_s), 0U);
    EXPECT_EQ(secrets.items[u"api-key.openAI"_s], "sk-1");
}

TEST_F(PreferencesOfTheModel, ComeBackAsTheyWerePersisted) {
    start();
    model->setLanguage(Language::french);
    model->setCleanMode(CleanMode::off);
    model->setOverlayStyle(OverlayStyle::card);
    model->setAutoInsert(false);
    model->setCustomVocabulary({u"Velorin"_s});
    model->addReplacement(u"zoe"_s, u"Zoë"_s);
    model->setShortcutConfiguration(ShortcutConfiguration::disabled());
    model->selectAIProvider(AIProvider::groq);
    model->setAIModel(u"mine"_s);
    model->persistPreferences();
    const auto replacements = model->wordReplacements();
    endModel();
    start();
    EXPECT_EQ(model->language(), Language::french);
    EXPECT_EQ(model->cleanMode(), CleanMode::off);
    EXPECT_EQ(model->overlayStyle(), OverlayStyle::card);
    EXPECT_FALSE(model->autoInsert());
    EXPECT_EQ(model->customVocabulary(), QStringList{u"Velorin"_s});
    EXPECT_EQ(model->wordReplacements(), replacements);
    EXPECT_TRUE(model->shortcutConfiguration().isDisabled());
    EXPECT_EQ(model->aiProvider(), AIProvider::groq);
    EXPECT_EQ(model->aiModel(), u"mine"_s);
}

TEST_F(PreferencesOfTheModel, AreWrittenWholeAndInOrder) {
    start();
    defaults.written.clear();
    model->persistPreferences();
    EXPECT_THAT(defaults.written,
                ElementsAre(u"shortcutConfiguration"_s, u"autoInsert"_s, u"useDirectInsertion"_s,
                            u"overlayStyle"_s, u"captureDictations"_s, u"onboardingCompleted"_s,
                            u"cleanMode"_s, u"language"_s, u"customVocabulary"_s, u"wordReplacements"_s,
                            u"historyEnabled"_s, u"contextMode"_s, u"aiProviderConfigs"_s, u"aiProvider"_s,
                            u"aiEnabled"_s, u"aiPolishEnabled"_s, u"aiGenerateEnabled"_s,
                            u"aiGenerateTrigger"_s, u"aiTranscriptionEnabled"_s, u"aiTranscriptionModels"_s,
                            u"aiEndpoint"_s, u"aiModel"_s, u"longestDictationMinutes"_s));
}

TEST_F(PreferencesOfTheModel, VocabularyIgnoresCaseWhenAddingAndHeedsItWhenRemoving) {
    start();
    model->addVocabulary(u"  Zoë\n"_s);
    model->addVocabulary(u"ZOË"_s);
    model->addVocabulary(u"  "_s);
    EXPECT_EQ(model->customVocabulary(), QStringList{u"Zoë"_s});
    model->removeVocabulary(u"zoë"_s);
    EXPECT_EQ(model->customVocabulary(), QStringList{u"Zoë"_s});
    model->removeVocabulary(u"Zoë"_s);
    EXPECT_TRUE(model->customVocabulary().isEmpty());
}

TEST_F(PreferencesOfTheModel, TheLongestDictationIsADayAtMostAndTwoHoursUnlessToldOtherwise) {
    defaults.values = {{u"longestDictationMinutes"_s, -5}};
    EXPECT_EQ(start().longestDictationMinutes(), 120);
    endModel();
    defaults.values = {{u"longestDictationMinutes"_s, 1e9}};
    EXPECT_EQ(start().longestDictationMinutes(), 24 * 60);
}

TEST_F(PreferencesOfTheModel, TheIntroductionIsDoneOnce) {
    start();
    model->completeOnboarding();
    EXPECT_EQ(defaults.values[u"onboardingCompleted"_s], QJsonValue(true));
}

TEST_F(PreferencesOfTheModel, ChoosingTheCurrentProviderWritesNothing) {
    start();
    defaults.written.clear();
    model->selectAIProvider(AIProvider::apple);
    EXPECT_TRUE(defaults.written.isEmpty());
}

TEST_F(PreferencesOfTheModel, EachProviderKeepsItsOwnEndpointWhileOthersAreChosen) {
    start();
    model->selectAIProvider(AIProvider::custom);
    EXPECT_EQ(model->aiEndpoint(), QString());
    model->setAIEndpoint(u" https://mine "_s);
    model->selectAIProvider(AIProvider::ollama);
    EXPECT_EQ(model->aiModel(), u"llama3.2"_s);
    EXPECT_EQ(model->aiTranscriptionModel(), QString());
    model->selectAIProvider(AIProvider::apple);
    EXPECT_EQ(model->aiModel(), u"llama3.2"_s) << "the last provider's stay";
    model->selectAIProvider(AIProvider::custom);
    EXPECT_EQ(model->aiEndpoint(), u" https://mine "_s);
}

TEST_F(PreferencesOfTheModel, KeysAreStoredTrimmedAndPerProvider) {
    start();
    EXPECT_FALSE(model->saveAIKey(u"k"_s)) << "the machine's own model takes none";
    model->selectAIProvider(AIProvider::groq);
    EXPECT_FALSE(model->saveAIKey(u"  "_s));
    EXPECT_TRUE(model->saveAIKey(u" gsk-1\n"_s));
    EXPECT_EQ(secrets.items[u"api-key.groq"_s], "gsk-1");
    EXPECT_TRUE(model->aiKeyConfigured());
    model->selectAIProvider(AIProvider::openAI);
    EXPECT_FALSE(model->aiKeyConfigured());
}

} // namespace
} // namespace velorin
