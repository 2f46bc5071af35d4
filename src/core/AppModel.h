/// The application model: the hub that owns the speech engine and the shortcuts, holds all state, and offers
/// the operations that the views call. One instance lives as long as the program. Main thread only.
///
/// The work is done by collaborators named after what they do (DictationSession, InsertionRouter, History …);
/// what happens when a dictation stops is read in DictationSession.cpp.
///
///     AppModel model(platform, {.finishing = nullptr, .selection = …, .hud = overlay});
///     model.toggleDictation();
#pragma once

#include "ai/AIConfiguration.h"
#include "core/AppState.h"
#include "core/FinishingOperations.h"
#include "core/Overlay.h"
#include "core/SelectionOperations.h"
#include "shortcuts/DictationShortcutSessionController.h"

#include <QCoro/QCoroTask>

#include <memory>

namespace velorin {

class DictationSession;
class SpeechEngine;
class ShortcutBackend;
struct Platform;

class AppModel final : public AppState {
    Q_OBJECT

    Q_PROPERTY(bool aiConfigured READ aiConfigured NOTIFY aiReadinessChanged)
    Q_PROPERTY(bool aiRunsOnDevice READ aiRunsOnDevice NOTIFY aiReadinessChanged)
    Q_PROPERTY(bool providerTranscriptionActive READ providerTranscriptionActive NOTIFY aiReadinessChanged)
    Q_PROPERTY(bool aiReady READ aiReady NOTIFY aiReadinessChanged)
    Q_PROPERTY(QString generateTriggerDisplay READ generateTriggerDisplay NOTIFY aiGenerateTriggerChanged)

public:
    /// What a dictation ends in and reads from, beyond the platform. Without `finishing` the model's own
    /// flows ask the provider.
    struct Seams {
        std::unique_ptr<FinishingOperations> finishing;
        /// Null for the reading of the application in front.
        std::unique_ptr<SelectionOperations> selection;
        Overlay& hud;
    };

    /// Reads the stored settings and the history and starts the shortcuts. Cannot fail, and waits for no
    /// network; the platform outlives the model.
    AppModel(Platform& platform, Seams seams);
    ~AppModel() override;

    // Dictation.
    void handleShortcutEvent(ShortcutEvent event);
    Q_INVOKABLE void toggleDictation();
    QCoro::Task<> start();
    QCoro::Task<> stop();
    void refreshCleaned();
    [[nodiscard]] QString cleanedTextForCurrentMode() const;
    void pushLevel(float value);
    void contextModeChanged();
    /// Shows the overlay for a moment as if somebody dictated.
    Q_INVOKABLE void previewOverlay();
    [[nodiscard]] const DictationShortcutSessionController& shortcutSession() const;
    /// Whether no session task is running or waiting.
    [[nodiscard]] bool isSettled() const;

    // Delivery.
    /// True when it was delivered.
    bool insertText(const QString& text, const std::optional<RunningApplication>& target);
    /// What could not be delivered, else the last text, into what is in front now.
    void pasteAgain();

    // What is kept.
    void recordHistory(const QString& raw, const QString& cleaned);
    void deleteHistory(const DictationRecord& record);
    void clearHistory();
    void captureDictation(const QString& raw, const QString& cleaned, const QString& kind);
    void refreshCaptureStatus();
    void revealCaptureFile();
    void clearCaptureFile();

    // Settings. No field writes itself: whoever changes one calls persistPreferences().
    void persistPreferences();
    void completeOnboarding();
    /// Drops what is empty or differs from a listed word by case only.
    void addVocabulary(const QString& word);
    void removeVocabulary(const QString& word);
    /// False when there is nothing to hear or to write; nothing changes then.
    bool addReplacement(const QString& heard, const QString& replacement);
    void removeReplacement(const QUuid& id);

    // Permissions and shortcuts.
    void refreshPermissions();
    void applyActivation();
    void relaunch();
    [[nodiscard]] ShortcutBackend& shortcuts();

    // AI.
    [[nodiscard]] bool aiConfigured() const;
    [[nodiscard]] bool aiRunsOnDevice() const;
    [[nodiscard]] bool providerTranscriptionActive() const;
    [[nodiscard]] bool aiReady() const;
    [[nodiscard]] QString generateTriggerDisplay() const;
    /// What a call to the provider would be made with now; reads the key.
    [[nodiscard]] std::optional<AIConfiguration> aiConfiguration() const;
    /// Why the machine's own model can or cannot be used now.
    [[nodiscard]] QString appleIntelligenceAvailabilityDescription() const;
    /// Asks the provider for a sign of life; a line for the user, also when it fails.
    QCoro::Task<QString> testAIConnection();
    void selectAIProvider(AIProvider provider);
    bool saveAIKey(const QString& key);
    void refreshAIKeyState();
    /// The working endpoint and model become the current provider's row of the table.
    void storeProviderConfig();
    void storeTranscriptionModel();

Q_SIGNALS:
    void aiReadinessChanged();

private:
    struct Collaborators;

    void wireShortcuts();
    void wireAIReadiness();
    void wireSecrets();
    void migrateLegacyKey();

    std::unique_ptr<Collaborators> parts_;
};

} // namespace velorin
