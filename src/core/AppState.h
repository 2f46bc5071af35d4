/// All state of the application, observable: every window and the overlay read it, nobody keeps a copy.
///
/// Each field is a bindable property with a notify signal. Setting a field to the value that it has notifies
/// nobody; what changes a collection in place notifies always. Main thread only.
///
///     model.setStatus(u"Listening…"_s);
///     connect(&model, &AppState::statusChanged, this, &Menu::update);
#pragma once

#include "ai/AIProvider.h"
#include "cleanup/Personalization.h"
#include "core/DictationRecord.h"
#include "core/ModelTypes.h"
#include "core/SettingsPane.h"
#include "delivery/ContextMode.h"
#include "delivery/ContextProfile.h"
#include "delivery/SelectionSnapshot.h"
#include "platform/RunningApplication.h"
#include "shortcuts/ShortcutModels.h"

#include <QDateTime>
#include <QList>
#include <QObject>
#include <QProperty>
#include <QStringList>

#include <functional>
#include <optional>

namespace velorin {

/// Transcription models, keyed by the provider's raw string.
using AITranscriptionModels = QHash<QString, QString>;

class AppState : public QObject {
    Q_OBJECT

    Q_PROPERTY(bool isRecording READ isRecording WRITE setIsRecording NOTIFY isRecordingChanged)
    Q_PROPERTY(QString finalizedText READ finalizedText WRITE setFinalizedText NOTIFY finalizedTextChanged)
    Q_PROPERTY(QString volatileText READ volatileText WRITE setVolatileText NOTIFY volatileTextChanged)
    Q_PROPERTY(QString cleanedText READ cleanedText WRITE setCleanedText NOTIFY cleanedTextChanged)
    Q_PROPERTY(QString status READ status WRITE setStatus NOTIFY statusChanged)
    Q_PROPERTY(QString errorMessage READ errorMessageText NOTIFY errorMessageChanged)
    Q_PROPERTY(bool hasErrorMessage READ hasErrorMessage NOTIFY errorMessageChanged)
    Q_PROPERTY(QString previewText READ previewTextText NOTIFY previewTextChanged)
    Q_PROPERTY(bool hasPreviewText READ hasPreviewText NOTIFY previewTextChanged)
    Q_PROPERTY(float level READ level WRITE setLevel NOTIFY levelChanged)
    Q_PROPERTY(QList<float> levels READ levels NOTIFY levelsChanged)
    Q_PROPERTY(bool isEditSession READ isEditSession WRITE setIsEditSession NOTIFY isEditSessionChanged)
    Q_PROPERTY(bool isGenerateSession READ isGenerateSession WRITE setIsGenerateSession NOTIFY
                   isGenerateSessionChanged)
    Q_PROPERTY(bool remoteTranscriptionThisSession READ remoteTranscriptionThisSession WRITE
                   setRemoteTranscriptionThisSession NOTIFY remoteTranscriptionThisSessionChanged)
    Q_PROPERTY(QString lastInsertedText READ lastInsertedText WRITE setLastInsertedText NOTIFY
                   lastInsertedTextChanged)
    Q_PROPERTY(
        QString undeliveredText READ undeliveredText WRITE setUndeliveredText NOTIFY undeliveredTextChanged)
    Q_PROPERTY(QStringList customVocabulary READ customVocabulary WRITE setCustomVocabulary NOTIFY
                   customVocabularyChanged)
    Q_PROPERTY(bool autoInsert READ autoInsert WRITE setAutoInsert NOTIFY autoInsertChanged)
    Q_PROPERTY(bool useDirectInsertion READ useDirectInsertion WRITE setUseDirectInsertion NOTIFY
                   useDirectInsertionChanged)
    Q_PROPERTY(bool onboardingCompleted READ onboardingCompleted WRITE setOnboardingCompleted NOTIFY
                   onboardingCompletedChanged)
    Q_PROPERTY(bool activeProfileWasDetected READ activeProfileWasDetected WRITE setActiveProfileWasDetected
                   NOTIFY activeProfileWasDetectedChanged)
    Q_PROPERTY(bool hasContext READ hasContext WRITE setHasContext NOTIFY hasContextChanged)
    Q_PROPERTY(bool historyEnabled READ historyEnabled WRITE setHistoryEnabled NOTIFY historyEnabledChanged)
    Q_PROPERTY(bool captureDictations READ captureDictations WRITE setCaptureDictations NOTIFY
                   captureDictationsChanged)
    Q_PROPERTY(QString captureStatus READ captureStatus WRITE setCaptureStatus NOTIFY captureStatusChanged)
    Q_PROPERTY(bool microphoneGranted READ microphoneGranted WRITE setMicrophoneGranted NOTIFY
                   microphoneGrantedChanged)
    Q_PROPERTY(bool accessibilityGranted READ accessibilityGranted WRITE setAccessibilityGranted NOTIFY
                   accessibilityGrantedChanged)
    Q_PROPERTY(bool aiEnabled READ aiEnabled WRITE setAIEnabled NOTIFY aiEnabledChanged)
    Q_PROPERTY(
        bool aiPolishEnabled READ aiPolishEnabled WRITE setAIPolishEnabled NOTIFY aiPolishEnabledChanged)
    Q_PROPERTY(bool aiGenerateEnabled READ aiGenerateEnabled WRITE setAIGenerateEnabled NOTIFY
                   aiGenerateEnabledChanged)
    Q_PROPERTY(QString aiGenerateTrigger READ aiGenerateTrigger WRITE setAIGenerateTrigger NOTIFY
                   aiGenerateTriggerChanged)
    Q_PROPERTY(bool aiTranscriptionEnabled READ aiTranscriptionEnabled WRITE setAITranscriptionEnabled NOTIFY
                   aiTranscriptionEnabledChanged)
    Q_PROPERTY(QString aiTranscriptionModel READ aiTranscriptionModel WRITE setAITranscriptionModel NOTIFY
                   aiTranscriptionModelChanged)
    Q_PROPERTY(QString aiEndpoint READ aiEndpoint WRITE setAIEndpoint NOTIFY aiEndpointChanged)
    Q_PROPERTY(QString aiModel READ aiModel WRITE setAIModel NOTIFY aiModelChanged)
    Q_PROPERTY(
        bool aiKeyConfigured READ aiKeyConfigured WRITE setAIKeyConfigured NOTIFY aiKeyConfiguredChanged)

public:
    /// The newest levels that the waveform shows.
    static constexpr qsizetype maximumLevels = 72;

    using QObject::QObject;

    // Session: what happens now.
    [[nodiscard]] bool isRecording() const { return isRecording_; }
    void setIsRecording(bool value) { isRecording_ = value; }
    [[nodiscard]] QString finalizedText() const { return finalizedText_; }
    void setFinalizedText(QString value) { finalizedText_ = std::move(value); }
    [[nodiscard]] QString volatileText() const { return volatileText_; }
    void setVolatileText(QString value) { volatileText_ = std::move(value); }
    [[nodiscard]] QString cleanedText() const { return cleanedText_; }
    void setCleanedText(QString value) { cleanedText_ = std::move(value); }
    [[nodiscard]] QString status() const { return status_; }
    void setStatus(QString value) { status_ = std::move(value); }
    [[nodiscard]] std::optional<QString> errorMessage() const { return errorMessage_; }
    void setErrorMessage(std::optional<QString> value) { errorMessage_ = std::move(value); }
    [[nodiscard]] OverlayPhase overlayPhase() const { return overlayPhase_; }
    void setOverlayPhase(OverlayPhase value) { overlayPhase_ = value; }
    [[nodiscard]] std::optional<QDateTime> recordingStartedAt() const { return recordingStartedAt_; }
    void setRecordingStartedAt(std::optional<QDateTime> value) { recordingStartedAt_ = std::move(value); }
    [[nodiscard]] std::optional<QString> previewText() const { return previewText_; }
    void setPreviewText(std::optional<QString> value) { previewText_ = std::move(value); }
    [[nodiscard]] std::optional<QList<float>> previewLevels() const { return previewLevels_; }
    void setPreviewLevels(std::optional<QList<float>> value) { previewLevels_ = std::move(value); }
    [[nodiscard]] std::optional<float> previewLevel() const { return previewLevel_; }
    void setPreviewLevel(std::optional<float> value) { previewLevel_ = std::move(value); }
    [[nodiscard]] float level() const { return level_; }
    void setLevel(float value) { level_ = value; }
    [[nodiscard]] QList<float> levels() const { return levels_; }
    void setLevels(QList<float> value) { levels_ = std::move(value); }
    [[nodiscard]] bool isEditSession() const { return isEditSession_; }
    void setIsEditSession(bool value) { isEditSession_ = value; }
    [[nodiscard]] bool isGenerateSession() const { return isGenerateSession_; }
    void setIsGenerateSession(bool value) { isGenerateSession_ = value; }
    [[nodiscard]] std::optional<AIProcessing> aiProcessing() const { return aiProcessing_; }
    void setAIProcessing(std::optional<AIProcessing> value) { aiProcessing_ = std::move(value); }
    [[nodiscard]] std::optional<RunningApplication> targetApp() const { return targetApp_; }
    void setTargetApp(std::optional<RunningApplication> value) { targetApp_ = std::move(value); }
    [[nodiscard]] std::optional<SelectionSnapshot> pendingSelection() const { return pendingSelection_; }
    void setPendingSelection(std::optional<SelectionSnapshot> value) { pendingSelection_ = std::move(value); }
    [[nodiscard]] std::optional<QString> pendingContext() const { return pendingContext_; }
    void setPendingContext(std::optional<QString> value) { pendingContext_ = std::move(value); }
    [[nodiscard]] bool remoteTranscriptionThisSession() const { return remoteTranscriptionThisSession_; }
    void setRemoteTranscriptionThisSession(bool value) { remoteTranscriptionThisSession_ = value; }
    [[nodiscard]] qint64 sessionGeneration() const { return sessionGeneration_; }
    void setSessionGeneration(qint64 value) { sessionGeneration_ = value; }
    [[nodiscard]] QString lastInsertedText() const { return lastInsertedText_; }
    void setLastInsertedText(QString value) { lastInsertedText_ = std::move(value); }
    /// What did not reach its place, until something else has.
    [[nodiscard]] QString undeliveredText() const { return undeliveredText_; }
    void setUndeliveredText(QString value) { undeliveredText_ = std::move(value); }
    // Dictation, as the user wants it.
    [[nodiscard]] Language language() const { return language_; }
    void setLanguage(Language value) { language_ = value; }
    [[nodiscard]] CleanMode cleanMode() const { return cleanMode_; }
    void setCleanMode(CleanMode value) { cleanMode_ = value; }
    [[nodiscard]] QStringList customVocabulary() const { return customVocabulary_; }
    void setCustomVocabulary(QStringList value) { customVocabulary_ = std::move(value); }
    [[nodiscard]] QList<WordReplacement> wordReplacements() const { return wordReplacements_; }
    void setWordReplacements(QList<WordReplacement> value) { wordReplacements_ = std::move(value); }
    [[nodiscard]] ContextMode contextMode() const { return contextMode_; }
    void setContextMode(ContextMode value) { contextMode_ = value; }
    [[nodiscard]] ShortcutConfiguration shortcutConfiguration() const { return shortcutConfiguration_; }
    void setShortcutConfiguration(ShortcutConfiguration value) { shortcutConfiguration_ = std::move(value); }
    [[nodiscard]] bool autoInsert() const { return autoInsert_; }
    void setAutoInsert(bool value) { autoInsert_ = value; }
    [[nodiscard]] bool useDirectInsertion() const { return useDirectInsertion_; }
    void setUseDirectInsertion(bool value) { useDirectInsertion_ = value; }
    /// A dictation that goes on for longer ends as if the user had stopped it.
    [[nodiscard]] int longestDictationMinutes() const { return longestDictationMinutes_; }
    void setLongestDictationMinutes(int value) { longestDictationMinutes_ = value; }
    [[nodiscard]] OverlayStyle overlayStyle() const { return overlayStyle_; }
    void setOverlayStyle(OverlayStyle value) { overlayStyle_ = value; }
    [[nodiscard]] bool onboardingCompleted() const { return onboardingCompleted_; }
    void setOnboardingCompleted(bool value) { onboardingCompleted_ = value; }
    [[nodiscard]] std::optional<SettingsPane> requestedSettingsPane() const { return requestedSettingsPane_; }
    void setRequestedSettingsPane(std::optional<SettingsPane> value) {
        requestedSettingsPane_ = std::move(value);
    }
    // The context in force.
    [[nodiscard]] ContextProfile activeProfile() const { return activeProfile_; }
    void setActiveProfile(ContextProfile value) { activeProfile_ = value; }
    [[nodiscard]] bool activeProfileWasDetected() const { return activeProfileWasDetected_; }
    void setActiveProfileWasDetected(bool value) { activeProfileWasDetected_ = value; }
    [[nodiscard]] bool hasContext() const { return hasContext_; }
    void setHasContext(bool value) { hasContext_ = value; }
    // What is kept.
    [[nodiscard]] bool historyEnabled() const { return historyEnabled_; }
    void setHistoryEnabled(bool value) { historyEnabled_ = value; }
    [[nodiscard]] QList<DictationRecord> history() const { return history_; }
    void setHistory(QList<DictationRecord> value) { history_ = std::move(value); }
    [[nodiscard]] bool captureDictations() const { return captureDictations_; }
    void setCaptureDictations(bool value) { captureDictations_ = value; }
    [[nodiscard]] QString captureStatus() const { return captureStatus_; }
    void setCaptureStatus(QString value) { captureStatus_ = std::move(value); }
    // Permissions, as they were last seen.
    [[nodiscard]] bool microphoneGranted() const { return microphoneGranted_; }
    void setMicrophoneGranted(bool value) { microphoneGranted_ = value; }
    [[nodiscard]] bool accessibilityGranted() const { return accessibilityGranted_; }
    void setAccessibilityGranted(bool value) { accessibilityGranted_ = value; }
    // AI.
    [[nodiscard]] AIProvider aiProvider() const { return aiProvider_; }
    void setAIProvider(AIProvider value) { aiProvider_ = value; }
    [[nodiscard]] AIProviderConfigs aiProviderConfigs() const { return aiProviderConfigs_; }
    void setAIProviderConfigs(AIProviderConfigs value) { aiProviderConfigs_ = std::move(value); }
    [[nodiscard]] bool aiEnabled() const { return aiEnabled_; }
    void setAIEnabled(bool value) { aiEnabled_ = value; }
    [[nodiscard]] bool aiPolishEnabled() const { return aiPolishEnabled_; }
    void setAIPolishEnabled(bool value) { aiPolishEnabled_ = value; }
    [[nodiscard]] bool aiGenerateEnabled() const { return aiGenerateEnabled_; }
    void setAIGenerateEnabled(bool value) { aiGenerateEnabled_ = value; }
    [[nodiscard]] QString aiGenerateTrigger() const { return aiGenerateTrigger_; }
    void setAIGenerateTrigger(QString value) { aiGenerateTrigger_ = std::move(value); }
    [[nodiscard]] bool aiTranscriptionEnabled() const { return aiTranscriptionEnabled_; }
    void setAITranscriptionEnabled(bool value) { aiTranscriptionEnabled_ = value; }
    [[nodiscard]] QString aiTranscriptionModel() const { return aiTranscriptionModel_; }
    void setAITranscriptionModel(QString value) { aiTranscriptionModel_ = std::move(value); }
    [[nodiscard]] AITranscriptionModels aiTranscriptionModels() const { return aiTranscriptionModels_; }
    void setAITranscriptionModels(AITranscriptionModels value) { aiTranscriptionModels_ = std::move(value); }
    [[nodiscard]] QString aiEndpoint() const { return aiEndpoint_; }
    void setAIEndpoint(QString value) { aiEndpoint_ = std::move(value); }
    [[nodiscard]] QString aiModel() const { return aiModel_; }
    void setAIModel(QString value) { aiModel_ = std::move(value); }
    [[nodiscard]] bool aiKeyConfigured() const { return aiKeyConfigured_; }
    void setAIKeyConfigured(bool value) { aiKeyConfigured_ = value; }

    // How optional fields reach the views: a value and whether there is one.
    [[nodiscard]] QString errorMessageText() const { return errorMessage().value_or(QString()); }
    [[nodiscard]] bool hasErrorMessage() const { return errorMessage().has_value(); }
    [[nodiscard]] QString previewTextText() const { return previewText().value_or(QString()); }
    [[nodiscard]] bool hasPreviewText() const { return previewText().has_value(); }

    // Changes of collections in place, which notify whatever the value.
    /// Appends a level and drops the oldest beyond `maximumLevels`.
    void appendLevel(float value);
    void changeHistory(const std::function<void(QList<DictationRecord>&)>& change) {
        changeInPlace(history_, change);
    }
    void changeCustomVocabulary(const std::function<void(QStringList&)>& change) {
        changeInPlace(customVocabulary_, change);
    }
    void changeWordReplacements(const std::function<void(QList<WordReplacement>&)>& change) {
        changeInPlace(wordReplacements_, change);
    }
    void changeAIProviderConfigs(const std::function<void(AIProviderConfigs&)>& change) {
        changeInPlace(aiProviderConfigs_, change);
    }
    void changeAITranscriptionModels(const std::function<void(AITranscriptionModels&)>& change) {
        changeInPlace(aiTranscriptionModels_, change);
    }

Q_SIGNALS:
    void isRecordingChanged();
    void finalizedTextChanged();
    void volatileTextChanged();
    void cleanedTextChanged();
    void statusChanged();
    void errorMessageChanged();
    void overlayPhaseChanged();
    void recordingStartedAtChanged();
    void previewTextChanged();
    void previewLevelsChanged();
    void previewLevelChanged();
    void levelChanged();
    void levelsChanged();
    void isEditSessionChanged();
    void isGenerateSessionChanged();
    void aiProcessingChanged();
    void targetAppChanged();
    void pendingSelectionChanged();
    void pendingContextChanged();
    void remoteTranscriptionThisSessionChanged();
    void sessionGenerationChanged();
    void lastInsertedTextChanged();
    void undeliveredTextChanged();
    void languageChanged();
    void cleanModeChanged();
    void customVocabularyChanged();
    void wordReplacementsChanged();
    void contextModeChanged();
    void shortcutConfigurationChanged();
    void autoInsertChanged();
    void useDirectInsertionChanged();
    void longestDictationMinutesChanged();
    void overlayStyleChanged();
    void onboardingCompletedChanged();
    void requestedSettingsPaneChanged();
    void activeProfileChanged();
    void activeProfileWasDetectedChanged();
    void hasContextChanged();
    void historyEnabledChanged();
    void historyChanged();
    void captureDictationsChanged();
    void captureStatusChanged();
    void microphoneGrantedChanged();
    void accessibilityGrantedChanged();
    void aiProviderChanged();
    void aiProviderConfigsChanged();
    void aiEnabledChanged();
    void aiPolishEnabledChanged();
    void aiGenerateEnabledChanged();
    void aiGenerateTriggerChanged();
    void aiTranscriptionEnabledChanged();
    void aiTranscriptionModelChanged();
    void aiTranscriptionModelsChanged();
    void aiEndpointChanged();
    void aiModelChanged();
    void aiKeyConfiguredChanged();

private:
    template <class Property, class Change>
    static void changeInPlace(Property& property, const Change& change) {
        auto value = property.valueBypassingBindings();
        change(value);
        property.setValueBypassingBindings(std::move(value));
        property.notify();
    }

    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(AppState, bool, isRecording_, false, &AppState::isRecordingChanged)
    Q_OBJECT_BINDABLE_PROPERTY(AppState, QString, finalizedText_, &AppState::finalizedTextChanged)
    Q_OBJECT_BINDABLE_PROPERTY(AppState, QString, volatileText_, &AppState::volatileTextChanged)
    Q_OBJECT_BINDABLE_PROPERTY(AppState, QString, cleanedText_, &AppState::cleanedTextChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(AppState, QString, status_, QStringLiteral("Idle"),
                                         &AppState::statusChanged)
    Q_OBJECT_BINDABLE_PROPERTY(AppState, std::optional<QString>, errorMessage_,
                               &AppState::errorMessageChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(AppState, OverlayPhase, overlayPhase_, OverlayPhase::done,
                                         &AppState::overlayPhaseChanged)
    Q_OBJECT_BINDABLE_PROPERTY(AppState, std::optional<QDateTime>, recordingStartedAt_,
                               &AppState::recordingStartedAtChanged)
    Q_OBJECT_BINDABLE_PROPERTY(AppState, std::optional<QString>, previewText_, &AppState::previewTextChanged)
    Q_OBJECT_BINDABLE_PROPERTY(AppState, std::optional<QList<float>>, previewLevels_,
                               &AppState::previewLevelsChanged)
    Q_OBJECT_BINDABLE_PROPERTY(AppState, std::optional<float>, previewLevel_, &AppState::previewLevelChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(AppState, float, level_, 0, &AppState::levelChanged)
    Q_OBJECT_BINDABLE_PROPERTY(AppState, QList<float>, levels_, &AppState::levelsChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(AppState, bool, isEditSession_, false,
                                         &AppState::isEditSessionChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(AppState, bool, isGenerateSession_, false,
                                         &AppState::isGenerateSessionChanged)
    Q_OBJECT_BINDABLE_PROPERTY(AppState, std::optional<AIProcessing>, aiProcessing_,
                               &AppState::aiProcessingChanged)
    Q_OBJECT_BINDABLE_PROPERTY(AppState, std::optional<RunningApplication>, targetApp_,
                               &AppState::targetAppChanged)
    Q_OBJECT_BINDABLE_PROPERTY(AppState, std::optional<SelectionSnapshot>, pendingSelection_,
                               &AppState::pendingSelectionChanged)
    Q_OBJECT_BINDABLE_PROPERTY(AppState, std::optional<QString>, pendingContext_,
                               &AppState::pendingContextChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(AppState, bool, remoteTranscriptionThisSession_, false,
                                         &AppState::remoteTranscriptionThisSessionChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(AppState, qint64, sessionGeneration_, 0,
                                         &AppState::sessionGenerationChanged)
    Q_OBJECT_BINDABLE_PROPERTY(AppState, QString, lastInsertedText_, &AppState::lastInsertedTextChanged)
    Q_OBJECT_BINDABLE_PROPERTY(AppState, QString, undeliveredText_, &AppState::undeliveredTextChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(AppState, Language, language_, Language::englishUS,
                                         &AppState::languageChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(AppState, CleanMode, cleanMode_, CleanMode::rules,
                                         &AppState::cleanModeChanged)
    Q_OBJECT_BINDABLE_PROPERTY(AppState, QStringList, customVocabulary_, &AppState::customVocabularyChanged)
    Q_OBJECT_BINDABLE_PROPERTY(AppState, QList<WordReplacement>, wordReplacements_,
                               &AppState::wordReplacementsChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(AppState, ContextMode, contextMode_, ContextMode::auto_,
                                         &AppState::contextModeChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(AppState, ShortcutConfiguration, shortcutConfiguration_,
                                         ShortcutConfiguration::defaultConfiguration(),
                                         &AppState::shortcutConfigurationChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(AppState, bool, autoInsert_, true, &AppState::autoInsertChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(AppState, bool, useDirectInsertion_, true,
                                         &AppState::useDirectInsertionChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(AppState, int, longestDictationMinutes_, 120,
                                         &AppState::longestDictationMinutesChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(AppState, OverlayStyle, overlayStyle_, OverlayStyle::capsule,
                                         &AppState::overlayStyleChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(AppState, bool, onboardingCompleted_, false,
                                         &AppState::onboardingCompletedChanged)
    Q_OBJECT_BINDABLE_PROPERTY(AppState, std::optional<SettingsPane>, requestedSettingsPane_,
                               &AppState::requestedSettingsPaneChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(AppState, ContextProfile, activeProfile_, ContextProfile::generic,
                                         &AppState::activeProfileChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(AppState, bool, activeProfileWasDetected_, true,
                                         &AppState::activeProfileWasDetectedChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(AppState, bool, hasContext_, false, &AppState::hasContextChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(AppState, bool, historyEnabled_, true,
                                         &AppState::historyEnabledChanged)
    Q_OBJECT_BINDABLE_PROPERTY(AppState, QList<DictationRecord>, history_, &AppState::historyChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(AppState, bool, captureDictations_, false,
                                         &AppState::captureDictationsChanged)
    Q_OBJECT_BINDABLE_PROPERTY(AppState, QString, captureStatus_, &AppState::captureStatusChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(AppState, bool, microphoneGranted_, false,
                                         &AppState::microphoneGrantedChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(AppState, bool, accessibilityGranted_, false,
                                         &AppState::accessibilityGrantedChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(AppState, AIProvider, aiProvider_, AIProvider::apple,
                                         &AppState::aiProviderChanged)
    Q_OBJECT_BINDABLE_PROPERTY(AppState, AIProviderConfigs, aiProviderConfigs_,
                               &AppState::aiProviderConfigsChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(AppState, bool, aiEnabled_, false, &AppState::aiEnabledChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(AppState, bool, aiPolishEnabled_, false,
                                         &AppState::aiPolishEnabledChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(AppState, bool, aiGenerateEnabled_, false,
                                         &AppState::aiGenerateEnabledChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(AppState, QString, aiGenerateTrigger_, QStringLiteral("generate"),
                                         &AppState::aiGenerateTriggerChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(AppState, bool, aiTranscriptionEnabled_, true,
                                         &AppState::aiTranscriptionEnabledChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(AppState, QString, aiTranscriptionModel_,
                                         defaultTranscriptionModel(AIProvider::openAI),
                                         &AppState::aiTranscriptionModelChanged)
    Q_OBJECT_BINDABLE_PROPERTY(AppState, AITranscriptionModels, aiTranscriptionModels_,
                               &AppState::aiTranscriptionModelsChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(AppState, QString, aiEndpoint_, defaultEndpoint(AIProvider::openAI),
                                         &AppState::aiEndpointChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(AppState, QString, aiModel_, defaultModel(AIProvider::openAI),
                                         &AppState::aiModelChanged)
    Q_OBJECT_BINDABLE_PROPERTY_WITH_ARGS(AppState, bool, aiKeyConfigured_, false,
                                         &AppState::aiKeyConfiguredChanged)
};

} // namespace velorin
